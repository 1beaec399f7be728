#include "tools/vig/CommandLine.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <variant>
#include <vector>

namespace Brenta::OS::VIG::Tool {

namespace {

using std::chrono::milliseconds;

Command parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "vig");
    return parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

TEST(CommandLine, VerbsHaveTheirDefaultsAndOptions) {
    const auto plain = std::get<RunOptions>(parse({"run", "r.json"}));
    EXPECT_EQ(plain.rules, "r.json");
    EXPECT_EQ(plain.events, "-");
    EXPECT_EQ(plain.format, ReportFormat::Text);
    EXPECT_EQ(plain.seed, 5489u);
    const auto full = std::get<RunOptions>(
        parse({"run", "r.json", "--format", "jsonl", "e.jsonl", "--seed=4294967295", "--context", "c"}));
    EXPECT_EQ(full.events, "e.jsonl");
    EXPECT_EQ(full.format, ReportFormat::Jsonl);
    EXPECT_EQ(full.seed, 4294967295u);
    EXPECT_EQ(full.contextFile, "c");
    EXPECT_FALSE(full.explain);
    const auto fleet = std::get<FleetOptions>(parse({"run", "r", "a", "-", "-j", "3", "--seed", "7"}));
    EXPECT_EQ(fleet.rules, "r");
    EXPECT_EQ(fleet.devices, (std::vector<std::string>{"a", "-"}));
    EXPECT_EQ(fleet.threads, 3u);
    EXPECT_EQ(fleet.seed, 7u);
    EXPECT_FALSE(fleet.summaryOnly);
    EXPECT_EQ(std::get<FleetOptions>(parse({"run", "r", "--format", "json"})).devices.front(), "-");
    EXPECT_TRUE(std::get<FleetOptions>(parse({"run", "r", "a", "--summary-only"})).summaryOnly);
    EXPECT_EQ(std::get<SummaryOptions>(parse({"summary", "a", "b"})).files.size(), 2u);
    const auto explained = std::get<RunOptions>(parse({"run", "r.json", "--explain", "--why-not", "p"}));
    EXPECT_TRUE(explained.explain);
    EXPECT_EQ(explained.whyNot, "p");
    const auto test = std::get<TestOptions>(
        parse({"test", "--filter", "n", "a", "b", "--coverage", "--coverage-min", "99.5", "--junit", "x"}));
    EXPECT_EQ(test.files, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(test.filter + test.junitFile, "nx");
    EXPECT_TRUE(test.coverage);
    EXPECT_EQ(test.coverageMin, 99.5);
    const auto watch = std::get<WatchOptions>(
        parse({"watch", "r.json", "--interval", "500ms", "--duration", "2m", "--record", "f", "--force"}));
    EXPECT_EQ(watch.interval, milliseconds(500));
    EXPECT_EQ(watch.duration, milliseconds(120'000));
    EXPECT_EQ(watch.recordFile, "f");
    EXPECT_TRUE(watch.overwrite);
    EXPECT_EQ(std::get<CatalogueOptions>(parse({"catalogue", "e.jsonl"})).events, "e.jsonl");
    const auto check = std::get<CheckOptions>(
        parse({"check", "--format=sarif", "--allow", "no-way-out", "a", "b", "--strict", "--allow", "duplicate-id"}));
    EXPECT_EQ(check.rules, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(check.allowed, (std::vector<std::string>{"no-way-out", "duplicate-id"}));
    EXPECT_EQ(check.format, FindingFormat::Sarif);
    EXPECT_TRUE(check.strict);
}

TEST(CommandLine, WrongArgumentsAreUsageErrors) {
    const std::vector<const char*> cases[] = {
        {},
        {"walk"},
        {"run"},
        {"watch"},
        {"run", "r", "a", "b", "--explain"},
        {"run", "r", "a", "--format", "json", "--why-not", "p"},
        {"run", "r", "-", "-"},
        {"run", "r", "a", "b", "-j", "0"},
        {"summary", "a", "--format", "jsonl"},
        {"run", "r", "--seed", "-1"},
        {"run", "r", "--seed", "4294967296"},
        {"run", "r", "--format", "xml"},
        {"run", "r", "--interval", "1s"},
        {"watch", "r", "--interval", "0"},
        {"watch", "r", "--duration", "-1s"},
        {"watch", "r", "--duration", "soon"},
        {"watch", "r", "--record"},
        {"test"},
        {"test", "a", "--coverage-min", "101"},
        {"check"},
        {"check", "r", "--format", "jsonl"},
        {"check", "r", "--allow", "no-way"},
        {"check", "r", "--catalogue", ""},
        {"check", "r", "--events", ""},
        {"run", "r", "--context", ""},
        {"run", "r", "--why-not", ""},
        {"watch", "r", "--record", ""},
        {"test", "a", "--junit", ""},
        {"graph", "r", "--events", ""},
    };
    for (const auto& arguments : cases) {
        const auto answer = std::get<Answer>(parse(arguments));
        EXPECT_EQ(answer.status, 2);
        EXPECT_FALSE(answer.text.empty());
        EXPECT_TRUE(answer.hint.starts_with("Try: vig ")) << answer.hint;
    }
}

TEST(CommandLine, HelpOfEveryVerbHasAnExample) {
    for (const auto& [verb, hasSeed] : {std::pair("check", false),
                                        {"run", true},
                                        {"watch", true},
                                        {"summary", false},
                                        {"catalogue", false},
                                        {"test", false},
                                        {"graph", true}}) {
        const auto answer = std::get<Answer>(parse({verb, "--help"}));
        EXPECT_EQ(answer.status, 0);
        EXPECT_NE(answer.text.find("\nExample: "), std::string::npos);
        EXPECT_EQ(answer.text.find("(default: 5489)") != std::string::npos, hasSeed);
    }
    EXPECT_EQ(std::get<Answer>(parse({"--help"})).status, 0);
    EXPECT_EQ(std::get<Answer>(parse({"--version"})).text, "vig 1.0.0\n");
}

TEST(CommandLine, DurationsAreReadWithTheirUnit) {
    const struct {
        const char* text;
        std::optional<milliseconds> expected;
    } cases[] = {
        {"500ms", milliseconds(500)},    {"1s", milliseconds(1000)}, {"2m", milliseconds(120'000)},
        {"1h", milliseconds(3'600'000)}, {"3", milliseconds(3000)},  {"0.25", milliseconds(250)},
        {"0", milliseconds(0)},          {"", std::nullopt},         {"s", std::nullopt},
        {"-1s", std::nullopt},           {"1 s", std::nullopt},      {"1e3", std::nullopt},
        {"nan", std::nullopt},           {"inf", std::nullopt},      {"1sec", std::nullopt},
        {"99999999h", std::nullopt},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(parseDuration(each.text), each.expected) << each.text;
    }
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
