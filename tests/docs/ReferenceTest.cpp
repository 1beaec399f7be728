#include <gmock/gmock.h>

#include <filesystem>
#include <set>
#include <string>

#include "tests/docs/Fragments.h"
#include "tests/support/LogCapture.h"
#include "vig/EventTypeNames.h"
#include "vig/VIGManager.h"
#include "vig/parsers/FilterParser.h"

namespace {

using namespace Brenta::OS::VIG;

const std::string kReference = docs::read(VIG_SOURCE_DIR "/docs/rule-documents.md");

std::set<std::string> setOf(const std::string& text, const std::string& pattern) {
    const auto all = docs::allOf(text, pattern);
    return {all.begin(), all.end()};
}

TEST(Reference, NamesEveryEventTypeAndOperator) {
    for (const std::string_view name : kEventTypeNames.texts()) {
        EXPECT_THAT(kReference, testing::HasSubstr("\n| `" + std::string(name) + "` | "));
    }
    for (const std::string_view text : kFilterOperatorTable.texts()) {
        EXPECT_THAT(kReference, testing::HasSubstr("`" + std::string(text) + "` ("));
    }
}

TEST(Reference, ListsExactlyTheMessagesOfTheLibrary) {
    std::string sources;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(VIG_SOURCE_DIR "/vig")) {
        sources += entry.path().extension() == ".cpp" ? docs::read(entry.path()) : "";
    }
    // A message that is not one plain literal is found as "", which the reference does not list.
    const auto logged = setOf(sources, R"re(VIG_LOG_\w+\(\s*(?:"([^"]*)"\s*[,)])?)re");
    EXPECT_EQ(setOf(kReference.substr(kReference.find("\n## Log messages")), "\n\\| `([^`]*)` \\|"), logged);
}

TEST(Reference, ShowsOnlyJsonThatTheLibraryAccepts) {
    for (const std::string& block : docs::allOf(kReference, docs::kJsonBlock)) {
        const support::LogCapture log;
        EXPECT_THAT(VIGManager().parseResponse(docs::wholeOf(block)), testing::Not(testing::IsEmpty())) << block;
        EXPECT_THAT(log.messages(), testing::IsEmpty()) << block;
    }
}

}  // namespace
