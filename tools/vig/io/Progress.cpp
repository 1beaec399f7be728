#include "tools/vig/io/Progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <string>

#include "tools/vig/io/Output.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::chrono::milliseconds kPeriod{200};
constexpr std::string_view kClearLine = "\r\x1b[K";

void write(int descriptor, std::string_view text) {
    Output output(descriptor);
    output.write(text);
    output.flush();
}

}  // namespace

Progress::Progress(int terminal, std::uint64_t inputSize)
    : descriptor(terminal), shown(isatty(terminal) == 1), size(inputSize) {}

void Progress::showIfDue(std::uint64_t events, std::uint64_t bytesRead) {
    const Clock::time_point now = Clock::now();
    if (!shown || now < due) {
        return;
    }
    due = now + kPeriod;
    visible = true;
    const std::string share = size > 0 ? fmt::format(", {} %", bytesRead * 100 / size) : "";
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now - start).count();
    write(descriptor, fmt::format("{}{} events{}, {} s", kClearLine, events, share, seconds));
}

void Progress::clear() {
    if (visible) {
        visible = false;
        write(descriptor, kClearLine);
    }
}

}  // namespace Brenta::OS::VIG::Tool
