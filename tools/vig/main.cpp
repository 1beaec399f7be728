#include <cxxabi.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <string_view>
#include <typeinfo>
#include <variant>

#include "tools/vig/CatalogueCommand.h"
#include "tools/vig/CheckCommand.h"
#include "tools/vig/CommandLine.h"
#include "tools/vig/Console.h"
#include "tools/vig/FleetCommand.h"
#include "tools/vig/GraphCommand.h"
#include "tools/vig/Interruption.h"
#include "tools/vig/Output.h"
#include "tools/vig/RunCommand.h"
#include "tools/vig/SummaryCommand.h"
#include "tools/vig/TestCommand.h"
#include "tools/vig/WatchCommand.h"

namespace {

// A standard stream that is closed must not become the number of another file: in its place comes one that can neither
// be read nor written, as it should be.
void occupyStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) == -1) {
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

// When the system refuses a thread or memory, what the standard library would throw has no way out. Types are compared
// by name, since the tool is also built without run-time type information.
[[noreturn]] void giveUp() {
    const std::type_info* const thrown = abi::__cxa_current_exception_type();
    const std::string_view name = thrown != nullptr ? thrown->name() : "";
    if (name == "St12system_error" || name == "St9bad_alloc") {
        constexpr std::string_view kMessage = "vig: error: the system refuses a thread, or memory\n";
        [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, kMessage.data(), kMessage.size());
        _exit(tool::kExitUnusable);
    }
    std::abort();
}

int answer(const tool::Answer& given, const tool::Console& console) {
    if (given.status != tool::kExitDone) {
        console.complain(given.text);
        console.say(given.hint);
        return given.status;
    }
    tool::Output output(console.out);
    output.write(given.text);
    return console.finish(output, tool::kExitDone);
}

}  // namespace

int main(int count, char** arguments) {
    occupyStandardStreams();
    std::set_terminate(giveUp);
    const tool::Command command = tool::parseCommandLine(count, arguments);
    const tool::Console console;
    tool::Interruption interruption;
    const tool::InterruptOnSignals signals(interruption);
    if (const auto* const options = std::get_if<tool::CheckOptions>(&command)) {
        return tool::check(*options, console, interruption);
    }
    if (const auto* const options = std::get_if<tool::RunOptions>(&command)) {
        return tool::run(*options, console, interruption);
    }
    if (const auto* const options = std::get_if<tool::FleetOptions>(&command)) {
        return tool::fleet(*options, console, interruption);
    }
    if (const auto* const options = std::get_if<tool::SummaryOptions>(&command)) {
        return tool::summary(*options, console, interruption);
    }
    if (const auto* const options = std::get_if<tool::WatchOptions>(&command)) {
        return tool::watch(*options, console, interruption);
    }
    if (const auto* const options = std::get_if<tool::CatalogueOptions>(&command)) {
        return tool::catalogue(*options, console, interruption);
    }
    if (const auto* const options = std::get_if<tool::TestOptions>(&command)) {
        return tool::test(*options, console, interruption);
    }
    if (const auto* const options = std::get_if<tool::GraphOptions>(&command)) {
        return tool::graph(*options, console, interruption);
    }
    return answer(*std::get_if<tool::Answer>(&command), console);
}
