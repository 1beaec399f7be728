#include "tools/vig/check/Catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/check/ActionNeeds.h"
#include "tools/vig/check/CatalogueCommand.h"
#include "tools/vig/check/Warnings.h"
#include "vig/EventTypeNames.h"

namespace Brenta::OS::VIG::Tool {

namespace {

std::optional<Catalogue> readText(const std::string& text, std::string& problem) {
    return Catalogue::read(DocumentText("c.json", text), problem);
}

TEST(Catalogue, HasAnEventWithAllThatAnActionReads) {
    for (const KnownAction& action : kActions) {
        EXPECT_TRUE(std::ranges::any_of(kEventTypeNames.pairs, [&](const auto& type) {
            const auto* const known = Catalogue::builtIn().find(type.first);
            return known != nullptr &&
                   missingFor({{}, "", std::string(action.name)}, type.first, Catalogue::builtIn()).empty();
        })) << action.name;
    }
}

TEST(Catalogue, LearnsFromARecordingWhatItReadsBack) {
    const std::string records =
        "{\"event\":\"Test\",\"int64\":{\"x\":1},\"double\":{\"x\":2,\"\xC3\xA9\\\"\":0.5}}\n"
        "{\"event\":\"ForegroundAppsStats\"}\n"
        "{\"event\":\"Test\",\"int64\":{\"a\":1},\"bool\":{\"b\":true}}\n";
    const std::string expected =
        "{\n  \"events\": {\n    \"Test\": {\n      \"int64\": [\"a\", \"x\"],\n"
        "      \"double\": [\"x\", \"\xC3\xA9\\\"\"],\n      \"bool\": [\"b\"]\n    },\n"
        "    \"ForegroundAppsStats\": {}\n  },\n  \"context\": {}\n}\n";
    const support::ToolResult result = support::runVerb(catalogue, CatalogueOptions(), records);
    EXPECT_EQ(result.out, expected);
    EXPECT_EQ(result.status, kExitDone);
    std::string problem;
    for (const std::string& text : {expected, Catalogue::builtIn().text(), Catalogue().text()}) {
        const auto read = readText(text, problem);
        ASSERT_TRUE(read) << problem;
        EXPECT_EQ(read->text(), text);
    }
}

TEST(Catalogue, SaysWhereAFileOrRecordingIsWrong) {
    const std::pair<std::string, std::string> files[] = {
        {"[]", "c.json:1:1: error: expected an object, got an array"},
        {"{\n \"event\":{}}", "c.json:2:10: error: unknown key \"event\"; did you mean \"events\"?"},
        {R"({"extends":"builtin"})", "c.json:1:12: error: extends: expected \"built-in\""},
        {R"({"events":{"Tset":{}}})", "c.json:1:19: error: events: unknown key \"Tset\"; did you mean \"Test\"?"},
        {R"({"events":{"Test":{"int":[]}}})",
         "c.json:1:26: error: events.Test: unknown key \"int\"; did you mean \"int64\"?"},
        {R"({"context":{"int64":"x"}})", "c.json:1:21: error: context.int64: expected an array, got a string"},
        {R"({"context":{"int64":["x",1]}})", "c.json:1:26: error: context.int64[1]: expected a string, got a number"},
        {"{", "c.json:1:2: error: Missing '}' or object member name"},
    };
    for (const auto& [text, expected] : files) {
        std::string problem;
        EXPECT_FALSE(readText(text, problem)) << text;
        EXPECT_EQ(problem, expected);
    }
    const support::ToolResult bad = support::runVerb(catalogue, CatalogueOptions(), "{\"event\":\"Test\"}\n{}\n");
    EXPECT_EQ(bad.status, kExitUnusable);
    EXPECT_EQ(bad.out + bad.err, "<stdin>:2: error: event: missing\n");
    std::string problem;
    EXPECT_FALSE(Catalogue::readFrom("missing.json", Interruption(), problem));
    EXPECT_EQ(problem, "vig: error: missing.json: No such file or directory");
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
