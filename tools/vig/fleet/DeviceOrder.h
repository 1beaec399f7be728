#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "tools/vig/io/Output.h"

namespace Brenta::OS::VIG::Tool {

// Puts what devices do at the same time into the order of their numbers, which count from 0. What comes before its turn
// is kept; who has too much of it waits. The device whose turn it is never waits, so that all come to their end as long
// as each thread takes the lowest device that is left. Any thread.
class DeviceOrder {
  public:
    explicit DeviceOrder(Output& output) : output(output) {}
    DeviceOrder(const DeviceOrder&) = delete;
    DeviceOrder& operator=(const DeviceOrder&) = delete;

    // Takes text of a device. Returns an errno value if the output has failed, else 0.
    int write(std::size_t device, std::string_view text);

    // Nothing more comes from the device. `account` is called in its turn, after all of its text, by one thread at a
    // time.
    void end(std::size_t device, std::function<void()> account);

    // Returns true if nobody can read what is written.
    bool failed() const;

  private:
    struct Waiting {
        std::string text = {};
        std::function<void()> account = {};  // empty while it is at work
    };

    void passOn();

    mutable std::mutex mutex;
    std::condition_variable moved;
    Output& output;                          // guarded by mutex, like the following
    std::map<std::size_t, Waiting> waiting;  // of the devices that are at work or have ended
    std::size_t turn = 0;
    std::size_t endedEarly = 0;  // how many of them have ended
};

}  // namespace Brenta::OS::VIG::Tool
