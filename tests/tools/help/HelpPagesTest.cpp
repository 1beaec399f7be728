#include <gmock/gmock.h>

#include <string>

#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/Verbs.h"
#include "tools/vig/help/HelpPages.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using support::outputOf;
using testing::HasSubstr;

// The last verb has what nothing else has yet: marks of each language in descriptions, a long list of words.
ProgramHelp helpWithOddities() {
    ProgramHelp help = Verbs().commandLine.help();
    help.verbs.push_back(
        {"odd", ".it's [a: \\b] `c` -- d", {{{"--allow"}, false, false, true, "NAME", "'e' \\n [f]:"}}, ".g\n'h"});
    return help;
}

TEST(ManPage, HasEveryVerbAndSatisfiesTheFormatter) {
    const support::TemporaryFolder folder;
    const std::string page = folder.write("vig.1", manPageOf(helpWithOddities()));
    EXPECT_EQ(outputOf("groff -man -Tutf8 -ww -z " + page), "");
    const std::string text = outputOf("groff -man -Tascii -P-cbou -rLL=200n " + page);
    for (const char* const part :
         {"--interval TIME", "--explain [=all]", "vig graph RULES", "vig test [FILE...] [options]",
          "--format dot|svg|png|mermaid", ".it's [a: \\b]", ".g\n       'h\n"}) {
        EXPECT_THAT(text, HasSubstr(part));
    }
}

TEST(BashCompletion, CompletesVerbsOptionsWordsAndFiles) {
    const support::TemporaryFolder folder;
    folder.write("vig.bash", bashCompletionOf(helpWithOddities()));
    folder.write("rules file.json", "");
    const struct {
        const char* words;
        const char* expected;
    } cases[] = {
        {"vig r", "run"},
        {"vig --v", "--version"},
        {"vig run --fo", "--format"},
        {"vig run --why-not ru", "rules file.json"},
        {"vig run --format t", "text"},
        {"vig graph --format = m", "mermaid"},
        {"vig watch --format = ''", "text\njsonl"},
        {"vig run ru", "rules file.json"},
        {"vig run --context ru", "rules file.json"},
        {"vig check --events ru", "rules file.json"},
        {"vig run --seed ''", ""},
        {"vig odd --allow never", "never-true"},
        {"vig none --f", ""},
    };
    for (const auto& each : cases) {
        const std::string script =
            "cd " + folder.path().string() + "; . ./vig.bash; COMP_WORDS=(" + each.words +
            "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _vig; IFS=$'\\n'; printf %s \"${COMPREPLY[*]}\"";
        folder.write("case.bash", script);
        EXPECT_EQ(outputOf("bash " + folder.path("case.bash").string()), each.expected) << each.words;
    }
}

TEST(ZshCompletion, IsReadByZsh) {
    const support::TemporaryFolder folder;
    const std::string script = folder.write("_vig", zshCompletionOf(helpWithOddities()));
    if (outputOf("command -v zsh").empty()) {
        GTEST_SKIP() << "there is no zsh";
    }
    // These stand in the place of functions of zsh, which need a terminal.
    folder.write("case.zsh",
                 "_describe() { print -l ${(P)3} }; _arguments() { print -rl -- \"$@\" }; words=(vig odd ''); "
                 "CURRENT=3; source " +
                     script);
    EXPECT_THAT(outputOf("zsh -f " + folder.path("case.zsh").string()),
                HasSubstr("*--allow=['e' \\\\n \\[f\\]\\:]:NAME:(unreachable-state "));
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
