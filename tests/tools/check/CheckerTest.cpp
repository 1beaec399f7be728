#include "tools/vig/check/Findings.h"

#include <gtest/gtest.h>
#include <host/LogSink.h>

#include <algorithm>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/DocumentGenerator.h"
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

// A document with mistakes in it, and where they are.
struct Planted {
    std::string text;
    std::vector<std::string> places;
};

std::string positionIn(const std::string& text, std::size_t offset) {
    const auto lines = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(offset), '\n');
    return std::to_string(lines + 1) + ":" + std::to_string(offset - text.rfind('\n', offset - 1));
}

// Replaces texts of the clean document. The places of the mistakes stand between "<<" and ">>".
Planted plant(const std::vector<std::pair<std::string, std::string>>& edits) {
    Planted result{kClean, {}};
    std::string& text = result.text;
    for (const auto& [from, to] : edits) {
        text.replace(text.find(from), from.size(), to);
    }
    for (std::size_t begin = text.find("<<"); begin != std::string::npos; begin = text.find("<<")) {
        text.erase(begin, 2);
        const std::size_t end = text.find(">>");
        text.erase(end, 2);
        result.places.push_back(positionIn(text, begin) + "-" + positionIn(text, end));
    }
    return result;
}

std::vector<std::string> shownFindings(const std::string& text) {
    const DocumentText document("rules.json", text);
    std::vector<std::string> lines;
    for (const Finding& each : findingsIn(document, libraryRegistry(), Catalogue::builtIn())) {
        const auto [line, column] = document.source().positionOf(each.place.begin);
        const auto [endLine, endColumn] = document.source().positionOf(each.place.end);
        std::ostringstream shown;
        shown << line << ":" << column << "-" << endLine << ":" << endColumn << " " << each.place.path << ": "
              << each.message << " [" << each.name << "]";
        lines.push_back(shown.str());
    }
    return lines;
}

