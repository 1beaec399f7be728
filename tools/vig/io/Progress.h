#pragma once

#include <chrono>
#include <cstdint>

namespace Brenta::OS::VIG::Tool {

// It shows a line that tells how far a long run is, if the descriptor is a terminal and not before the first second is
// over.
class Progress {
  public:
    // `inputSize` is in bytes, 0 if it is not known. The descriptor stays the caller's.
    Progress(int terminal, std::uint64_t inputSize);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { clear(); }

    // It is cheap enough to be called after every event.
    void update(std::uint64_t events, std::uint64_t bytesRead) {
        if (shown && events % 1024 == 0) {
            showIfDue(events, bytesRead);
        }
    }

    void showIfDue(std::uint64_t events, std::uint64_t bytesRead);

    // Takes the line away, so that something else can be written.
    void clear();

  private:
    using Clock = std::chrono::steady_clock;

    const int descriptor;
    const bool shown;
    const std::uint64_t size;
    const Clock::time_point start = Clock::now();
    Clock::time_point due = start + std::chrono::seconds(1);
    bool visible = false;
};

}  // namespace Brenta::OS::VIG::Tool
