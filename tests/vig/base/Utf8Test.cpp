#include "vig/base/Utf8.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace Brenta::OS::VIG;

TEST(Utf8, ReplacesEachMaximalIllFormedPartAndNothingElse) {
    const std::string withNul("a\0b\x7F", 4);
    EXPECT_EQ(replaceInvalidUtf8(withNul), withNul);
    // Each text with what it becomes, with "?" for U+FFFD.
    std::istringstream cases(
        "\xC2\x80\xDF\xBF=\xC2\x80\xDF\xBF \xE0\xA0\x80\xED\x9F\xBF=\xE0\xA0\x80\xED\x9F\xBF "
        "\xEE\x80\x80\xEF\xBF\xBF=\xEE\x80\x80\xEF\xBF\xBF "
        "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF=\xF0\x90\x80\x80\xF4\x8F\xBF\xBF "
        "\x80=? a\xBF\x80z=a??z \xC0\x80=?? \xC1\xBF=?? \xC2=? \xC2z=?z \xE0\x80\x80=??? \xE0\x9F\xBF=??? \xE2\x82=? "
        "\xE2\x82\xC0=?? \xE2\x82z=?z \xE2z=?z \xE2\xE2\x82\xAC=?\xE2\x82\xAC \xED\xA0\x80=??? \xED\xBF\xBF=??? "
        "\xF0\x80\x80\x80=???? "
        "\xF0\x8F\xBF\xBF=???? \xF0\x9F\x8E=? \xF0\x9F\x8E\xF0\x9F=?? \xF1\x80\x80\xC3\xA4=?\xC3\xA4 "
        "\xF4\x90\x80\x80=???? \xF5\x80\xFF\xFE=????");
    int count = 0;
    for (std::string text, becomes; std::getline(cases, text, '=') && cases >> becomes; cases.ignore()) {
        std::string expected;
        for (const char character : becomes) {
            expected += character == '?' ? "\xEF\xBF\xBD" : std::string(1, character);
        }
        EXPECT_EQ(replaceInvalidUtf8(text), expected) << testing::PrintToString(text);
        ++count;
    }
    EXPECT_EQ(count, 26);
}

TEST(Utf8, LeavesOneByteOrderMarkOut) {
    EXPECT_EQ(withoutByteOrderMark("\xEF\xBB\xBF\xEF\xBB\xBFx"), "\xEF\xBB\xBFx");
    EXPECT_EQ(withoutByteOrderMark("\xEF\xBB"), "\xEF\xBB");
}

}  // namespace
