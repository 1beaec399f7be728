#include <cxxabi.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <string_view>
#include <typeinfo>
#include <variant>

#include "tools/vig/CommandLine.h"
#include "tools/vig/check/CatalogueCommand.h"
#include "tools/vig/check/CheckCommand.h"
#include "tools/vig/fleet/FleetCommand.h"
#include "tools/vig/fleet/SummaryCommand.h"
#include "tools/vig/graph/GraphCommand.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/run/RunCommand.h"
#include "tools/vig/test/TestCommand.h"
#include "tools/vig/watch/WatchCommand.h"

namespace Tool = Brenta::OS::VIG::Tool;

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
        _exit(Tool::kExitUnusable);
    }
    std::abort();
}

int answer(const Tool::Answer& given, const Tool::Console& console) {
    if (given.status != Tool::kExitDone) {
        console.complain(given.text);
        console.say(given.hint);
        return given.status;
    }
    Tool::Output output(console.out);
    output.write(given.text);
    return console.finish(output, Tool::kExitDone);
}

}  // namespace

int main(int count, char** arguments) {
    occupyStandardStreams();
    std::set_terminate(giveUp);
    const Tool::Command command = Tool::parseCommandLine(count, arguments);
    const Tool::Console console;
    Tool::Interruption interruption;
    const Tool::InterruptOnSignals signals(interruption);
    if (const auto* const options = std::get_if<Tool::CheckOptions>(&command)) {
        return Tool::check(*options, console, interruption);
    }
    if (const auto* const options = std::get_if<Tool::RunOptions>(&command)) {
        return Tool::run(*options, console, interruption);
    }
    if (const auto* const options = std::get_if<Tool::FleetOptions>(&command)) {
        return Tool::fleet(*options, console, interruption);
    }
    if (const auto* const options = std::get_if<Tool::SummaryOptions>(&command)) {
        return Tool::summary(*options, console, interruption);
    }
    if (const auto* const options = std::get_if<Tool::WatchOptions>(&command)) {
        return Tool::watch(*options, console, interruption);
    }
    if (const auto* const options = std::get_if<Tool::CatalogueOptions>(&command)) {
        return Tool::catalogue(*options, console, interruption);
    }
    if (const auto* const options = std::get_if<Tool::TestOptions>(&command)) {
        return Tool::test(*options, console, interruption);
    }
    if (const auto* const options = std::get_if<Tool::GraphOptions>(&command)) {
        return Tool::graph(*options, console, interruption);
    }
    return answer(*std::get_if<Tool::Answer>(&command), console);
}
