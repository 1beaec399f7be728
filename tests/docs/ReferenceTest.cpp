#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/docs/Fragments.h"
#include "tests/support/Documents.h"
#include "tests/support/LogCapture.h"
#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/document/Registry.h"
#include "vig/EventTypeNames.h"
#include "vig/ResponseProperty.h"
#include "vig/VIGManager.h"
#include "vig/parsers/FilterParser.h"

namespace {

using namespace Brenta::OS::VIG;
namespace fs = std::filesystem;

const std::string kReference = support::textOf(VIG_SOURCE_DIR "/docs/rule-documents.md");

std::set<std::string> setOf(const std::string& text, const std::string& pattern) {
    const auto all = docs::allOf(text, pattern);
    return {all.begin(), all.end()};
}

TEST(Reference, NamesEverythingThatDocumentsMayName) {
    const auto registry = Brenta::OS::VIG::Tool::libraryRegistry();
    const auto expectRow = [](const std::string& name) {
        EXPECT_NE(kReference.find("\n| `" + name + "` | "), std::string::npos) << name;
    };
    std::set<std::string> eventTypes;
    for (const std::string_view name : kEventTypeNames.texts()) {
        expectRow(std::string(name));
        eventTypes.emplace(name);
    }
    EXPECT_EQ(setOf(support::textOf(VIG_SOURCE_DIR "/rulesengine/EventType.h"), "(\\w+) = \\d+,"), eventTypes);
    for (const auto& [name, factory] : registry.getActionFunctionFactories()) {
        expectRow(name);
    }
    for (const auto& [name, function] : registry.getDoublePureFunctions()) {
        EXPECT_NE(kReference.find("`" + name + "`", kReference.find("\n## Functions")), std::string::npos) << name;
    }
    // Each attribute that an action reads stands in a row, with its kind.
    const auto rows = docs::allOf(kReference, "(\n\\|.*\\|)");
    for (const Tool::KnownAction& action : Tool::kActions) {
        for (const Tool::ActionNeed& need : action.needs) {
            std::string kind(Tool::nameOf(need.kind));
            kind[0] = static_cast<char>(kind[0] - 'a' + 'A');
            EXPECT_TRUE(std::ranges::any_of(rows, [&](const std::string& row) {
                return row.find("`" + std::string(need.attribute) + "`") != row.npos &&
                       row.find("| " + kind + " |") != row.npos;
            })) << need.attribute;
        }
    }
    for (const std::string_view text : kFilterOperatorTable.texts()) {
        EXPECT_NE(kReference.find("`" + std::string(text) + "` ("), std::string::npos) << text;
    }
}

TEST(Reference, ListsExactlyTheMessagesOfTheLibrary) {
    std::string sources;
    for (const auto& entry : fs::recursive_directory_iterator(VIG_SOURCE_DIR "/vig")) {
        sources += entry.path().extension() == ".cpp" ? support::textOf(entry.path()) : "";
    }
    // The tool knows one message by a constant.
    const std::string constant = R"("%s", kListeningMessage)";
    sources.replace(sources.find(constant), constant.size(), '"' + std::string(kListeningMessage) + "\")");
    // A message that is not one plain literal is found as "", which the reference does not list.
    const auto logged = docs::allOf(sources, R"re(VIG_LOG_\w+\(\s*(?:"([^"]*)"\s*[,)])?)re");
    const auto listed = docs::allOf(kReference.substr(kReference.find("\n## Log messages")), "\n\\| `([^`]*)` \\|");
    EXPECT_EQ(std::set(listed.begin(), listed.end()), std::set(logged.begin(), logged.end()));
}

TEST(Reference, ShowsOnlyJsonThatTheLibraryAccepts) {
    for (const std::string& block : docs::allOf(kReference, docs::kJsonBlock)) {
        const support::LogCapture log;
        EXPECT_THAT(VIGManager().parseResponse(docs::wholeOf(block)), testing::Not(testing::IsEmpty())) << block;
        EXPECT_THAT(log.messages(), testing::IsEmpty()) << block;
    }
}

}  // namespace
