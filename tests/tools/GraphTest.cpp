#include <fcntl.h>
#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/DotWriter.h"
#include "tools/vig/GraphCommand.h"
#include "tools/vig/GraphText.h"
#include "tools/vig/Graphviz.h"
#include "tools/vig/MermaidWriter.h"
#include "tools/vig/RuleGraph.h"

namespace {

using support::operand;
using support::transition;
using testing::ElementsAre;
using testing::HasSubstr;
using tool::GraphFormat;
using tool::RuleGraph;
using tool::Traffic;

const std::string kTransitions = "configs[0].payload.data.transitions";

// Of a document with one configuration.
RuleGraph graphOf(const std::string& text, const std::vector<tool::Diagnostic>& findings = {},
                  const std::vector<Traffic>& traffic = {}) {
    const tool::DocumentText document("", text);
    const auto all =
        traffic.empty() ? std::vector<std::vector<Traffic>>() : std::vector<std::vector<Traffic>>(1, traffic);
    return tool::graphsOf({modelOf(document, 0)}, findings, all)[0];
}

std::string machineOf(std::initializer_list<std::string> transitions) {
    return support::document({support::config(7, transitions)});
}

tool::Diagnostic finding(const std::string& name, const std::string& path) {
    return {tool::Severity::Warning, name, {0, 0, path}, "what is \"wrong\"", ""};
}

// The PATH, as long as it lives.
class SearchPath {
  public:
    explicit SearchPath(const std::string& path) { setenv("PATH", path.c_str(), 1); }
    SearchPath(const SearchPath&) = delete;
    SearchPath& operator=(const SearchPath&) = delete;
    ~SearchPath() { setenv("PATH", previous.c_str(), 1); }

  private:
    const std::string previous = getenv("PATH");
};

// A folder with a program `dot` that is this shell script.
class FakeGraphviz {
  public:
    explicit FakeGraphviz(const std::string& script) {
        chmod(folder.write("dot", "#!/bin/sh\n" + script + "\n").c_str(), 0700);
    }

