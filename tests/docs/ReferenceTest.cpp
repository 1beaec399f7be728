#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <utility>

#include "tests/support/Documents.h"
#include "tests/support/LogCapture.h"
#include "vig/EventTypeNames.h"
#include "vig/VIGManager.h"
#include "vig/parsers/FilterParser.h"

namespace {

using namespace Brenta::OS::VIG;

std::string read(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

const std::string kReference = read(VIG_SOURCE_DIR "/docs/rule-documents.md");

// The first group of every match.
std::set<std::string> allOf(const std::string& text, const std::string& pattern) {
    const std::regex regex(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
        found.insert(match->str(1));
    }
    return found;
}

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
        sources += entry.path().extension() == ".cpp" ? read(entry.path()) : "";
    }
    // A message that is not one plain literal is found as "", which the reference does not list.
    const auto logged = allOf(sources, R"re(VIG_LOG_\w+\(\s*(?:"([^"]*)"\s*[,)])?)re");
    EXPECT_EQ(allOf(kReference.substr(kReference.find("\n## Log messages")), "\n\\| `([^`]*)` \\|"), logged);
}

TEST(Reference, ShowsOnlyJsonThatTheLibraryAccepts) {
    // How a part of a document, known by its outermost key, becomes a whole one.
    const std::pair<const char*, std::string> wholes[] = {
        {"\"configs\"", "%"},
        {"\"payload\"", support::document({"%"})},
        {"\"data\"", support::document({R"({"id":1,"payload":%})"})},
        {"\"transitions\"", support::document({R"({"id":1,"payload":{"id":1,"data":%}})"})},
        {"\"from_state\"", support::document({support::config(1, {"%"})})},
        {"\"operator\"", support::document({support::config(1, {support::transition("", "", "Test", "[%]", "[]")})})},
        {"\"name\"", support::document({support::config(1, {support::transition("", "", "Test", "[]", "[%]")})})},
        {"", "%"},
    };
    for (const std::string& block : allOf(kReference, "```json\n([^`]*)```")) {
        const auto outermost = [&](const auto& each) { return block.find(each.first) != std::string::npos; };
        const std::string& whole = std::ranges::find_if(wholes, outermost)->second;
        const support::LogCapture log;
        const std::string text = std::regex_replace(whole, std::regex("%"), block);
        EXPECT_THAT(VIGManager().parseResponse(text), testing::Not(testing::IsEmpty())) << block;
        EXPECT_THAT(log.messages(), testing::IsEmpty()) << block;
    }
}

}  // namespace
