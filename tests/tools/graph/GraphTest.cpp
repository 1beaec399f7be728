#include <gmock/gmock.h>
#include <pty.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/graph/GraphCommand.h"
#include "tools/vig/graph/Pictures.h"
#include "tools/vig/graph/RuleGraph.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/FileText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using namespace support;
using testing::HasSubstr;

GraphOptions optionsOf(GraphFormat format, const std::string& events = {}) {
    return {{VIG_SOURCE_DIR "/examples/escalation.json", MachineOptions().draws, ""}, format, events};
}

TEST(GraphText, IsCutBetweenCharacters) {
    const std::pair<std::string, std::string> cases[] = {
        {"abc", "abc"}, {"abcd", "ab…"}, {"äöüß", "äö…"}, {"\n", "\\n"}, {"\n\n", "\\n…"}, {"", ""}, {"😀😀😀😀", "😀😀…"}};
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(pictureText(text, 3), expected) << text;
    }
}

// A machine in which everything has a name that means something to one of the formats.
std::vector<RuleGraph> graphsOfEveryName() {
    const std::string names[] = {R"(a\"b'<b>x</b>&amp;\\N\\G{}|[])",
                                 "",
                                 "  ",
                                 R"(new\nline\u0001\u0000)",
                                 "\xFF\xFE",
                                 "\u202E\u2028",
                                 "\uFFFE\uFFFF",
                                 std::string(300, 'x'),
                                 "--> : ; %% #35; <br/> [*] state note",
                                 "]]>-->"};
    std::vector<std::string> transitions = {transition("start", "end", "Test")};
    for (const std::string& name : names) {
        const std::string same = filter("==", "string", operand("envvar", name), operand("constant", name));
        transitions.push_back(transition("start", name, "Test", "[" + same + "]"));
    }
    const DocumentText text("", documentOf(transitions));
    const std::string path = "configs[0].payload.data.transitions";
    const auto finding = [](const char* name, const std::string& place) {
        return Finding{Severity::Warning, name, {0, 0, place}, "what is \"wrong\"", ""};
    };
    return graphsOf({modelOf(text, 0)}, {finding("<&\">", path + "[1]"), finding("-->\n", path + "[2].to_state")}, {});
}

TEST(Pictures, SurviveEveryName) {
    const auto rendered = renderGraph(dotOf(graphsOfEveryName(), "<a&b>\n"), "svg", Interruption());
    EXPECT_EQ(rendered.status, Rendering::Status::Done);
    EXPECT_EQ(rendered.messages, "");
    EXPECT_THAT(rendered.image, HasSubstr(R"(&gt;x&lt;/b&gt;&amp;amp;\N\G{}|[] ==)"));
}

TEST(MermaidWriter, SurvivesEveryName) {
    const std::string text = R"(([-A-Za-z0-9 .,()=!+*/_'>\x80-\xFF]|#[0-9]+;|<br/>)*)";
    const std::regex line(" *(stateDiagram-v2|classDef .*|class \\w+ \\w+|state \"" + text +
                          "\" as \\w+( \\{)?|(\\[\\*\\]|\\w+) --> \\w+( : " + text + ")?|\\})");
    for (const std::string& each : linesWith(mermaidOf(graphsOfEveryName()), "")) {
        EXPECT_TRUE(std::regex_match(each, line)) << each;
    }
}

TEST(Pictures, InTheDocumentationAreCurrentAndAreAlsoWrittenAsPng) {
    const std::string root = VIG_SOURCE_DIR;
    for (const auto& [picture, events] :
         {std::pair("escalation", std::string()), std::pair("escalation-replay", root + "/examples/trace.jsonl")}) {
        std::string problem;
        EXPECT_TRUE(readFile(root + "/docs/" + picture + ".svg", Interruption(), problem) ==
                    runVerb(graph, optionsOf(GraphFormat::Svg, events)).out)
            << "docs/" << picture << ".svg is not what `vig graph` draws of examples/escalation.json " << events;
    }
    EXPECT_THAT(runVerb(graph, optionsOf(GraphFormat::Png)).out, testing::StartsWith("\x89PNG\r\n"));
}

TEST(GraphCommand, DoesNotWriteAPictureToATerminal) {
    int ends[2];
    ASSERT_EQ(openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr), 0);
    const Descriptor controller(ends[0]);
    const Descriptor terminal(ends[1]);
    const MemoryFile err;
    EXPECT_EQ(graph(optionsOf(GraphFormat::Png), {STDIN_FILENO, terminal.get(), err.descriptor}, Interruption()), 2);
    EXPECT_THAT(err.content(), HasSubstr("redirect it to a file"));
}

TEST(Graphviz, NeitherSideWaitsForTheOther) {
    const TemporaryFolder folder;
    const std::string path = getenv("PATH");
    setenv("PATH", folder.path().c_str(), 1);
    const std::string big(3'000'000, 'x');
    Interruption interruption;
    const auto draw = [&](const std::string& script) {
        chmod(folder.write("dot", "#!/bin/sh\n" + script + "\n").c_str(), 0700);
        return renderGraph(big, "svg", interruption);
    };
    EXPECT_EQ(draw("exec /bin/cat").image, big);
    EXPECT_EQ(draw("echo $1").image, "-Tsvg\n");
    interruption.request();
    EXPECT_EQ(draw("exec /bin/sleep 1000").status, Rendering::Status::Interrupted);
    setenv("PATH", path.c_str(), 1);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
