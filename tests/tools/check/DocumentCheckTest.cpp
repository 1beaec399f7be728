#include "tools/vig/check/DocumentCheck.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "tests/support/DocumentGenerator.h"
#include "tests/support/Documents.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PeakMemory.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/check/CheckCommand.h"
#include "tools/vig/check/Evidence.h"
#include "tools/vig/document/Registry.h"
#include "vig/parsers/VIGResponseParser.h"

namespace Brenta::OS::VIG::Tool {

namespace {

TEST(Findings, BlameTheNameOfNoActionThatIsRegisteredWithParameters) {
    struct Factory final : VIGActionFunctionFactory {
        std::optional<VIGActionFunction> get(const std::vector<VIGActionParameter>&) const override { return {}; }
    };
    const VIGParserConfig registry({{"Test", RulesEngine::EventType::Test}},
                                   {{"Notify(integer)", std::make_shared<Factory>()}}, {}, {}, {}, {});
    const std::pair<std::string, std::string> cases[] = {
        {R"({"name":"Notify","parameters":[{"type":"int","value":1}]})",
         R"(.parameters[0].type: write "integer": one of "string", "integer", "double")"},
        {R"({"name":"Notify"})", ".name: registered as \"Notify(integer)\""},
    };
    for (const auto& [action, expected] : cases) {
        const std::string text =
            support::documentOf({support::transition("start", "end", "Test", "[]", "[" + action + "]")});
        const auto found = findingsIn(DocumentText("", text), registry, Catalogue()).all;
        ASSERT_EQ(found.size(), 1U) << text;
        EXPECT_TRUE((found[0].place.path + ": " + found[0].hint).ends_with("actions[0]" + expected)) << found[0].hint;
    }
}

TEST(Findings, OfLongNamesShowTheBeginning) {
    const std::string name(3'000, 'x'), nines(name.size(), '9');
    const std::vector<std::string> transitions = {
        support::transition("start", "a", "ProcessMemoryHeartBeat",
                            support::filters({"string processName == =a", "integer =1 < vmRssKB"})),
        support::transition("a", "a", "EnteringState", "[]", R"([{"name":"Test"}])"),
        support::transition("a", "end", "Test", support::filters({"string F() == processName", "integer =7 == =7"})),
        support::transition("a", "end", "Test"),
        support::transition("a", "end", "Test", support::filters({"double x == =1"}))};
    const std::string document = support::document({R"({"y":1,"y":1,)" + support::config(1, transitions).substr(1)});
    const support::TemporaryFolder folder;
    const auto expectShort = [&](const std::string& text) {
        for (const Finding& each : findingsIn(DocumentText("", text), libraryRegistry(), Catalogue::builtIn()).all) {
            EXPECT_LE(std::max(each.message.size(), each.hint.size()), 1000U) << each.place.path.substr(0, 100);
        }
        const auto shown = support::runVerb(check, CheckOptions{.rules = {folder.write("rules.json", text)}});
        for (const std::string& line : support::linesWith(shown.out, "")) {
            EXPECT_LE(line.size(), 1500U);
        }
    };
    expectShort("{\"configs\":[" + name + "]}");
    expectShort("{\"configs\":[{\"id\":" + nines + "}]}");
    // A long text in the place of each, and of all that are the same.
    const std::regex anyText("\"([^\"]*)\"");
    for (std::sregex_iterator found(document.begin(), document.end(), anyText), end; found != end; ++found) {
        for (const std::string& content :
             {name, nines, "\\u0000" + name, "1" + name, "0." + nines, found->str(1) + "\\u0000" + name}) {
            SCOPED_TRACE(content.substr(0, 20) + " for " + found->str() + " at " + std::to_string(found->position()));
            const std::string text = "\"" + content + "\"";
            expectShort(found->prefix().str() + text + found->suffix().str());
            expectShort(std::regex_replace(document, std::regex(found->str()), text));
        }
    }
}

TEST(Findings, AreErrorsExactlyInWhatTheLibraryRefuses) {
    const support::LogCapture log;
    const auto registry = libraryRegistry();
    const auto catalogue = Catalogue::builtIn();
    const auto isRefusal = [](const Finding& each) {
        return each.severity == Severity::Error && each.name != "endless-entering";
    };
    support::Mutator mutator;
    support::DocumentGenerator generator(mutator, 60);
    int accepted = 0;
    constexpr int kDocuments = support::kHasSanitizer ? 10'000 : 30'000;
    for (int round = 0; round < kDocuments; ++round) {
        const std::string text = round % 2 == 0 ? generator.document() : mutator.mutated();
        const bool isAccepted = VIGResponseParser().parseFromString(text, registry).value != nullptr;
        log.takeLines();
        const auto found = findingsIn(DocumentText("rules.json", text), registry, catalogue);
        ASSERT_EQ(std::ranges::none_of(found.all, isRefusal), isAccepted) << text;
        ASSERT_EQ(found.unconfirmed, std::vector<std::string>()) << text;
        accepted += isAccepted ? 1 : 0;
    }
    EXPECT_GE(accepted, kDocuments / 5);
    EXPECT_LE(accepted, kDocuments * 4 / 5);
}

TEST(Evidence, IsWhatTheLibraryConfirms) {
    const DocumentModel document("", support::documentOf({support::transition("start", "end", "Test")}));
    Evidence evidence(document.configs);
    for (const bool isTrue : {true, false}) {
        EXPECT_EQ(evidence.show(0, Plan{{}, {{}}, {1}}, "it", [&](const Witness&) { return isTrue; }) != nullptr,
                  isTrue);
    }
    EXPECT_EQ(evidence.faults, std::vector<std::string>{"it"});
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