  private:
    const support::TemporaryFolder folder;
    const SearchPath path{folder.path().string() + ":" + getenv("PATH")};
};

tool::GraphOptions optionsOf(const std::string& rules, GraphFormat format) {
    tool::GraphOptions options;
    options.rules = rules;
    options.format = format;
    return options;
}

TEST(RuleGraph, OrdersTransitionsWithinTheirStateAndKnowsWhatIsUnreachable) {
    const RuleGraph graph = graphOf(machineOf({transition("a", "start", "Timeout"), transition("start", "a", "Test"),
                                               transition("lost", "a", "Test"), transition("a", "a", "Test")}));
    ASSERT_EQ(graph.states.size(), 3u);
    const auto& [start, a, lost] = std::tie(graph.states[0], graph.states[1], graph.states[2]);
    EXPECT_EQ(graph.id, 7);
    EXPECT_EQ(start.name, "start");
    ASSERT_EQ(a.arrows.size(), 2u);
    EXPECT_EQ(a.arrows[1].first, 2u);
    EXPECT_EQ(a.arrows[0].title, "Timeout");
    EXPECT_EQ(a.arrows[1].target, 1u);
    EXPECT_TRUE(start.reachable && a.reachable);
    EXPECT_FALSE(lost.reachable);
}

TEST(RuleGraph, MarksWhatAFindingIsAbout) {
    const std::vector<tool::Diagnostic> findings = {finding("number-text", kTransitions + "[1].filters[0].operand2"),
                                                    finding("no-way-out", kTransitions + "[1].to_state"),
                                                    finding("duplicate-id", "configs[0].id"),
                                                    finding("elsewhere", "configs[1].id"), finding("odd", "")};
    const RuleGraph graph =
        graphOf(machineOf({transition("start", "a", "Test"), transition("start", "b", "Test")}), findings);
    EXPECT_THAT(graph.states[0].arrows[0].marks, testing::IsEmpty());
    EXPECT_THAT(tool::markLinesOf(graph.states[0].arrows[1].marks), ElementsAre("⚠ number-text"));
    EXPECT_THAT(tool::markLinesOf(graph.states[2].marks), ElementsAre("⚠ no-way-out"));
    EXPECT_THAT(tool::markLinesOf(graph.marks), ElementsAre("⚠ duplicate-id"));
    EXPECT_THAT(tool::dotOf({graph}, ""), HasSubstr(R"(tooltip="number-text: what is &quot;wrong&quot;")"));
}

TEST(RuleGraph, OneArrowStandsForTheRestOfManyWithTheSameEnds) {
    std::string transitions;
    std::vector<Traffic> traffic;
    for (int index = 0; index < 41; ++index) {
        transitions += (index == 0 ? "" : ",") + transition("start", "end", index % 2 == 0 ? "Test" : "Timeout");
        traffic.push_back({index == 7 ? 0u : 10u, index < 5 ? 1u : 0u});
    }
    const RuleGraph graph = graphOf(machineOf({transitions}), {finding("always-true", kTransitions + "[40]")}, traffic);
    std::vector<std::string> orders;
    std::vector<std::string> counts;
    for (const auto& arrow : graph.states[0].arrows) {
        orders.push_back(tool::orderOf(arrow));
        counts.push_back(tool::trafficLineOf(arrow));
    }
    // Fired: 1 to 5; tried, but never fired: 6, 7 and 9 to 41; never tried: 8.
    EXPECT_THAT(orders, ElementsAre("1", "2", "3", "4…5", "6", "7", "8", "9", "10…41"));
    EXPECT_THAT(counts, ElementsAre("1 of 10 tried", "1 of 10 tried", "1 of 10 tried", "2 of 20 tried", "0 of 10 tried",
                                    "0 of 10 tried", "never tried", "0 of 10 tried", "0 of 320 tried"));
    const auto& sum = graph.states[0].arrows.back();
    EXPECT_EQ(sum.title, "32 more");
    EXPECT_THAT(sum.conditions, ElementsAre("Test ×16", "Timeout ×16"));
    EXPECT_THAT(tool::markLinesOf(sum.marks), ElementsAre("⚠ always-true"));
}

TEST(GraphText, IsCutBetweenCharacters) {
    const struct {
        std::string text;
        std::size_t most;
        std::string expected;
    } cases[] = {{"abc", 3, "abc"},   {"abcd", 3, "ab…"}, {"äöüß", 3, "äö…"}, {"\n", 2, "\\n"},
                 {"\n\n", 3, "\\n…"}, {"", 3, ""},        {"😀😀😀😀", 3, "😀😀…"}};
    for (const auto& each : cases) {
        EXPECT_EQ(tool::shortened(each.text, each.most), each.expected) << each.text;
    }
}

TEST(GraphFormats, SurviveEveryName) {
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
        const std::string filter = support::filter("==", "string", operand("envvar", name), operand("constant", name));
        transitions += "," + transition("start", name, "Test", "[" + filter + "]");
    }
    const auto findings = {finding("<&\">", kTransitions + "[1]"), finding("-->\n", kTransitions + "[2].to_state")};
    const std::vector<RuleGraph> graphs = {graphOf(machineOf({transitions}), findings)};
    const auto rendered = tool::renderGraph(tool::dotOf(graphs, "<a&b>\n"), "svg", tool::Interruption());
    EXPECT_EQ(rendered.status, tool::Rendering::Status::Done);
    EXPECT_EQ(rendered.messages, "");
    EXPECT_THAT(rendered.image, HasSubstr(R"(&gt;x&lt;/b&gt;&amp;amp;\N\G{}|[] ==)"));
    const std::string text = R"(([-A-Za-z0-9 .,()=!+*/_'>\x80-\xFF]|#[0-9]+;|<br/>)*)";
    const std::regex line(" *(stateDiagram-v2|classDef .*|class \\w+ \\w+|state \"" + text +
                          "\" as \\w+( \\{)?|(\\[\\*\\]|\\w+) --> \\w+( : " + text + ")?|\\})");
    for (const std::string& each : support::linesWith(tool::mermaidOf(graphs), "")) {
        EXPECT_TRUE(std::regex_match(each, line)) << each;
    }
}

TEST(GraphCommand, DrawsTheDocumentOrSaysWhyNot) {
    const support::TemporaryFolder folder;
    const std::string good = folder.write("good.json", support::kCompleteDocument);
    const std::string bad = folder.write("bad.json", "{}");
    const struct {
        std::string rules;
        GraphFormat format;
        int status;
        std::string out;
        std::string err;
    } cases[] = {
        {good, GraphFormat::Dot, 0, "vmRssKB &gt; 2097152", ""},
        {good, GraphFormat::Mermaid, 0, "vmRssKB > 2097152<br/>PseudoRandomDouble() #60; 0.1<br/>→ TriggerVelora", ""},
        {good, GraphFormat::Svg, 0, "</svg>", ""},
        {good, GraphFormat::Png, 0, "\x89PNG\r\n", ""},
        {bad, GraphFormat::Dot, 1, "", bad + ": error: refused; `vig check " + bad + "` tells what is wrong\n"},
        {folder.path("none"), GraphFormat::Dot, 2, "", "No such file or directory\n"},
    };
    for (const auto& each : cases) {
        const auto result = support::runVerb(tool::graph, optionsOf(each.rules, each.format));
        EXPECT_EQ(result.status, each.status) << result.err;
        EXPECT_THAT(result.out, HasSubstr(each.out));
        EXPECT_THAT(result.err, HasSubstr(each.err));
    }
}