TEST(Checker, FindsEveryMistakeAtItsPlace) {
    const std::string kIn = "configs[0].payload.data.transitions[0]";
    const struct {
        std::vector<std::pair<std::string, std::string>> edits;
        std::vector<std::string> expected;
    } cases[] = {
        {{{R"("id": 7)", R"("id": <<"7">>)"}},
         {R"(configs[0].id: Invalid VIG Config JSON: { "id": "7", "payload": { "id": 1, "data… ("id" is )"
          R"(a string) [InvalidConfig])"}},
        {{{R"({ "id": 8, "payload": { "id": 2, "data": { "transitions": [] } } })", R"(<<{ "id": 8 }>>)"}},
         {R"(configs[1]: Invalid VIG Config JSON: { "id": 8 } ("payload" is missing) [InvalidConfig])"}},
        {{{R"("id": 1,)", R"("id": <<2147483648>>,)"}},
         {R"(configs[0].payload.id: Invalid VIG Config Payload JSON: { "id": 2147483648, "data": { )"
          R"("transitio… [InvalidConfigPayload])"}},
        {{{"\n      {\n", "\n      <<{\n"}, {R"("from_state": "start", )", ""}, {"\n      }\n", "\n      }>>\n"}},
         {kIn +
          R"(: Invalid FSM JSON: { "to_state": "end", "event": "ProcessMe… ("from_state" is missing) [InvalidFsm])"}},
        {{{R"("ProcessMemoryHeartBeat")", R"(<<"ProcesMemoryHeartBeat">>)"}},
         {kIn + R"(.event: FSM Event not found! [InvalidFsm])"}},
        {{{R"(">")", R"(<<"=>">>)"}}, {kIn + R"(.filters[0].operator: Invalid operator string: =>. [InvalidFsm])"}},
        {{{R"({ "type": "envvar", "value": "vmRssKB" })", R"(<<"vmRssKB">>)"}},
         {kIn + R"(.filters[0].operand1: Filter operand must be an object. ("operand1" is a string) [InvalidFsm])"}},
        {{{R"("envvar")", R"(<<"env">>)"}},
         {kIn + R"(.filters[0].operand1.type: Unknown filter operand type: env [InvalidFsm])"}},
        {{{R"("300000")", R"(<<300000>>)"}},
         {kIn + R"(.filters[0].operand2.value: Filter operand value is missing or invalid. ("value" is a )"
                R"(number) [InvalidFsm])"}},
        {{{R"("double")", R"("integer")"}, {R"("PseudoRandomDouble")", R"(<<"PseudoRandomDouble">>)"}},
         {kIn + R"(.filters[1].operand1.value: Failed to find function: PseudoRandomDouble [InvalidFsm])"}},
        {{{R"("TriggerVelora")", R"(<<"TriggerVeloraMem">>)"}},
         {kIn + R"(.actions[0].name: FSM Action (TriggerVeloraMem) not found! [InvalidFsm])"}},
        {{{R"("TriggerVelora")", R"("TriggerVelora", "parameters": <<[]>>)"}},
         {kIn + R"(.actions[0].parameters: FSM Action (TriggerVelora()) not found! [InvalidFsm])"}},
        {{{R"("configs": [)", R"("configs" <<[>>)"}}, {R"(: Missing ':' after object member name [InvalidJson])"}},
        // Behind a comment the reader takes the bracket for the comma.
        {{{R"("id": 8)", R"("id": 8/**/] <<"payloads">>: 1)"}},
         {R"(configs[1].payloads: the key "payloads" is ignored [unknown-key])"}},
        {{{R"("id": 8)", R"(<<"id">>: 6, "\u0069d": 8)"}},
         {R"(configs[1].id: "id" is overwritten by the one in line 17, column 16 [duplicate-key])"}},
        {{{R"("id": 7)", R"("id": <<null>>)"}, {R"("<")", R"(<<"< ">>)"}, {R"({ "name": "TriggerVelora" })", "<<{}>>"}},
         {R"(configs[0].id: Invalid VIG Config JSON: { "id": null, "payload": { "id": 1, "dat… ("id" is )"
          R"(null) [InvalidConfig])",
          kIn + R"(.filters[1].operator: Invalid operator string: < . [InvalidFsm])",
          kIn + R"(.actions[0]: Invalid action JSON: {} ("name" is missing) [InvalidFsm])"}},
        {{{R"("ProcessMemoryHeartBeat")", R"(<<"Zram">>)"},
          {R"("PseudoRandomDouble")", R"(<<"PseudoRandom">>)"},
          {R"("0.1")", R"(<<"">>)"}},
         {kIn + R"(.event: FSM Event not found! [InvalidFsm])",
          kIn + R"(.filters[1].operand1.value: Failed to find function: PseudoRandom [InvalidFsm])",
          kIn + R"(.filters[1].operand2.value: Invalid constant of value type double: . [InvalidFsm])"}},
        {{{R"("TriggerVelora")",
           R"(<<"Tset">>, "parameters": [ { "type": <<"int">>, "value": 1 }, { "type": "integer", "value": )"
           R"(<<2147483648>> } ])"},
          {R"("id": 8)", R"("id": <<-8.5>>)"}},
         {kIn + R"(.actions[0].name: FSM Action (Tset) not found! [InvalidFsm])",
          kIn + R"(.actions[0].parameters[0].type: Invalid action parameter type: int. [InvalidFsm])",
          kIn + R"(.actions[0].parameters[1].value: Invalid value for an action parameter of type integer: )"
                R"(2147483648. [InvalidFsm])",
          R"(configs[1].id: the id -8.5 is read as -8 [truncated-id])"}},
        {{{R"("end")", R"(<<1>>)"},
          {R"("name": "TriggerVelora")", R"("name": "TriggerVelora", <<"parameters">>: {})"},
          {R"("id": 8)", R"("id": <<7>>)"}},
         {kIn + R"(.to_state: Invalid FSM JSON: { "from_state": "start", "to_state": 1, … ("to_state" is a )"
                R"(number) [InvalidFsm])",
          kIn + R"(.actions[0].parameters: "parameters" is ignored, because it is not an array [unknown-key])",
          R"(configs[1].id: configs[0] has the id 7 as well [duplicate-id])"}},
        {{{R"("filters": [)", R"("filters": [ <<null>>, <<[]>>,)"}, {R"("actions": [)", R"("actions": [ <<"Test">>,)"}},
         {kIn + R"(.filters[0]: Invalid filter JSON: null [InvalidFsm])",
          kIn + R"(.filters[1]: Invalid filter JSON: [] [InvalidFsm])",
          kIn + R"(.actions[0]: Invalid action JSON: "Test" [InvalidFsm])"}},
    };
    for (const auto& each : cases) {
        const Planted planted = plant(each.edits);
        std::vector<std::string> expected;
        ASSERT_EQ(planted.places.size(), each.expected.size()) << planted.text;
        for (std::size_t i = 0; i < planted.places.size(); ++i) {
            expected.push_back(planted.places[i] + " " + each.expected[i]);
        }
        EXPECT_EQ(shownFindings(planted.text), expected) << planted.text;
    }
}

TEST(Checker, HintsSayWhatWouldMendIt) {
    const std::pair<std::pair<std::string, std::string>, std::string> cases[] = {
        {{R"("id": 7)", R"("id": "7")"}, "a number is needed, without quotes"},
        {{R"("id": 1,)", R"("id": 1e10,)"}, "a number within the signed 32-bit range is needed"},
        {{R"("ProcessMemoryHeartBeat")", R"("processMemoryHeartbeat")"},
         R"(there is no event "processMemoryHeartbeat"; did you mean "ProcessMemoryHeartBeat"?)"},
        {{R"("<")", R"("=<")"}, R"(one of "==", "!=", ">", "<", ">=", "<=")"},
        {{R"("integer")", R"("Integer")"}, R"(one of "string", "integer", "double"; did you mean "integer"?)"},
        {{R"("300000")", "300000"}, R"(a string: write "300000" for 300000)"},
        {{R"("double")", R"("string")"}, R"(a function of the value type "double")"},
        {{R"("TriggerVelora")", R"("Trigger")"},
         R"(one of "LogZramHeartBeat", "Test", "TriggerVelora", "TriggerVeloraCpu")"},
        {{R"("TriggerVelora")", R"("Test", "parameters": [])"},
         R"(registered without parameters: remove "parameters")"},
        {{R"("id": 8)", R"("id": 8, "playload": 1)"}, R"(known here: "id", "payload"; did you mean "payload"?)"},
    };
    for (const auto& [edit, expected] : cases) {
        const auto findings =
            findingsIn(DocumentText("rules.json", plant({edit}).text), libraryRegistry(), Catalogue::builtIn());
        ASSERT_EQ(findings.size(), 1U) << expected;
        EXPECT_EQ(findings[0].hint, expected);
    }
}

TEST(Checker, FindsErrorsExactlyInWhatTheLibraryRefuses) {
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
        const auto findings = findingsIn(DocumentText("rules.json", text), registry, catalogue);
        ASSERT_EQ(std::ranges::none_of(findings, isRefusal), isAccepted) << text;
        accepted += isAccepted ? 1 : 0;
    }
    host::setLogSink(previous);
    std::cout << accepted << " accepted, " << kDocuments - accepted << " refused\n";
    EXPECT_GE(accepted, kDocuments / 5);
    EXPECT_LE(accepted, kDocuments * 4 / 5);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
