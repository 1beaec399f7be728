#include "tools/vig/commandline/CommandLine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/Documents.h"
#include "tools/vig/Verbs.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using std::chrono::milliseconds;
using Strings = std::vector<std::string>;

struct Parsed : Verbs {
    Parsed(std::vector<const char*> arguments) {
        arguments.insert(arguments.begin(), "vig");
        EXPECT_EQ(commandLine.parse(static_cast<int>(arguments.size()), arguments.data(), {}), std::nullopt);
    }
};

TEST(CommandLine, VerbsHaveTheirDefaultsAndOptions) {
    const auto plain = Parsed({"run", "r.json"}).run;
    EXPECT_EQ(plain.format, ReportFormat::Text);
    EXPECT_EQ(plain.draws.seed, 5489u);
    EXPECT_FALSE(plain.summaryOnly || plain.byDevice);
    const auto run =
        Parsed(
            {"run",       "r",         "--format",  "jsonl",   "a",     "-",       "--seed=4294967295", "--context",
             "c",         "--explain", "--why-not", "p",       "-j",    "3",       "--summary-only",    "--by-device",
             "--verbose", "--machine", "id=-7",     "--where", "a=b=c", "--where", "event=Test",        "--from",
             "4",         "--to",      "1.5m"})
            .run;
    EXPECT_EQ(run.devices, (Strings{"a", "-"}));
    EXPECT_EQ(run.rules + run.contextFile + run.whyNot.value(), "rcp");
    EXPECT_EQ(run.format, ReportFormat::Jsonl);
    EXPECT_EQ(run.draws.seed, 4294967295u);
    EXPECT_EQ(run.threads, 3u);
    EXPECT_TRUE(run.explain == Explain::Highlights && run.summaryOnly && run.byDevice && run.verbose);
    const SelectionOptions& chosen = run.selection;
    EXPECT_TRUE(chosen.machine->isId && chosen.machine->number == -7);
    EXPECT_EQ(chosen.where[0].name + chosen.where[0].value + chosen.where[1].name, "ab=cevent");
    EXPECT_TRUE(!chosen.from->isTime && chosen.from->value == 4 && chosen.to->isTime && chosen.to->value == 90'000);
    EXPECT_EQ(Parsed({"run", "r", "--explain=all", "e", "--why-not"}).run.explain, Explain::All);
    EXPECT_EQ(Parsed({"run", "r", "--explain", "e", "--why-not"}).run.whyNot, "");
    EXPECT_EQ(plain.whyNot, std::nullopt);
    const auto drawn = Parsed({"run", "r", "--draw", "0.05", "a", "--draw=0"}).run;
    EXPECT_EQ(drawn.draws.numbers, (std::vector{0.05, 0.0}));
    EXPECT_EQ(drawn.devices, Strings{"a"});
    const auto summary = Parsed({"summary", "a", "b", "--format", "json"}).summary;
    EXPECT_EQ(summary.files, (Strings{"a", "b"}));
    EXPECT_EQ(summary.format, ReportFormat::Json);
    EXPECT_EQ(Parsed({"summary"}).summary.files, Strings{"-"});
    const auto test = Parsed({"test", "--filter", "n", "a", "b", "--coverage", "--coverage-min", "99.5", "--junit", "x",
                              "--draw", "0.7", "--mutants", "--write", "w"})
                          .test;
    EXPECT_EQ(test.files, (Strings{"a", "b"}));
    EXPECT_EQ(test.filter + test.junitFile + test.writeFile, "nxw");
    EXPECT_TRUE(test.coverage && test.mutants);
    EXPECT_EQ(test.coverageMin, 99.5);
    EXPECT_EQ(test.draws.numbers, std::vector{0.7});
    EXPECT_EQ(Parsed({"test", "a", "--format", "html"}).test.format, TestFormat::Html);
    EXPECT_EQ(Parsed({"test", "--generate", "r"}).test.generate, "r");
    const auto watch = Parsed({"watch", "r", "--interval", "500ms", "--duration", "2m", "--record", "f", "--force",
                               "--seed", "7", "--context", "c", "--verbose"})
                           .watch;
    EXPECT_EQ(watch.interval, milliseconds(500));
    EXPECT_EQ(watch.duration, milliseconds(120'000));
    EXPECT_EQ(watch.rules + watch.recordFile + watch.contextFile, "rfc");
    EXPECT_EQ(watch.draws.seed, 7u);
    EXPECT_TRUE(watch.overwrite && watch.verbose);
    EXPECT_EQ(Parsed({"catalogue", "e.jsonl"}).catalogue.events, "e.jsonl");
    const auto check = Parsed({"check", "--verbose", "--format=sarif", "--allow", "no-way-out", "a", "b", "--strict",
                               "--allow", "duplicate-id", "--catalogue", "c", "--events", "e"})
                           .check;
    EXPECT_EQ(check.rules, (Strings{"a", "b"}));
    EXPECT_EQ(check.allowed, (Strings{"no-way-out", "duplicate-id"}));
    EXPECT_EQ(check.format, FindingFormat::Sarif);
    EXPECT_EQ(check.catalogueFile + check.eventsFile, "ce");
    EXPECT_TRUE(check.strict && check.verbose);
    const auto prove =
        Parsed({"prove", "a", "b", "--format", "json", "--witness", "w", "--context", "c", "--catalogue", "k"}).prove;
    EXPECT_EQ(prove.rules, (Strings{"a", "b"}));
    EXPECT_EQ(prove.format, ProofFormat::Json);
    EXPECT_EQ(prove.witnessFolder + prove.contextFile + prove.catalogueFile, "wck");
    const auto diff =
        Parsed({"diff", "a", "b", "d", "e", "--states", "--context", "c", "--catalogue", "k", "-j", "3"}).diff;
    EXPECT_EQ(diff.rules + diff.newRules + diff.contextFile + diff.catalogueFile, "abck");
    EXPECT_EQ(diff.devices, (Strings{"d", "e"}));
    EXPECT_EQ(diff.threads, 3u);
    EXPECT_TRUE(diff.states);
    const auto tune = Parsed({"tune", "r", "p", "d", "--target", "3/day", "--context", "c"}).tune;
    EXPECT_EQ(tune.rules + tune.path + tune.devices.front() + tune.targetText + tune.contextFile, "rpd3/dayc");
    const auto init =
        Parsed({"init",      "r", "--attribute",    "1", "--process", "2", "--limit",   "3", "--times", "4",
                "--release", "5", "--second-limit", "6", "--share",   "7", "--trigger", "8", "--force", "--list"})
            .init;
    std::string answers = init.rules;
    for (const auto& each : init.answers) {
        answers += each.value_or("");
    }
    EXPECT_EQ(answers, "r12345678");
    EXPECT_TRUE(init.overwrite && init.list);
    const auto graph =
        Parsed({"graph", "r", "--format", "png", "--events", "e", "--seed", "7", "--context", "c"}).graph;
    EXPECT_EQ(graph.rules + graph.events + graph.contextFile, "rec");
    EXPECT_EQ(graph.format, GraphFormat::Png);
    EXPECT_EQ(graph.draws.seed, 7u);
}

TEST(CommandLine, EveryOptionHasATest) {
    const std::string tests = support::textOf(VIG_SOURCE_DIR "/tests/tools/CommandLineTest.cpp");
    for (const VerbHelp& verb : Verbs().commandLine.help().verbs) {
        for (const OptionHelp& option : verb.options) {
            EXPECT_TRUE(option.names[0] == "-h" || option.isPositional || tests.find(option.names[0]) != tests.npos)
                << verb.name << ' ' << option.names[0];
        }
    }
}

TEST(CommandLine, DurationsAreReadWithTheirUnit) {
    const std::pair<const char*, milliseconds> cases[] = {
        {"500ms", milliseconds(500)},    {"1s", milliseconds(1000)}, {"2m", milliseconds(120'000)},
        {"1h", milliseconds(3'600'000)}, {"3", milliseconds(3000)},  {"0.25", milliseconds(250)},
        {"0", milliseconds(0)},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(Parsed({"watch", "r", "--duration", text}).watch.duration, expected) << text;
    }
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
