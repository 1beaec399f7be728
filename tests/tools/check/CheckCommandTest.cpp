#include "tools/vig/check/CheckCommand.h"

#include <gtest/gtest.h>
#include <json/value.h>

#include <regex>
#include <string>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/check/CatalogueCommand.h"
#include "vig/parsers/JsonText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using support::filters;
using support::linesWith;
using support::runVerb;
using support::transition;

// Two errors and a warning; "ä" has two bytes.
const std::string kFaulty = R"({ "configs": [
	{ "note ä": 1, "id": true, "payload": { "id": 1, "data": { "transitions": [
		{ "from_state": "start", "to_state": "end", "event": "ZramHeartbeat",
			"filters": [], "actions": [{ "name": "Test" }] } ] } } }
] })";

const std::string kWarned = support::document({R"({"x":1,)" + support::config(1, {}).substr(1)});

Json::Value parsed(const std::string& text) {
    Json::Value value;
    EXPECT_EQ(readJson(text, value), std::nullopt) << text;
    return value;
}

class CheckCommand : public testing::Test {
  protected:
    support::ToolResult check(const std::string& text, CheckOptions options = {}) {
        options.rules.push_back(folder.write("a b.json", text));
        return runVerb(Tool::check, options);
    }

    const support::TemporaryFolder folder;
};

