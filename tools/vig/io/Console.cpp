#include "tools/vig/io/Console.h"

#include <fmt/format.h>

#include <cstdlib>

#include "tools/vig/io/Output.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Several paths have room. A name in a file may have any length.
constexpr std::size_t kMostShownOfLine = std::size_t{16} * 1024;

std::string_view variable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

}  // namespace

void Console::say(std::string_view line) const {
    sayText(printable(shortened(line, kMostShownOfLine)) + "\n");
}

void Console::sayText(std::string_view lines) const {
    Output output(err);
    output.write(lines);
    output.flush();
}

void Console::complain(std::string_view what) const {
    say("vig: error: " + std::string(what));
}

int Console::finish(Output& output, int status) const {
    output.flush();
    if (!output.failed() || output.readerIsGone()) {
        return status;
    }
    complain("standard output: " + systemError(output.failure()));
    return kExitUnusable;
}

bool Console::wantsColours() const {
    return isatty(out) == 1 && variable("NO_COLOR").empty() && variable("TERM") != "dumb";
}

std::string inColour(std::string_view colour, std::string_view text, bool coloured) {
    return coloured && !colour.empty() ? fmt::format("{}{}\x1b[0m", colour, text) : std::string(text);
}

}  // namespace Brenta::OS::VIG::Tool
