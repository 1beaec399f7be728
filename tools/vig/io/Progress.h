#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>

namespace Brenta::OS::VIG::Tool {

// It shows a line that tells how far a long run is, if the descriptor is a terminal and not before the first second is
// over. Any thread.
class Progress {
  public:
    using Clock = std::chrono::steady_clock;

    // It is what a run will have done at its end; 0 stands for what is not known before.
    struct Whole {
        std::uint64_t devices;
        std::uint64_t bytes;
    };

    // The descriptor stays the caller's; -1 stands for none.
    Progress(int terminal, const Whole& whole) : Progress(terminal, whole, Clock::now) {}
    Progress(int terminal, const Whole& whole, std::function<Clock::time_point()> clock);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { clear(); }

    // Counts what has been read since the last call.
    void addRead(std::uint64_t moreEvents, std::uint64_t moreBytes) { add(0, moreEvents, moreBytes); }

    void addDevice() { add(1, 0, 0); }

    // Takes the line away, so that something else can be written; `say` does that before the line can come back.
    void clear() {
        aside([] {});
    }
    void aside(const std::function<void()>& say);

  private:
    void add(std::uint64_t moreDevices, std::uint64_t moreEvents, std::uint64_t moreBytes);
    void show(std::chrono::duration<double> elapsed);

    const int descriptor;
    const bool isShown;
    const Whole whole;
    const std::function<Clock::time_point()> now;
    const Clock::time_point start;
    std::mutex mutex;
    Clock::time_point due;  // guarded by mutex, like the following
    bool isVisible = false;
    std::uint64_t devices = 0;
    std::uint64_t events = 0;
    std::uint64_t bytes = 0;
};

// It tells a progress how far one recording has been read.
class ReadingProgress {
  public:
    explicit ReadingProgress(Progress& progress) : progress(progress) {}

    // It is cheap enough to be called after every event.
    void update(std::uint64_t events, std::uint64_t bytes) {
        if (events % 1024 == 0) {
            tell(events, bytes);
        }
    }

    void tell(std::uint64_t events, std::uint64_t bytes);

  private:
    Progress& progress;
    std::uint64_t toldEvents = 0;
    std::uint64_t toldBytes = 0;
};

}  // namespace Brenta::OS::VIG::Tool