TEST_F(CheckCommand, PrintsFindingsAsCompilersDo) {
    const auto result = check(kFaulty);
    const std::string file = folder.path("a b.json");
    EXPECT_EQ(result.out,
              file + R"(:2:4: warning: the key "note ä" is ignored [unknown-key]
    	{ "note ä": 1, "id": true, "payload": { "id": 1, "data": { "transitions": [
    	  ^~~~~~~~
    path: configs[0].note ä
    hint: known here: "id", "payload"
)" + file +
                  R"(:2:24: error: Invalid VIG Config JSON: { "note ä": 1, "id": true, "payload": {… ("id" is )"
                  R"(a boolean) [InvalidConfig]
    	{ "note ä": 1, "id": true, "payload": { "id": 1, "data": { "transitions": [
    	                     ^~~~
    path: configs[0].id
    hint: a number is needed
)" + file + R"(:3:56: error: FSM Event not found! [InvalidFsm]
    		{ "from_state": "start", "to_state": "end", "event": "ZramHeartbeat",
    		                                                     ^~~~~~~~~~~~~~~
    path: configs[0].payload.data.transitions[0].event
    hint: there is no event "ZramHeartbeat"; did you mean "ZramHeartBeat"?
2 errors, 1 warning in 1 file
)");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 1);
}

TEST_F(CheckCommand, ShowsOnlyTheNeighbourhoodOfAPlaceInALongLine) {
    const std::string filler(200, ' ');
    const auto result = check(R"({"configs":[)" + filler + "\"\x1b[2J\"" + filler + "]}");
    EXPECT_EQ(linesWith(result.out, "    "),
              (std::vector<std::string>{"    …" + std::string(40, ' ') + R"("\x1b[2J")" + std::string(54, ' ') + "…",
                                        std::string(45, ' ') + "^~~~~~~~~", "    path: configs[0]",
                                        "    hint: an object is needed"}));
}

TEST_F(CheckCommand, WritesJson) {
    Json::Value root = parsed(check(kFaulty, {.format = FindingFormat::Json}).out);
    ASSERT_EQ(root["findings"].size(), 3U);
    root["findings"].resize(1);
    Json::Value expected =
        parsed(R"({"errors":2,"warnings":1,"files":1,"findings":[{"severity":"warning","name":"unknown-key",)"
               R"("path":"configs[0].note ä","line":2,"column":4,"end_line":2,"end_column":13,)"
               R"("message":"the key \"note ä\" is ignored","hint":"known here: \"id\", \"payload\""}]})");
    expected["findings"][0]["file"] = folder.path("a b.json").string();
    EXPECT_EQ(root, expected);
}

TEST_F(CheckCommand, WritesSarif) {
    const Json::Value root = parsed(check(kFaulty, {.format = FindingFormat::Sarif}).out);
    EXPECT_EQ(root["version"], "2.1.0");
    EXPECT_TRUE(root["$schema"].isString());
    Json::Value run = root["runs"][0];
    EXPECT_EQ(run["columnKind"], "unicodeCodePoints");
    const Json::Value& driver = run["tool"]["driver"];
    EXPECT_EQ(driver["name"], "vig");
    EXPECT_TRUE(driver["version"].isString());
    for (Json::Value& result : run["results"]) {
        const Json::Value& rule = driver["rules"][result["ruleIndex"].asUInt()];
        EXPECT_EQ(rule["id"], result["ruleId"]);
        EXPECT_TRUE(rule["shortDescription"]["text"].isString());
        result.removeMember("ruleIndex");
        Json::Value& uri = result["locations"][0]["physicalLocation"]["artifactLocation"]["uri"];
        EXPECT_TRUE(uri.asString().starts_with("file:///") && uri.asString().ends_with("/a%20b.json"))
            << uri.asString();
        uri = "";
    }
    ASSERT_EQ(run["results"].size(), 3U);
    EXPECT_EQ(
        run["results"][0],
        parsed(R"({"level":"warning","ruleId":"unknown-key","message":{"text":"the key \"note ä\" is ignored Hint: )"
               R"(known here: \"id\", \"payload\""},"locations":[{"physicalLocation":{"artifactLocation":{"uri":""},)"
               R"("region":{"startLine":2,"startColumn":4,"endLine":2,"endColumn":12}},)"
               R"("logicalLocations":[{"fullyQualifiedName":"configs[0].note ä"}]}]})"));
    EXPECT_EQ(run["results"][1]["level"], "error");
    EXPECT_EQ(run["results"][1]["locations"][0]["physicalLocation"]["region"],
              parsed(R"({"startLine":2,"startColumn":23,"endLine":2,"endColumn":27})"));
}

TEST_F(CheckCommand, OfLongNamesMessagesShowTheBeginningAndPathsAll) {
    const std::string name(3'000, 'x');
    const std::vector<std::string> transitions = {
        transition("start", "a", "ProcessMemoryHeartBeat",
                   filters({"string processName == =a", "integer =1 < vmRssKB"})),
        transition("a", "a", "EnteringState", "[]", R"([{"name":"Test"}])"),
        transition("a", "end", "Test", filters({"string F() == processName", "integer =7 == =7"})),
        transition("a", "end", "Test"), transition("a", "end", "Test", filters({"double x == =1"}))};
    const std::string document = support::document({R"({"y":1,"y":1,)" + support::config(1, transitions).substr(1)});
    const auto expectShort = [&](const std::string& text) {
        for (const Json::Value& each : parsed(check(text, {.format = FindingFormat::Json}).out)["findings"]) {
            EXPECT_LE(each["message"].asString().size(), 1000U) << each["path"].asString().substr(0, 100);
            EXPECT_LE(each["hint"].asString().size(), 1000U) << each["path"].asString().substr(0, 100);
        }
        for (const std::string& line : linesWith(check(text).out, "")) {
            EXPECT_LE(line.size(), 1500U);
        }
    };
    expectShort("{\"configs\":[" + name + "]}");
    expectShort("{\"configs\":[{\"id\":1" + std::string(name.size(), '0') + "}]}");
    // A long text in the place of each, and of all that are the same.
    const std::regex anyText("\"([^\"]*)\"");
    for (std::sregex_iterator found(document.begin(), document.end(), anyText), end; found != end; ++found) {
        for (const std::string& content : {name, std::string(name.size(), '9'), "\\u0000" + name, "1" + name,
                                           "0." + std::string(name.size(), '1'), found->str(1) + "\\u0000" + name}) {
            SCOPED_TRACE(content.substr(0, 20) + " for " + found->str() + " at " + std::to_string(found->position()));
            const std::string text = "\"" + content + "\"";
            const std::string before = document.substr(0, static_cast<std::size_t>(found->position()));
            expectShort(before + text + found->suffix().str());
            if (before.find(found->str()) == std::string::npos) {
                expectShort(std::regex_replace(document, std::regex(found->str()), text));
            }
        }
    }
    const std::string unknown = "{\"configs\":[],\"" + name + "\":1}";
    const Json::Value sarif = parsed(check(unknown, {.format = FindingFormat::Sarif}).out);
    EXPECT_EQ(sarif["runs"][0]["results"][0]["locations"][0]["logicalLocations"][0]["fullyQualifiedName"], name);
    EXPECT_EQ(parsed(check(unknown, {.format = FindingFormat::Json}).out)["findings"][0]["path"], name);
}

TEST_F(CheckCommand, ExitStatusTellsErrorsFromWarnings) {
    const std::string events = support::documentOf(
        {transition("start", "end", "Test", filters({"integer depth > =1"}), R"([{"name":"Test"}])")});
    const std::string recording = folder.write("events.jsonl", R"({"event":"Test","int64":{"depth":3}})"
                                                               "\n");
    const auto learned = runVerb(catalogue, CatalogueOptions{recording});
    EXPECT_EQ(learned.status, 0);
    const std::string learnedFile = folder.write("catalogue.json", learned.out);
    const std::string otherFile = folder.write("other.json", R"({"events":{"Test":{"int64":["level"]}},"context":{}})");
    const std::string broken = folder.write("broken", "{");
    const std::string absent = folder.path("absent");
    const std::string isAbsent = "vig: error: " + absent + ": No such file or directory\n";
    const std::string none = "nothing found in 1 file\n";
    const struct {
        std::string text;
        CheckOptions options;
        int status;
        std::string out;       // its end
        std::string err = "";  // its beginning
    } cases[] = {
        {support::kCompleteDocument, {.strict = true}, 0, none},
        {kWarned, {}, 0, "1 warning in 1 file\n"},
        {kWarned, {.strict = true}, 1, "1 warning in 1 file\n"},
        {kWarned, {.strict = true, .allowed = {"unknown-key"}}, 0, none},
        {kFaulty, {.allowed = {"unknown-key"}}, 1, "2 errors in 1 file\n"},
        {"", {}, 1, "1 error in 1 file\n"},
        {kWarned, {.rules = {absent}}, 2, "1 warning in 1 file\n", isAbsent},
        {kFaulty, {.rules = {absent}, .allowed = {"unknown-key"}}, 2, "2 errors in 1 file\n", isAbsent},
        // A catalogue or a recording tells which attributes there are.
        {events, {.strict = true, .catalogueFile = learnedFile}, 0, none},
        {events, {.strict = true, .eventsFile = recording}, 0, none},
        {events, {.strict = true, .catalogueFile = otherFile}, 1, "1 warning in 1 file\n"},
        {events, {.strict = true, .catalogueFile = otherFile, .eventsFile = recording}, 0, none},
        {events, {.catalogueFile = broken}, 2, "", broken + ":1:2: error: "},
        {events, {.catalogueFile = absent}, 2, "", isAbsent},
        {events, {.eventsFile = broken}, 2, "", broken + ":1: error: "},
        {events, {.eventsFile = absent}, 2, "", isAbsent},
    };
    for (const auto& [text, options, status, out, err] : cases) {
        const auto result = check(text, options);
        EXPECT_EQ(result.status, status) << result.out << result.err;
        EXPECT_TRUE(result.out.ends_with(out) && result.out.empty() == out.empty()) << result.out;
        EXPECT_TRUE(result.err.starts_with(err) && result.err.empty() == err.empty()) << result.err;
    }
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
