#include <cxxabi.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <string_view>
#include <typeinfo>

#include "tools/vig/Verbs.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"

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

}  // namespace

int main(int count, char** arguments) {
    occupyStandardStreams();
    std::set_terminate(giveUp);
    const Tool::Console console;
    Tool::Interruption interruption;
    const Tool::InterruptOnSignals signals(interruption);
    Tool::Verbs verbs;
    if (const auto status = verbs.commandLine.parse(count, arguments, console)) {
        return *status;
    }
    return verbs.commandLine.run(console, interruption);
}
