#include "tools/vig/io/Progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <string>
#include <string_view>
#include <utility>

#include "tools/vig/io/Output.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::chrono::seconds kShortRun{1};
constexpr std::chrono::milliseconds kPeriod{500};
constexpr std::string_view kClearLine = "\r\x1b[K";

void write(int descriptor, std::string_view text) {
    Output output(descriptor);
    output.write(text);
    output.flush();
}

// Returns the largest unit that makes two of them or more.
std::string shown(std::chrono::duration<double> time) {
    const double seconds = time.count();
    return seconds < 120    ? fmt::format("{:.0f} s", seconds)
           : seconds < 7200 ? fmt::format("{:.0f} min", seconds / 60)
                            : fmt::format("{:.0f} h", seconds / 3600);
}

}  // namespace

Progress::Progress(int terminal, const Whole& whole, std::function<Clock::time_point()> clock)
    : descriptor(terminal),
      isShown(isatty(terminal) == 1),
      whole(whole),
      now(std::move(clock)),
      start(now()),
      due(start + kShortRun) {}

void Progress::add(std::uint64_t moreDevices, std::uint64_t moreEvents, std::uint64_t moreBytes) {
    if (!isShown) {
        return;
    }
    const std::lock_guard lock(mutex);
    devices += moreDevices;
    events += moreEvents;
    bytes += moreBytes;
    if (const Clock::time_point time = now(); time >= due) {
        due = time + kPeriod;
        show(time - start);
    }
}

void Progress::show(std::chrono::duration<double> elapsed) {
    std::string line(kClearLine);
    if (whole.devices > 0) {
        line += fmt::format("{} of {} devices, ", devices, whole.devices);
    } else if (devices > 0) {
        line += fmt::format("{} device{}, ", devices, devices == 1 ? "" : "s");
    }
    line += fmt::format("{} events, {:.0f} a second", events, static_cast<double>(events) / elapsed.count());
    if (bytes > 0 && bytes <= whole.bytes) {
        const double left = static_cast<double>(whole.bytes - bytes) / static_cast<double>(bytes);
        line += fmt::format(", {} left", shown(elapsed * left));
    }
    isVisible = true;
    write(descriptor, line);
}

void Progress::aside(const std::function<void()>& say) {
    const std::lock_guard lock(mutex);
    if (std::exchange(isVisible, false)) {
        write(descriptor, kClearLine);
    }
    say();
}

void ReadingProgress::tell(std::uint64_t events, std::uint64_t bytes) {
    progress.addRead(events - std::exchange(toldEvents, events), bytes - std::exchange(toldBytes, bytes));
}

}  // namespace Brenta::OS::VIG::Tool
