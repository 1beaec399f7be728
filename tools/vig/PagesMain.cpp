#include <unistd.h>

#include <string_view>

#include "tools/vig/Verbs.h"
#include "tools/vig/help/HelpPages.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Output.h"

namespace Tool = Brenta::OS::VIG::Tool;

// The build runs this: it writes the manual page ("man") or the completion of a shell ("bash", "zsh") to standard
// output.
int main(int count, char** arguments) {
    const std::string_view wanted = count == 2 ? arguments[1] : "";
    const Tool::ProgramHelp help = Tool::Verbs().commandLine.help();
    Tool::Output output(STDOUT_FILENO);
    output.write(wanted == "man"    ? Tool::manPageOf(help)
                 : wanted == "bash" ? Tool::bashCompletionOf(help)
                                    : Tool::zshCompletionOf(help));
    output.flush();
    return output.failed() ? Tool::kExitUnusable : Tool::kExitDone;
}
