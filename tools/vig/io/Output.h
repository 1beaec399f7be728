#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace Brenta::OS::VIG::Tool {

// It takes text to a descriptor, which stays the caller's, or to whoever takes it. It is written in large pieces; after
// a failure, all further text is dropped.
class Output {
  public:
    // Takes a piece of text and returns an errno value, 0 if all of it is where it belongs.
    using Writer = std::function<int(std::string_view text)>;

    explicit Output(int target);
    explicit Output(Writer target);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void write(std::string_view text);

    // Writes what has been collected.
    void flush();

    // Calls `hook` each time before text goes out.
    void beforeWriting(std::function<void()> hook);

    bool failed() const { return error != 0; }

    // Returns true if the reader of a pipe has gone, which is no fault of anybody.
    bool readerIsGone() const;

    // Returns the errno value of the failure, or 0.
    int failure() const { return error; }

  private:
    const Writer writer;
    int error = 0;
    std::string pending;
    std::function<void()> hook;
};

}  // namespace Brenta::OS::VIG::Tool
