#include "tools/vig/io/Console.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <string_view>
#include <utility>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/PseudoTerminal.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

TEST(Text, PrintableShowsWhatATerminalWouldActOn) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"plain \\ \"text\"", "plain \\ \"text\""},
        {"\x1B[2J\a\n\t\r", R"(\x1b[2J\x07\n\t\r)"},
        {std::string_view("\0\x7F", 2), R"(\x00\x7f)"},
        {"\xC2\x9B\xC2\xA0", "\\x9b\xC2\xA0"},  // a one-character escape sequence
        // Line breaks and the twelve that change the direction.
        {"\xE2\x80\xA8\xE2\x80\xA9\xD8\x9C\xE2\x80\x8E\xE2\x80\x8F", R"(\u2028\u2029\u061c\u200e\u200f)"},
        {"\xE2\x80\xAA\xE2\x80\xAB\xE2\x80\xAC\xE2\x80\xAD\xE2\x80\xAE", R"(\u202a\u202b\u202c\u202d\u202e)"},
        {"\xE2\x81\xA6\xE2\x81\xA7\xE2\x81\xA8\xE2\x81\xA9", R"(\u2066\u2067\u2068\u2069)"},
        {"\xFFx\xC3", "\xEF\xBF\xBDx\xEF\xBF\xBD"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(printable(text), expected);
    }
    // Their harmless neighbours, and what begins or ends like them.
    for (const std::string_view text :
         {"\xD8\x9B\xD8\x9D\xE2\x80\x8D\xE2\x80\x90", "\xE2\x80\xA7\xE2\x80\xAF\xE2\x81\xA5\xE2\x81\xAA",
          "\xE2\x80\xA6\xE2\x81\x84\xE2\x82\xAC", "\xE1\x80\xAE\xF1\x82\x80\xAE", "\xC3\xA9\xF0\x9F\x98\x80"}) {
        EXPECT_EQ(printable(text), text);
    }
}

TEST(Text, JsonStringIsValidWhateverTheText) {
    EXPECT_EQ(inQuotes(std::string_view("\"\\/\b\n\0\x1F\xC3\xA9\xFF", 10)),
              "\"\\\"\\\\/\\u0008\\n\\u0000\\u001f\xC3\xA9\xEF\xBF\xBD\"");
    EXPECT_EQ(inQuotes("\x7F\xC2\x9B\xE2\x80\xAE\xD8\x9C\xE2\x80\xA6"), "\"\\u007f\\u009b\\u202e\\u061c\xE2\x80\xA6\"");
    EXPECT_EQ(inQuotes(""), "\"\"");
}

TEST(Console, ColoursAreForTerminalsWhoseUserWantsThem) {
    const support::PseudoTerminal terminal;
    const Console console{STDIN_FILENO, terminal.descriptor(), STDERR_FILENO};
    setenv("TERM", "dumb", 1);
    EXPECT_FALSE(console.wantsColours());
    setenv("TERM", "xterm", 1);
    EXPECT_TRUE(console.wantsColours());
    setenv("NO_COLOR", "1", 1);
    EXPECT_FALSE(console.wantsColours());
    unsetenv("NO_COLOR");
    EXPECT_FALSE((Console{STDIN_FILENO, support::MemoryFile().descriptor, STDERR_FILENO}.wantsColours()));

    const support::TemporaryFolder folder;
    const std::string rules =
        folder.write("rules.json", support::documentOf({support::transition("start", "end", "Test")}));
    const std::string events = folder.write("events.jsonl", "{\"event\":\"Test\"}\n");
    EXPECT_EQ(support::runTool({"run", rules, events}, {STDIN_FILENO, terminal.descriptor(), terminal.descriptor()},
                               Interruption()),
              0);
    const std::string shown = terminal.shown();
    EXPECT_NE(shown.find("        1  \x1B[36mmove   \x1B[0m  0 (id 7)       start -> end\r\n"), std::string::npos)
        << shown;
    unsetenv("TERM");
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
