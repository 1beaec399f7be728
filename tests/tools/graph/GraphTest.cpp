#include <fcntl.h>
#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <atomic>
#include <regex>
#include <string>
#include <thread>
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
#include "tools/vig/io/Output.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using namespace support;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string kTransitions = "configs[0].payload.data.transitions";

// Returns the graph of the configuration 7 with those transitions.
RuleGraph graphOf(std::initializer_list<std::string> transitions, const std::vector<Finding>& findings = {},
                  const std::vector<Traffic>& traffic = {}) {
    const DocumentText text("", document({config(7, transitions)}));
    const auto all =
        traffic.empty() ? std::vector<std::vector<Traffic>>() : std::vector<std::vector<Traffic>>(1, traffic);
    return graphsOf({modelOf(text, 0)}, findings, all)[0];
}

Finding finding(const std::string& name, const std::string& path) {
    return {Severity::Warning, name, {0, 0, path}, "what is \"wrong\"", ""};
}

// While it lives, the shell script is all that there is of Graphviz; nothing, if it is empty.
class FakeGraphviz {
  public:
    explicit FakeGraphviz(const std::string& script) {
        if (!script.empty()) {
            chmod(folder.write("dot", "#!/bin/sh\n" + script + "\n").c_str(), 0700);
        }
        setenv("PATH", folder.path().c_str(), 1);
    }
    FakeGraphviz(const FakeGraphviz&) = delete;
    FakeGraphviz& operator=(const FakeGraphviz&) = delete;
    ~FakeGraphviz() { setenv("PATH", path.c_str(), 1); }

  private:
    const TemporaryFolder folder;
    const std::string path = getenv("PATH");
};

GraphOptions optionsOf(const std::string& rules, GraphFormat format, const std::string& events = {}) {
    return {{rules, MachineOptions().seed, ""}, format, events};
}

TEST(RuleGraph, OrdersTransitionsWithinTheirStateAndKnowsWhatIsUnreachable) {
    const RuleGraph graph = graphOf({transition("a", "start", "Timeout"), transition("start", "a", "Test"),
                                     transition("lost", "a", "Test"), transition("a", "a", "Test")});
    std::string text;
    for (const GraphState& state : graph.states) {
        text += state.name + (state.reachable ? ": " : "(unreachable): ");
        for (const GraphArrow& arrow : state.arrows) {
            text += orderOf(arrow) + " " + arrow.title + " to " + graph.states[arrow.target].name + "; ";
        }
    }
    EXPECT_EQ(text, "start: 1 Test to a; a: 1 Timeout to start; 2 Test to a; lost(unreachable): 1 Test to a; ");
}

TEST(RuleGraph, MarksWhatAFindingIsAbout) {
    const std::vector<Finding> findings = {finding("number-text", kTransitions + "[1].filters[0].operand2"),
                                           finding("no-way-out", kTransitions + "[1].to_state"),
                                           finding("duplicate-id", "configs[0].id"),
                                           finding("elsewhere", "configs[1].id"), finding("odd", "")};
    const RuleGraph graph = graphOf({transition("start", "a", "Test"), transition("start", "b", "Test")}, findings);
    EXPECT_THAT(graph.states[0].arrows[0].marks, testing::IsEmpty());
    EXPECT_THAT(markLinesOf(graph.states[0].arrows[1].marks), ElementsAre("⚠ number-text"));
    EXPECT_THAT(markLinesOf(graph.states[2].marks), ElementsAre("⚠ no-way-out"));
    EXPECT_THAT(markLinesOf(graph.marks), ElementsAre("⚠ duplicate-id"));
    const std::string said = R"(what is &quot;wrong&quot;", label=<)";
    EXPECT_THAT(dotOf({graph}, ""), HasSubstr("c0s0 [tooltip=\"2: number-text: " + said));
}