TEST(GraphCommand, LaysAReplayOverThePicture) {
    const std::string examples = VIG_SOURCE_DIR "/examples/";
    auto options = optionsOf(examples + "escalation.json", GraphFormat::Dot);
    options.events = examples + "trace.jsonl";
    const std::string dot = support::runVerb(tool::graph, options).out;
    // A transition that fired once, one that fired five times, one that never did, one that was never tried.
    for (const char* const part :
         {"c0s0:t1:e -> c0s1:name [color=\"#0b5cad\", style=solid, arrowhead=normal, penwidth=1.20",
          "c0s3:n3:w -> c0s3:n3:w [color=\"#0b5cad\", style=solid, arrowhead=normal, penwidth=2.11",
          "c0s3:t2:e -> c0s4:name [color=\"#d0342c\", style=dotted, arrowhead=tee",
          "c0s4:t1:e -> c0s0:name [color=\"#999999\", style=dashed", ">✗ 0 of 17 tried<",
          "label=<replay of trace.jsonl<br"}) {
        EXPECT_THAT(dot, HasSubstr(part));
    }
    options.format = GraphFormat::Mermaid;
    EXPECT_THAT(support::runVerb(tool::graph, options).out, HasSubstr("→ LogZramHeartBeat<br/>5 of 5 tried\n"));
    options.events = examples + "none.jsonl";
    EXPECT_EQ(support::runVerb(tool::graph, options).status, 2);
}

TEST(GraphCommand, PicturesInTheDocumentationAreCurrent) {
    for (const auto& [picture, events] : {std::pair("escalation", ""), std::pair("escalation-replay", "trace.jsonl")}) {
        auto options = optionsOf(VIG_SOURCE_DIR "/examples/escalation.json", GraphFormat::Svg);
        options.events = *events == '\0' ? "" : VIG_SOURCE_DIR "/examples/" + std::string(events);
        std::ostringstream committed;
        committed << std::ifstream(VIG_SOURCE_DIR "/docs/" + std::string(picture) + ".svg").rdbuf();
        EXPECT_TRUE(support::runVerb(tool::graph, options).out == committed.str())
            << "docs/" << picture << ".svg is not what `vig graph` draws of examples/escalation.json " << events;
    }
}

TEST(GraphCommand, SaysThatGraphvizIsMissingOrWhatItComplainsOf) {
    const support::TemporaryFolder folder;
    const auto options = optionsOf(folder.write("r.json", support::kCompleteDocument), GraphFormat::Svg);
    {
        const SearchPath nowhere(folder.path());
        const auto result = support::runVerb(tool::graph, options);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err, HasSubstr("--format svg needs the program dot of Graphviz, which is not installed\n"));
    }
    const FakeGraphviz broken("echo 'no \033[1mfonts' >&2; exit 3");
    const auto result = support::runVerb(tool::graph, options);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("vig: error: Graphviz failed: no \\x1b[1mfonts"));
}

TEST(GraphCommand, DoesNotWriteAPictureToATerminal) {
    const int controller = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(controller >= 0 && grantpt(controller) == 0 && unlockpt(controller) == 0);
    const int terminal = open(ptsname(controller), O_RDWR | O_NOCTTY);
    const support::MemoryFile err;
    const tool::Interruption interruption;
    const auto options = optionsOf("rules.json", GraphFormat::Png);
    EXPECT_EQ(tool::graph(options, {STDIN_FILENO, terminal, err.descriptor}, interruption), 2);
    EXPECT_THAT(err.content(), HasSubstr("redirect it to a file"));
    close(terminal);
    close(controller);
}

TEST(Graphviz, NeitherSideWaitsForTheOther) {
    const std::string big(3'000'000, 'x');
    tool::Interruption interruption;
    {
        const FakeGraphviz echo("exec cat");
        EXPECT_EQ(tool::renderGraph(big, "svg", interruption).image, big);
    }
    {
        const FakeGraphviz deaf("exec echo $1");
        EXPECT_EQ(tool::renderGraph(big, "svg", interruption).image, "-Tsvg\n");
    }
    interruption.request();
    const FakeGraphviz slow("exec sleep 1000");
    EXPECT_EQ(tool::renderGraph(big, "svg", interruption).status, tool::Rendering::Status::Interrupted);
}

}  // namespace
