#include "tools/vig/check/Findings.h"

#include <gtest/gtest.h>
#include <host/Host.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/DocumentGenerator.h"
#include "tests/support/Documents.h"
#include "tools/vig/document/Registry.h"
#include "vig/parsers/VIGResponseParser.h"

namespace Brenta::OS::VIG::Tool {

namespace {

const std::string kClean = R"({
  "configs": [
    { "id": 7, "payload": { "id": 1, "data": { "transitions": [
      {
        "from_state": "start", "to_state": "end", "event": "ProcessMemoryHeartBeat",
        "filters": [
          { "operator": ">", "value_type": "integer",
            "operand1": { "type": "envvar", "value": "vmRssKB" },
            "operand2": { "type": "constant", "value": "300000" } },
          { "operator": "<", "value_type": "double",
            "operand1": { "type": "function", "value": "PseudoRandomDouble" },
            "operand2": { "type": "constant", "value": "0.1" } }
        ],
        "actions": [ { "name": "TriggerVelora" } ]
      }
    ] } } },
    { "id": 8, "payload": { "id": 2, "data": { "transitions": [] } } }
  ]
})";

// Replaces a text of the clean document. "<<…>>" in the new one is the place of a mistake.
struct Edit {
    std::string from;
    std::string to;
    std::string finding = {};  // as shown() says it
    std::string hint = {};     // if it matters
};

std::string shown(const Finding& finding) {
    const std::string transition = "configs[0].payload.data.transitions[0]";
    const std::string& path = finding.place.path;
    return (path.starts_with(transition) ? "~" + path.substr(transition.size()) : path) + ": " + finding.message +
           (finding.name == "InvalidFsm" ? "" : " [" + finding.name + "]");
}

