#include "tools/vig/document/JsonMistake.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tools/vig/document/DocumentText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Calls `visit` with each text of up to so many parts, which begins with `text`.
void forEachText(const std::string& text, int parts, const auto& visit) {
    constexpr std::string_view kParts[] = {"{", "}", "[", "]", ",", ":", "\"a\"", "1", "/**/", "#", "'a'"};
    visit(text);
    for (const std::string_view each : kParts) {
        if (parts > 0) {
            forEachText(text + std::string(each), parts - 1, visit);
        }
    }
}

TEST(JsonMistakes, AreFoundExactlyInWhatTheReaderRefuses) {
    int refused = 0;
    for (const char* const begin : {"[", "{"}) {
        forEachText(begin, 4, [&](const std::string& text) {
            const DocumentText document("", text);
            const auto mistakes = jsonMistakesIn(document.source(), JsonDialect::Library);
            ASSERT_EQ(mistakes.empty(), !document.report()) << text;
            for (const JsonMistake& each : mistakes) {
                EXPECT_TRUE(each.begin <= each.end && each.begin <= text.size() && !each.hint.empty()) << text;
            }
            refused += mistakes.empty() ? 0 : 1;
        });
    }
    EXPECT_GT(refused, 10'000);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