TEST(RuleGraph, OneArrowStandsForTheRestOfManyWithTheSameEnds) {
    std::string transitions;
    std::vector<Traffic> traffic;
    for (int index = 0; index < 41; ++index) {
        transitions += (index == 0 ? "" : ",") + transition("start", "end", index % 2 == 0 ? "Test" : "Timeout");
        traffic.push_back({index == 7 ? 0u : 10u, index < 5 ? 1u : 0u});
    }
    const RuleGraph graph = graphOf({transitions}, {finding("always-true", kTransitions + "[40]")}, traffic);
    std::string text;
    for (const auto& arrow : graph.states[0].arrows) {
        text += orderOf(arrow) + ": " + trafficLineOf(arrow) + ", ";
    }
    EXPECT_EQ(text,
              "1: 1 of 10 tried, 2: 1 of 10 tried, 3: 1 of 10 tried, 4…5: 2 of 20 tried, 6: 0 of 10 tried, "
              "7: 0 of 10 tried, 8: never tried, 9: 0 of 10 tried, 10…41: 0 of 320 tried, ");
    const auto& sum = graph.states[0].arrows.back();
    EXPECT_EQ(sum.title, "32 more");
    EXPECT_THAT(sum.conditions, ElementsAre("Test ×16", "Timeout ×16"));
    EXPECT_THAT(markLinesOf(sum.marks), ElementsAre("⚠ always-true"));
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
    std::string transitions = transition("start", "end", "Test");
    for (const std::string& name : names) {
        const std::string same = filter("==", "string", operand("envvar", name), operand("constant", name));
        transitions += "," + transition("start", name, "Test", "[" + same + "]");
    }
    const auto findings = {finding("<&\">", kTransitions + "[1]"), finding("-->\n", kTransitions + "[2].to_state")};
    return {graphOf({transitions}, findings)};
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

TEST(GraphCommand, DrawsTheDocumentOrSaysWhyNot) {
    const TemporaryFolder folder;
    const std::string good = VIG_SOURCE_DIR "/examples/escalation.json";
    const std::string bad = folder.write("bad.json", "{}");
    const struct {
        std::string rules;
        GraphFormat format;
        std::string events;
        int status;
        std::string written;
    } cases[] = {
        {good, GraphFormat::Dot, "", 0, "vmRssKB &gt; 204800"},
        {good, GraphFormat::Mermaid, "", 0, "PseudoRandomDouble() #60; 0.5<br/>→ TriggerVelora\n"},
        {good, GraphFormat::Mermaid, VIG_SOURCE_DIR "/examples/trace.jsonl", 0,
         "→ LogZramHeartBeat<br/>5 of 5 tried\n"},
        {good, GraphFormat::Svg, folder.path("none"), 2, "none: No such file or directory\n"},
        {good, GraphFormat::Dot, folder.write("events", "{}\n"), 2, "events:1: error: event: missing\n"},
        {bad, GraphFormat::Dot, "", 1, bad + ": error: refused; `vig check " + bad + "` tells what is wrong\n"},
        {folder.path("none"), GraphFormat::Dot, "", 2, "none: No such file or directory\n"},
    };
    for (const auto& each : cases) {
        const auto result = runVerb(graph, optionsOf(each.rules, each.format, each.events));
        EXPECT_EQ(result.status, each.status) << result.err;
        EXPECT_THAT(each.status == 0 ? result.out : result.err, HasSubstr(each.written));
        EXPECT_EQ(each.status == 0 ? result.err : result.out, "");
        EXPECT_TRUE(each.status != 0 || result.out.starts_with("digraph") || result.out.starts_with("stateDiagram"));
    }
    // A context is read without events, too.
    auto options = optionsOf(good, GraphFormat::Dot);
    options.contextFile = folder.path("none");
    EXPECT_EQ(runVerb(graph, options).err, "vig: error: " + options.contextFile + ": No such file or directory\n");
}

// Writes to a pipe once somebody reads it, having called `swap`; not if nobody does before all is over.
void feed(const std::string& pipe, const std::string& content, const std::atomic<bool>& isOver, auto swap) {
    while (!isOver) {
        const Descriptor end(open(pipe.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
        if (end.isOpen()) {
            swap();
            EXPECT_EQ(write(end.get(), content.data(), content.size()), static_cast<ssize_t>(content.size()));
            return;
        }
        std::this_thread::yield();
    }
}

TEST(GraphCommand, PictureAndCountsAreOfOneReading) {
    const TemporaryFolder folder;
    const auto ruleOn = [](const char* event) { return documentOf({transition("start", "start", event)}); };
    const std::string test = "{\"event\":\"Test\"}\n";
    const std::string records = test + "{\"event\":\"ZramHeartBeat\"}\n" + test;
    std::vector<std::string> pictures;
    auto options = optionsOf(folder.path("rules.json"), GraphFormat::Mermaid, folder.write("events", records));
    for (const char* const event : {"Test", "ZramHeartBeat", "Timeout"}) {
        folder.write("rules.json", ruleOn(event));
        pictures.push_back(runVerb(graph, options).out);
    }
    options.contextFile = folder.path("context.pipe");
    options.events = folder.path("events.pipe");
    ASSERT_EQ(mkfifo(options.contextFile.c_str(), 0600), 0);
    ASSERT_EQ(mkfifo(options.events.c_str(), 0600), 0);
    // A pipe can be read only once; a file is another document from each later reading on.
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const Descriptor piped(ends[0]);
    {
        const Descriptor end(ends[1]);
        Output output(end.get());
        output.write(ruleOn("Test"));
        output.flush();
    }
    for (const std::string& rules : {"/dev/fd/" + std::to_string(piped.get()), options.rules}) {
        options.rules = rules;
        folder.write("rules.json", ruleOn("Test"));
        std::atomic<bool> isOver = false;
        std::jthread writer([&] {
            feed(options.contextFile, test, isOver, [&] { folder.write("rules.json", ruleOn("ZramHeartBeat")); });
            feed(options.events, records, isOver, [&] { folder.write("rules.json", ruleOn("Timeout")); });
        });
        const auto result = runVerb(graph, options);
        isOver = true;
        writer.join();
        EXPECT_EQ(result.err, "");
        EXPECT_THAT(pictures, testing::Contains(result.out));
    }
}

TEST(Pictures, InTheDocumentationAreCurrentAndAreAlsoWrittenAsPng) {
    const std::string root = VIG_SOURCE_DIR;
    for (const auto& [picture, events] : {std::pair("escalation", ""), std::pair("escalation-replay", "trace.jsonl")}) {
        const auto options = optionsOf(root + "/examples/escalation.json", GraphFormat::Svg,
                                       *events == '\0' ? "" : root + "/examples/" + events);
        std::string problem;
        EXPECT_TRUE(readFile(root + "/docs/" + picture + ".svg", Interruption(), problem) ==
                    runVerb(graph, options).out)
            << "docs/" << picture << ".svg is not what `vig graph` draws of examples/escalation.json " << events;
    }
    const auto options = optionsOf(root + "/examples/escalation.json", GraphFormat::Png);
    EXPECT_THAT(runVerb(graph, options).out, testing::StartsWith("\x89PNG\r\n"));
}

TEST(GraphCommand, SaysThatGraphvizIsMissingOrWhatItComplainsOf) {
    const TemporaryFolder folder;
    const auto options = optionsOf(folder.write("r.json", kCompleteDocument), GraphFormat::Svg);
    for (const auto& [script, complaint] :
         {std::pair("", "--format svg needs the program dot of Graphviz, which is not installed\n"),
          std::pair("echo 'no \033[1mfonts' >&2; exit 3", "vig: error: Graphviz failed: no \\x1b[1mfonts")}) {
        const FakeGraphviz fake(script);
        const auto result = runVerb(graph, options);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, HasSubstr(complaint));
    }
}

TEST(GraphCommand, DoesNotWriteAPictureToATerminal) {
    const int controller = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(controller >= 0 && grantpt(controller) == 0 && unlockpt(controller) == 0);
    const Descriptor closed(controller);
    const Descriptor terminal(open(ptsname(controller), O_RDWR | O_NOCTTY));
    const MemoryFile err;
    const auto options = optionsOf("rules.json", GraphFormat::Png);
    EXPECT_EQ(graph(options, {STDIN_FILENO, terminal.get(), err.descriptor}, Interruption()), 2);
    EXPECT_THAT(err.content(), HasSubstr("redirect it to a file"));
}

TEST(Graphviz, NeitherSideWaitsForTheOther) {
    const std::string big(3'000'000, 'x');
    Interruption interruption;
    for (const auto& [script, image] :
         {std::pair("exec /bin/cat", big), std::pair("echo $1", std::string("-Tsvg\n"))}) {
        const FakeGraphviz fake(script);
        EXPECT_EQ(renderGraph(big, "svg", interruption).image, image);
    }
    interruption.request();
    const FakeGraphviz slow("exec /bin/sleep 1000");
    EXPECT_EQ(renderGraph(big, "svg", interruption).status, Rendering::Status::Interrupted);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