TEST(Findings, AreEveryMistakeAtItsPlace) {
    const std::vector<Edit> cases[] = {
        {{R"("id": 7)", R"("id": <<"7">>)",
          R"(configs[0].id: Invalid VIG Config JSON: { "id": "7", "payload": { "id": 1, "data… ("id" is a string) )"
          "[InvalidConfig]",
          "a number is needed, without quotes"}},
        {{R"({ "id": 8, "payload": { "id": 2, "data": { "transitions": [] } } })", R"(<<{ "id": 8 }>>)",
          R"(configs[1]: Invalid VIG Config JSON: { "id": 8 } ("payload" is missing) [InvalidConfig])"}},
        {{R"("id": 1,)", R"("id": <<2147483648>>,)",
          R"(configs[0].payload.id: Invalid VIG Config Payload JSON: { "id": 2147483648, "data": { "transitio… )"
          "[InvalidConfigPayload]",
          "a number within the signed 32-bit range is needed"}},
        {{"\n      {\n", "\n      <<{\n",
          R"(~: Invalid FSM JSON: { "to_state": "end", "event": "ProcessMe… ("from_state" is missing))"},
         {R"("from_state": "start", )", ""},
         {"\n      }\n", "\n      }>>\n"}},
        {{R"("ProcessMemoryHeartBeat")", R"(<<"processMemoryHeartbeat">>)", "~.event: FSM Event not found!",
          R"(there is no event "processMemoryHeartbeat"; did you mean "ProcessMemoryHeartBeat"?)"},
         {R"(">")", R"(<<"=>">>)", "~.filters[0].operator: Invalid operator string: =>.",
          R"(one of "==", "!=", ">", "<", ">=", "<=")"},
         {R"("300000")", "<<300000>>",
          R"(~.filters[0].operand2.value: Filter operand value is missing or invalid. ("value" is a number))",
          R"(a string: write "300000" for 300000)"},
         {R"({ "type": "function", "value": "PseudoRandomDouble" })", R"(<<"PseudoRandomDouble">>)",
          R"(~.filters[1].operand1: Filter operand must be an object. ("operand1" is a string))"},
         {R"("TriggerVelora")", R"(<<"Trigger">>)", "~.actions[0].name: FSM Action (Trigger) not found!",
          R"(one of "LogZramHeartBeat", "Test", "TriggerVelora", "TriggerVeloraCpu")"}},
        {{R"("envvar")", R"(<<"env">>)", "~.filters[0].operand1.type: Unknown filter operand type: env"},
         {R"("double")", R"("integer")"},
         {R"("PseudoRandomDouble")", R"(<<"PseudoRandomDouble">>)",
          "~.filters[1].operand1.value: Failed to find function: PseudoRandomDouble",
          R"(a function of the value type "double")"},
         {R"("0.1")", R"("1")"},
         {R"("TriggerVelora")", R"("TriggerVelora", "parameters": <<[]>>)",
          "~.actions[0].parameters: FSM Action (TriggerVelora()) not found!",
          R"(registered without parameters: remove "parameters")"}},
        {{R"("configs": [)", R"("configs" <<[>>)", ": Missing ':' after object member name [InvalidJson]"}},
        // Behind a comment the reader takes the bracket for the comma.
        {{R"("id": 8)", R"("id": 8/**/] <<"payloads">>: 1)",
          R"(configs[1].payloads: the key "payloads" is ignored [unknown-key])",
          R"(known here: "id", "payload"; did you mean "payload"?)"}},
        {{"\"configs\"", "\"$schema\": 1, \"configs\""},
         {R"("id": 8)", R"(<<"id">>: 6, "\u0069d": 8)",
          R"(configs[1].id: "id" is overwritten by the one in line 17, column 16 [duplicate-key])"},
         {R"("id": 2)", R"(<<"$schema">>: 1, "id": 2)",
          R"(configs[1].payload.$schema: the key "$schema" is ignored [unknown-key])"}},
        {{R"("id": 7)", "\"id\": <<null>>",
          R"(configs[0].id: Invalid VIG Config JSON: { "id": null, "payload": { "id": 1, "dat… ("id" is null) )"
          "[InvalidConfig]"},
         {R"("<")", R"(<<"< ">>)", "~.filters[1].operator: Invalid operator string: < ."},
         {R"({ "name": "TriggerVelora" })", "<<{}>>", R"(~.actions[0]: Invalid action JSON: {} ("name" is missing))"}},
        {{R"("integer")", R"(<<"Integer">>)", "~.filters[0].value_type: Invalid operand value type: Integer.",
          R"(one of "string", "integer", "double"; did you mean "integer"?)"},
         {R"("PseudoRandomDouble")", R"(<<"PseudoRandom">>)",
          "~.filters[1].operand1.value: Failed to find function: PseudoRandom"},
         {R"("0.1")", R"(<<"">>)", "~.filters[1].operand2.value: Invalid constant of value type double: ."},
         {R"("TriggerVelora" })", R"(<<"Tset">>, "parameters": [1] })",
          "~.actions[0].name: FSM Action (Tset) not found!"},
         {"[1]", R"([{ "type": <<"int">>, "value": 1 }, 2])",
          "~.actions[0].parameters[0].type: Invalid action parameter type: int."},
         {" 2]", R"( { "type": "integer", "value": <<2147483648>> }])",
          "~.actions[0].parameters[1].value: Invalid value for an action parameter of type integer: 2147483648."},
         {R"("id": 8)", "\"id\": <<-8.5>>", "configs[1].id: the id -8.5 is read as -8 [truncated-id]"}},
        {{R"("end")", "<<1>>",
          R"(~.to_state: Invalid FSM JSON: { "from_state": "start", "to_state": 1, … ("to_state" is a number))"},
         {R"("name": "TriggerVelora")", R"("name": "TriggerVelora", <<"parameters">>: {})",
          R"(~.actions[0].parameters: "parameters" is ignored, because it is not an array [unknown-key])"},
         {R"("id": 8)", "\"id\": <<7>>", "configs[1].id: configs[0] has the id 7 as well [duplicate-id]"}},
        {{R"("filters": [)", R"("filters": [ <<null>>,)", "~.filters[0]: Invalid filter JSON: null"},
         {R"(null>>,)", R"(null>>, <<[]>>,)", "~.filters[1]: Invalid filter JSON: []"},
         {R"("actions": [)", R"("actions": [ <<"Test">>,)", R"(~.actions[0]: Invalid action JSON: "Test")"}},
    };
    for (const auto& edits : cases) {
        std::string text = kClean;
        std::string expected, found;
        for (const auto& [from, to, finding, hint] : edits) {
            text.replace(text.find(from), from.size(), to);
            expected += finding.empty() ? "" : finding + (hint.empty() ? "\n" : "\n" + hint + "\n");
        }
        std::vector<std::pair<std::size_t, std::size_t>> places, foundAt;
        for (auto begin = text.find("<<"); begin != std::string::npos; begin = text.find("<<")) {
            text.erase(begin, 2);
            places.emplace_back(begin, text.find(">>"));
            text.erase(places.back().second, 2);
        }
        for (const Finding& each :
             findingsIn(DocumentText("rules.json", text), libraryRegistry(), Catalogue::builtIn())) {
            found += shown(each) + "\n";
            const bool isHintExpected = !each.hint.empty() && expected.starts_with(found + each.hint + "\n");
            found += isHintExpected ? each.hint + "\n" : "";
            foundAt.emplace_back(each.place.begin, each.place.end);
        }
        EXPECT_EQ(found, expected) << text;
        EXPECT_EQ(foundAt, places) << text;
    }
}

