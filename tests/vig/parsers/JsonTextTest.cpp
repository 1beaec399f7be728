#include "vig/parsers/JsonText.h"

#include <gtest/gtest.h>

#include "tests/support/Locales.h"
#include "tests/vig/parsers/Json.h"

namespace {

using Brenta::OS::VIG::reportOfUnreadable;
using Brenta::OS::VIG::respellForLocale;

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

#ifdef __cpp_exceptions

enum class Outcome { Accepted, Refused, Thrown };

Outcome outcomeOf(const std::string& text, unsigned levels) {
    Json::CharReaderBuilder builder;
    builder["stackLimit"] = levels;
    try {
        return readJson(text, builder).accepted ? Outcome::Accepted : Outcome::Refused;
    } catch (const std::exception&) {
        return Outcome::Thrown;
    }
}

std::string times(int count, const std::string& text) {
    return count == 0 ? "" : text + times(count - 1, text);
}

TEST(UnreadableJson, IsReportedExactlyWhereTheReaderThrows) {
    const std::string open(1000, '[');
    const std::string close(1000, ']');
    const std::string far = open + open;
    const std::string objects = times(999, R"({"k":)");
    const std::string mixed = times(500, R"([{"k":)");
    const std::pair<Outcome, std::vector<std::string>> cases[] = {
        {Outcome::Accepted,
         {open + close, open + " \n" + close, open.substr(1) + "1,[],{},[" + close, objects + "1" + times(999, "}"),
          objects + "{" + times(1000, "}"), times(499, R"([{"k":)") + "[{}]" + times(499, "}]"),
          "\xEF\xBB\xBF" + open + close, "[1] " + far, "1" + far, "[\"" + far + "\"]", "[\"\\\"" + far + "\"]",
          "[/*" + far + "*/1]", "[/*/" + far + "*/1]", "[//~" + far + "\n1]", "[//" + far + "\r1]"}},
        {Outcome::Thrown,
         {open, open + "[", open + "1" + close, open + "[]" + close, open + "/**/" + close, objects + R"({"k":)",
          objects + R"({"k":1)" + times(1000, "}"), mixed, mixed + "1" + times(500, "}]"), "\xEF\xBB\xBF" + open + "1",
          "[\"\\\\\"," + open, "//\n//\r/*]*/" + open + "1"}},
        {Outcome::Refused, {objects + R"({"k")", "]" + far, "]:" + far, "]][1"}},
    };
    for (const auto& [expected, texts] : cases) {
        for (const std::string& text : texts) {
            EXPECT_EQ(outcomeOf(text, 1000), expected) << text;
            EXPECT_EQ(reportOfUnreadable(text, 1000).has_value(), expected == Outcome::Thrown) << text;
        }
    }
}

TEST(UnreadableJson, IsFoundInEveryShortTextThatTheReaderWouldThrowAt) {
    for (const std::string& text : textsOf({"[", "]", "{", "}", "\"k\":", ",", "1", "/*[*/", R"("[\"")", " "}, 5)) {
        const Outcome outcome = outcomeOf(text, 2);
        const bool reported = reportOfUnreadable(text, 2).has_value();
        ASSERT_TRUE(outcome == Outcome::Refused || reported == (outcome == Outcome::Thrown)) << text;
    }
}

#endif

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
    // Only its beginning is.
    EXPECT_EQ(reportOfUnreadable(std::string_view("1/ ", (std::size_t{1} << 30) - 1), 1000), std::nullopt);
}

TEST(RespelledJson, ReadsInACommaLocaleAsTheOriginalReadsInTheCLocale) {
    std::vector<std::string> numbers = textsOf({"1", ".", "e", "-", "+"}, 5);
    numbers.insert(numbers.end(), {"0.1", "123456789012345678901234567890.5", "1.5e400", "1.5e-400", "1.5E+3", "-0.0",
                                   "4.9e-324", "9223372036854775808.0", "1.5e-9223372036854775808", "1.5e+-5",
                                   "1.5e99999999999999999999", "1.5e-99999999999999999999", "1.5x", "1.5e5.5"});
    std::vector<std::string> texts = {R"({"1.5":"2.5"} 3.5)", R"([1.5/*2.5*/,3.5,"4.5\"5.5"])", "\xEF\xBB\xBF[1.5]",
                                      "[1 2.5]"};
    for (const std::string& number : numbers) {
        texts.push_back("[" + number + ", 1]");
    }
    std::vector<Reading> expected;
    for (const std::string& text : texts) {
        expected.push_back(readJson(text));
        EXPECT_EQ(respellForLocale(text), "");
    }
    support::inCommaLocales([&] {
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const std::string respelled = respellForLocale(texts[i]);
            const Reading reading = readJson(respelled.empty() ? texts[i] : respelled);
            EXPECT_EQ(reading.accepted, expected[i].accepted) << texts[i];
            EXPECT_TRUE(!reading.accepted || reading.value == expected[i].value) << texts[i];
        }
    });
}

}  // namespace
