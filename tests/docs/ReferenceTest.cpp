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

TEST(Reference, NamesEveryEventTypeAndOperator) {
    for (const auto& named : kEventTypeNames.pairs) {
        EXPECT_THAT(kReference, testing::HasSubstr(std::string("\n| `") + named.second + "` | "));
    }
    for (const auto& written : kFilterOperatorTable.pairs) {
        EXPECT_THAT(kReference, testing::HasSubstr(std::string("`") + written.second + "` ("));
    }
}

TEST(Reference, ListsExactlyTheMessagesOfTheLibrary) {
    std::string sources;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(VIG_SOURCE_DIR "/vig")) {
        sources += entry.path().extension() == ".cpp" ? docs::read(entry.path()) : "";
    }
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