TEST(Findings, BlameTheNameOfNoActionThatIsRegisteredWithParameters) {
    struct Factory final : VIGActionFunctionFactory {
        std::optional<VIGActionFunction> get(const std::vector<VIGActionParameter>&) const override { return {}; }
    };
    const VIGParserConfig registry({{"Test", RulesEngine::EventType::Test}},
                                   {{"Notify(integer)", std::make_shared<Factory>()}}, {}, {}, {}, {});
    const std::pair<std::string, std::string> cases[] = {
        {R"({"name":"Notify","parameters":[{"type":"int","value":1}]})",
         R"(.parameters[0].type: one of "string", "integer", "double")"},
        {R"({"name":"Notify"})", ".name: registered as \"Notify(integer)\""},
    };
    for (const auto& [action, expected] : cases) {
        const std::string text =
            support::documentOf({support::transition("start", "end", "Test", "[]", "[" + action + "]")});
        const auto found = findingsIn(DocumentText("", text), registry, Catalogue());
        ASSERT_EQ(found.size(), 1U) << text;
        EXPECT_TRUE((found[0].place.path + ": " + found[0].hint).ends_with("actions[0]" + expected)) << found[0].hint;
    }
}

TEST(Findings, AreErrorsExactlyInWhatTheLibraryRefuses) {
    const host::LogSink previous = host::setLogSink([](int, std::string_view, std::string_view) {});
    const auto registry = libraryRegistry();
    const auto catalogue = Catalogue::builtIn();
    const auto isRefusal = [](const Finding& each) {
        return each.severity == Severity::Error && each.name != "endless-entering";
    };
    support::Mutator mutator;
    support::DocumentGenerator generator(mutator, 60);
    int accepted = 0;
    constexpr int kDocuments = 100'000;
    for (int round = 0; round < kDocuments; ++round) {
        const std::string text = round % 2 == 0 ? generator.document() : mutator.mutated();
        const bool isAccepted = VIGResponseParser().parseFromString(text, registry).value != nullptr;
        const auto found = findingsIn(DocumentText("rules.json", text), registry, catalogue);
        ASSERT_EQ(std::ranges::none_of(found, isRefusal), isAccepted) << text;
        accepted += isAccepted ? 1 : 0;
    }
    host::setLogSink(previous);
    std::cout << accepted << " accepted, " << kDocuments - accepted << " refused\n";
    EXPECT_GE(accepted, kDocuments / 5);
    EXPECT_LE(accepted, kDocuments * 4 / 5);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
