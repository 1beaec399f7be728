#include "vig/base/Utf8.h"

#include <gtest/gtest.h>

namespace {

using Brenta::OS::VIG::replaceInvalidUtf8;

TEST(Utf8, KeepsWhatIsWellFormed) {
    const std::string withNul("a\0b\x7F", 4);
    EXPECT_EQ(replaceInvalidUtf8(withNul), withNul);
    for (const std::string text : {"", "\xC2\x80\xDF\xBF", "\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF",
                                   "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"}) {
        EXPECT_EQ(replaceInvalidUtf8(text), text);
    }
}

TEST(Utf8, ReplacesEachMaximalIllFormedPart) {
    // With "?" for U+FFFD.
    const std::pair<std::string, std::string> cases[] = {{"\x80", "?"},
                                                         {"a\xBF\x80z", "a??z"},
                                                         {"\xC0\x80", "??"},
                                                         {"\xC1\xBF", "??"},
                                                         {"\xC2", "?"},
                                                         {"\xC2z", "?z"},
                                                         {"\xE0\x80\x80", "???"},
                                                         {"\xE0\x9F\xBF", "???"},
                                                         {"\xE2\x82", "?"},
                                                         {"\xE2\x82z", "?z"},
                                                         {"\xE2z", "?z"},
                                                         {"\xE2\xE2\x82\xAC", "?\xE2\x82\xAC"},
                                                         {"\xED\xA0\x80", "???"},
                                                         {"\xED\xBF\xBF", "???"},
                                                         {"\xF0\x80\x80\x80", "????"},
                                                         {"\xF0\x8F\xBF\xBF", "????"},
                                                         {"\xF0\x9F\x8E", "?"},
                                                         {"\xF0\x9F\x8E\xF0\x9F", "??"},
                                                         {"\xF1\x80\x80\xC3\xA4", "?\xC3\xA4"},
                                                         {"\xF4\x90\x80\x80", "????"},
                                                         {"\xF5\x80\xFF\xFE", "????"}};
    for (const auto& [text, expected] : cases) {
        std::string replaced;
        for (const char character : expected) {
            replaced += character == '?' ? "\xEF\xBF\xBD" : std::string(1, character);
        }
        EXPECT_EQ(replaceInvalidUtf8(text), replaced) << testing::PrintToString(text);
    }
}

}  // namespace
