#include "vig/parsers/JsonText.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

#include "tests/support/PeakMemory.h"
#include "tests/vig/parsers/Json.h"

namespace {

using namespace std::string_literals;
using Brenta::OS::VIG::reportOfUnreadable;

// All texts of one piece to `most` pieces.
std::vector<std::string> textsOf(const std::vector<std::string>& pieces, int most) {
    std::vector<std::string> texts = {""};
    std::size_t begin = 0;
    for (int length = 1; length <= most; ++length) {
        const std::size_t end = texts.size();
        for (; begin < end; ++begin) {
            for (const std::string& piece : pieces) {
                texts.push_back(texts[begin] + piece);
            }
        }
    }
    return texts;
}

std::string times(std::size_t count, const std::string& text) {
    if (count == 0) {
        return "";
    }
    const std::string half = times(count / 2, text);
    return half + half + (count % 2 == 1 ? text : "");
}

// What is wrong with the library's verdict on the text, where the reader's own is the right one; empty if nothing.
std::string disagreement(const std::string& text, unsigned levels) {
    Json::CharReaderBuilder builder;
    builder["stackLimit"] = levels;
    builder["collectComments"] = false;  // which would take minutes
    const auto report = reportOfUnreadable(text, levels);
    try {
        const Reading reading = readJson(text, builder);
        if (!report || (!reading.accepted && *report == reading.report)) {
            return "";
        }
        return *report + "where the reader says: " + (reading.accepted ? "nothing" : reading.report);
    } catch (const std::exception& thrown) {
        return report && report->find("Nested deeper") != std::string::npos ? "" : report.value_or("") + thrown.what();
    }
}

TEST(UnreadableJson, IsReportedExactlyWhereTheReaderThrows) {
    const std::string open(1000, '[');
    const std::string close(1000, ']');
    const std::string far = open + open;
    const std::string objects = times(999, R"({"k":)");
    int reported = 0;
    for (const std::string& text :
         {open + close, open + " \n" + close, open.substr(1) + "1,[],{},[" + close, objects + "1" + times(999, "}"),
          objects + "{" + times(1000, "}"), "\xEF\xBB\xBF" + open + close, "[1] " + far, "1" + far,
          "[\"\\\"" + far + "\"]", "[/*/" + far + "*/1]", "[\"" + far + "\\\"", "[//~" + far + "\n1]",
          "[//" + far + "\r1]", objects + R"({"k")", "]" + far, "]][1"s, "[1e400," + far, R"(["\x",)" + far,
          "[1 2," + far, "{1:" + far,
          // And those that are reported.
          open, open + "[", "[/**/" + far, open + "1" + close, open + "[]" + close, open + "/**/" + close,
          objects + R"({"k":)", objects + R"({"k":1)" + times(1000, "}"), "\xEF\xBB\xBF" + open + "1",
          "[\"\\\\\"," + open, "//\n//\r/*]*/" + open + "1", times(1000, "{\"k\":0//\n]\"k\":") + "1"}) {
        EXPECT_EQ(disagreement(text, 1000), "") << text;
        const std::string report = reportOfUnreadable(text, 1000).value_or("");
        reported += report.find("Nested deeper") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(reported, 12);
}

// What the reader tells apart, and an object with its first member, which many patterns need.
const std::vector<std::string> kTokens = {"[", "]", "{", "}",      "\"k\":", "{\"k\":0", R"("\"[\\")",   "0",  "null",
                                          ",", ":", "/", "/*/]*/", "//{\r",  "\n",       "\xEF\xBB\xBF", "\0"s};

TEST(UnreadableJson, IsWhatTheReaderWouldThrowAtInEveryShortText) {
    for (const std::string& text : textsOf(kTokens, support::kHasSanitizer ? 3 : 4)) {
        for (const char* end : {"", "\"k\":[0"}) {
            ASSERT_EQ(disagreement(text + end, 2), "") << text << end;
        }
    }
}

// With the closing brackets of what stands in the pattern.
std::string mirrored(const std::string& pattern) {
    std::string closing;
    for (const char each : pattern) {
        closing.insert(0, each == '[' ? "]" : each == '{' ? "}" : "");
    }
    return closing;
}

// With VIG_TOKENS=5 in minutes rather than in seconds.
TEST(UnreadableJson, IsWhatTheReaderWouldThrowAtInEveryRepeatedPattern) {
    const char* const wanted = std::getenv("VIG_TOKENS");
    const int most = wanted != nullptr ? std::atoi(wanted) : support::kHasSanitizer ? 3 : 4;
    std::size_t disagreements = 0;
    const std::vector<std::string> patterns = textsOf(kTokens, most);
    for (const std::string& pattern : patterns) {
        for (const std::string& text : {times(1100, pattern), "{" + times(1100, pattern) + "}",
                                        times(999, pattern) + "0" + times(999, mirrored(pattern))}) {
            const std::string wrong = disagreement(text, 1000);
            disagreements += wrong.empty() ? 0 : 1;
            EXPECT_TRUE(wrong.empty() || disagreements > 10) << wrong << testing::PrintToString(pattern);
        }
    }
    EXPECT_EQ(disagreements, 0U);
    std::cout << patterns.size() << " patterns\n";
}

TEST(UnreadableJson, IsReportedWithItsPlaceAndTheLimit) {
    EXPECT_EQ(reportOfUnreadable("[[1]]", 2), "* Line 1, Column 3\n  Nested deeper than the limit of 2 levels.\n");
    EXPECT_EQ(reportOfUnreadable("\xEF\xBB\xBF[\r\n\r\n{\r\"k\":\n [", 2),
              "* Line 5, Column 2\n  Nested deeper than the limit of 2 levels.\n");
    // What is closed before does not hide what is opened after.
    EXPECT_EQ(reportOfUnreadable("[[],[[1]]]", 3), "* Line 1, Column 7\n  Nested deeper than the limit of 3 levels.\n");
    // Nor do strings, also one without an end.
    EXPECT_EQ(reportOfUnreadable("[\"[", 2), std::nullopt);
    for (const char* text : {R"(["",[1]])", R"(["\"",[1]])", R"(["]",[1]])"}) {
        EXPECT_TRUE(reportOfUnreadable(text, 2).has_value()) << text;
    }
    // Only its length is looked at.
    EXPECT_EQ(reportOfUnreadable(std::string_view("", std::size_t{1} << 30), 1000),
              "* Line 1, Column 1\n  Longer than the limit of 1073741823 bytes.\n");
}

}  // namespace
