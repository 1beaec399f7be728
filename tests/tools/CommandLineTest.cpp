#include "tools/vig/arguments/CommandLine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/ToolRun.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using std::chrono::milliseconds;
using support::ToolResult;
using Strings = std::vector<std::string>;

ToolResult call(const Strings& arguments) {
    const support::MemoryFile out;
    const support::MemoryFile err;
    const int status = support::runTool(arguments, {STDIN_FILENO, out.descriptor, err.descriptor}, Interruption());
    return {status, out.content(), err.content()};
}

struct Parsed : Verbs {
    Parsed(std::vector<const char*> arguments) {
        arguments.insert(arguments.begin(), "vig");
        EXPECT_EQ(commandLine.parse(static_cast<int>(arguments.size()), arguments.data(), {}), std::nullopt);
    }
};

TEST(CommandLine, VerbsHaveTheirDefaultsAndOptions) {
    const auto plain = Parsed({"run", "r.json"}).run;
    EXPECT_EQ(plain.format, ReportFormat::Text);
    EXPECT_EQ(plain.seed, 5489u);
    const auto run = Parsed({"run", "r", "--format", "jsonl", "a", "-", "--seed=4294967295", "--context", "c",
                             "--explain", "--why-not", "p", "-j", "3", "--summary-only"})
                         .run;
    EXPECT_EQ(run.devices, (Strings{"a", "-"}));
    EXPECT_EQ(run.rules + run.contextFile + run.whyNot, "rcp");
    EXPECT_EQ(run.format, ReportFormat::Jsonl);
    EXPECT_EQ(run.seed, 4294967295u);
    EXPECT_EQ(run.threads, 3u);
    EXPECT_TRUE(run.explain && run.summaryOnly);
    const auto summary = Parsed({"summary", "a", "b", "--format", "json"}).summary;
    EXPECT_EQ(summary.files, (Strings{"a", "b"}));
    EXPECT_EQ(summary.format, ReportFormat::Json);
    EXPECT_EQ(Parsed({"summary"}).summary.files, Strings{"-"});
    const auto test =
        Parsed({"test", "--filter", "n", "a", "b", "--coverage", "--coverage-min", "99.5", "--junit", "x"}).test;
    EXPECT_EQ(test.files, (Strings{"a", "b"}));
    EXPECT_EQ(test.filter + test.junitFile, "nx");
    EXPECT_TRUE(test.coverage);
    EXPECT_EQ(test.coverageMin, 99.5);
    const auto watch = Parsed({"watch", "r", "--interval", "500ms", "--duration", "2m", "--record", "f", "--force",
                               "--seed", "7", "--context", "c"})
                           .watch;
    EXPECT_EQ(watch.interval, milliseconds(500));
    EXPECT_EQ(watch.duration, milliseconds(120'000));
    EXPECT_EQ(watch.rules + watch.recordFile + watch.contextFile, "rfc");
    EXPECT_EQ(watch.seed, 7u);
    EXPECT_TRUE(watch.overwrite);
    EXPECT_EQ(Parsed({"catalogue", "e.jsonl"}).catalogue.events, "e.jsonl");
    const auto check = Parsed({"check", "--format=sarif", "--allow", "no-way-out", "a", "b", "--strict", "--allow",
                               "duplicate-id", "--catalogue", "c", "--events", "e"})
                           .check;
    EXPECT_EQ(check.rules, (Strings{"a", "b"}));
    EXPECT_EQ(check.allowed, (Strings{"no-way-out", "duplicate-id"}));
    EXPECT_EQ(check.format, FindingFormat::Sarif);
    EXPECT_EQ(check.catalogueFile + check.eventsFile, "ce");
    EXPECT_TRUE(check.strict);
    const auto graph =
        Parsed({"graph", "r", "--format", "png", "--events", "e", "--seed", "7", "--context", "c"}).graph;
    EXPECT_EQ(graph.rules + graph.events + graph.contextFile, "rec");
    EXPECT_EQ(graph.format, GraphFormat::Png);
    EXPECT_EQ(graph.seed, 7u);
}

TEST(CommandLine, WrongArgumentsAreUsageErrors) {
    const std::string time = "expected a time such as 500ms, 1s or 2m, got ";
    const std::string noName = ": expected a name, got nothing";
    const std::string several = "--explain and --why-not tell of one device: give one file, and no summary";
    const struct {
        Strings arguments;
        std::string complaint;
    } cases[] = {
        {{}, "A subcommand is required"},
        {{"walk"}, "A subcommand is required"},
        {{"run"}, "RULES is required"},
        {{"watch"}, "RULES is required"},
        {{"test"}, "FILE is required"},
        {{"check"}, "RULES is required"},
        {{"graph"}, "RULES is required"},
        {{"run", "r", "a", "b", "--explain"}, several},
        {{"run", "r", "a", "--format", "json", "--why-not", "p"}, several},
        {{"run", "r", "a", "--summary-only", "--explain"}, several},
        {{"run", "r", "-", "-"}, "standard input can be one device only"},
        {{"run", "r", "a", "-j", "0"}, "--jobs: Value 0 not in range 1 to 256"},
        {{"run", "r", "a", "-j", "257"}, "--jobs: Value 257 not in range 1 to 256"},
        {{"run", "r", "--seed", "-1"}, "Could not convert: --seed = -1"},
        {{"run", "r", "--seed", "4294967296"}, "Could not convert: --seed = 4294967296"},
        {{"run", "r", "--format", "xml"}, "--format: expected text|jsonl|json, got xml"},
        {{"run", "r", "--interval", "1s"}, "The following argument was not expected: --interval"},
        {{"run", "r", "--context", ""}, "--context" + noName},
        {{"run", "r", "--why-not", ""}, "--why-not" + noName},
        {{"summary", "a", "--format", "jsonl"}, "--format: expected text|json, got jsonl"},
        {{"watch", "r", "--interval", "0"}, "--interval: " + time + "0"},
        {{"watch", "r", "--duration", "-1s"}, "--duration: " + time + "-1s"},
        {{"watch", "r", "--record"}, "--record: 1 required FILE missing"},
        {{"watch", "r", "--record", ""}, "--record" + noName},
        {{"test", "a", "--coverage-min", "101"}, "--coverage-min: expected a number from 0 to 100, got 101"},
        {{"test", "a", "--coverage-min", "1x"}, "--coverage-min: expected a number from 0 to 100, got 1x"},
        {{"test", "a", "--junit", ""}, "--junit" + noName},
        {{"check", "r", "--format", "jsonl"}, "--format: expected text|json|sarif, got jsonl"},
        {{"check", "r", "--allow", "no-way-ou"},
         "--allow: there is no warning \"no-way-ou\"; did you mean \"no-way-out\"?"},
        {{"check", "r", "--catalogue", ""}, "--catalogue" + noName},
        {{"check", "r", "--events", ""}, "--events" + noName},
        {{"graph", "r", "--events", ""}, "--events" + noName},
    };
    for (const auto& [arguments, complaint] : cases) {
        const ToolResult result = call(arguments);
        const bool named = !arguments.empty() && arguments[0] != "walk";
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err,
                  "vig: error: " + complaint + "\nTry: vig " + (named ? arguments[0] + " " : "") + "--help\n");
    }
}

TEST(CommandLine, HelpOfEveryVerbHasAnExample) {
    for (const VerbHelp& verb : Verbs().commandLine.help().verbs) {
        const ToolResult help = call({verb.name, "--help"});
        EXPECT_EQ(help.status, 0);
        EXPECT_NE(help.out.find("\nExample: "), std::string::npos) << verb.name;
    }
    EXPECT_EQ(call({"--help"}).status, 0);
    EXPECT_EQ(call({"--version"}).out, "vig 1.0.0\n");
}

TEST(CommandLine, DurationsAreReadWithTheirUnit) {
    const struct {
        const char* text;
        milliseconds expected;
    } cases[] = {
        {"500ms", milliseconds(500)},    {"1s", milliseconds(1000)}, {"2m", milliseconds(120'000)},
        {"1h", milliseconds(3'600'000)}, {"3", milliseconds(3000)},  {"0.25", milliseconds(250)},
        {"0", milliseconds(0)},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(Parsed({"watch", "r", "--duration", each.text}).watch.duration, each.expected);
    }
    for (const char* const text : {"", "s", "-1s", "1 s", "1e3", "nan", "inf", "1sec", "99999999h"}) {
        EXPECT_EQ(call({"watch", "r", "--duration", text}).status, 2) << text;
    }
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
