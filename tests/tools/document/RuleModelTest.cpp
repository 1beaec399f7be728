#include "tools/vig/document/RuleModel.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Documents.h"

namespace Brenta::OS::VIG::Tool {

namespace {

std::string textAt(const DocumentText& document, const Place& place) {
    return document.source().text().substr(place.begin, place.end - place.begin);
}

TEST(SourceText, CountsLinesAsTheJsonReaderDoes) {
    const SourceText text("name", "a\r\nb\rc\n\nd");
    const std::pair<std::size_t, std::pair<std::size_t, std::size_t>> places[] = {
        {0, {1, 1}}, {2, {1, 3}}, {3, {2, 1}}, {5, {3, 1}}, {7, {4, 1}}, {8, {5, 1}}, {99, {5, 2}}};
    for (const auto& [offset, expected] : places) {
        const auto position = text.positionOf(offset);
        EXPECT_EQ(std::pair(position.line, position.column), expected) << offset;
    }
    EXPECT_EQ(SourceText("name", "\xEF\xBB\xBF{}").positionOf(3).column, 1U);
    EXPECT_EQ(text.line(2), "b");
    EXPECT_EQ(text.line(4), "");
    EXPECT_EQ(text.line(5), "d");
}

TEST(RuleModel, KnowsThePlaceOfEachPiece) {
    for (const std::string begin : {"", "\xEF\xBB\xBF", "/* first */\n"}) {
        const DocumentText document("rules.json", begin + support::kCompleteDocument);
        ASSERT_FALSE(document.report());
        const ConfigModel config = modelOf(document, 0);
        EXPECT_EQ(config.id, 7);
        const FilterModel& filter = config.transitions[1].filters[1];
        EXPECT_EQ(filter.place.path, "configs[0].payload.data.transitions[1].filters[1]");
        EXPECT_EQ(textAt(document, filter.operand2.place), R"("0.1")");
        EXPECT_EQ(textAt(document, config.transitions[0].actions[0].place), R"("LogZramHeartBeat")");
    }
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
