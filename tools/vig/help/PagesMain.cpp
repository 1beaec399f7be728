#include <unistd.h>

#include <string_view>

#include "tools/vig/Console.h"
#include "tools/vig/Output.h"
#include "tools/vig/help/Completion.h"
#include "tools/vig/help/ManPage.h"

// Run by the build: writes the manual page ("man") or the completion of a shell ("bash", "zsh") to standard output.
int main(int count, char** arguments) {
    const std::string_view wanted = count == 2 ? arguments[1] : "";
    const tool::ProgramHelp help = tool::programHelp();
    tool::Output output(STDOUT_FILENO);
    output.write(wanted == "man"    ? tool::manPageOf(help)
                 : wanted == "bash" ? tool::bashCompletionOf(help)
                                    : tool::zshCompletionOf(help));
    output.flush();
    return output.failed() ? tool::kExitUnusable : tool::kExitDone;
}
