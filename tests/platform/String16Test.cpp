#include <gtest/gtest.h>
#include <host/Utf8.h>
#include <utils/String16.h>

#include <string>

namespace {

using android::String16;

TEST(String16, Utf8BecomesUtf16AndBack) {
    const struct {
        const char* utf8;
        const char16_t* utf16;
    } cases[] = {
        {"", u""},
        {"camera", u"camera"},
        {"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80", u"\u007F\u0080\u07FF\u0800"},
        {"\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", u"\uD7FF\uE000\uFFFF"},
        {"\xF0\x90\x80\x80\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF", u"\U00010000\U0001F600\U0010FFFF"},
    };
    for (const auto& each : cases) {
        const String16 text(each.utf8);
        EXPECT_EQ(std::u16string(text.c_str(), text.size()), each.utf16) << each.utf8;
        EXPECT_EQ(host::toUtf8(text), each.utf8);
    }
}

TEST(String16, InvalidUtf8GivesAnEmptyString) {
    for (const char* utf8 :
         {"a\x80", "a\xBF", "a\xC3", "a\xC3(", "\xC0\x80", "\xC1\xBF", "\xE2\x82", "\xE0\x9F\xBF", "\xED\xA0\x80",
          "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80", "\xFF", "a\xF0\x9F\x98"}) {
        EXPECT_EQ(String16(utf8), String16()) << utf8;
    }
}

TEST(String16, SurrogateWithoutItsPartnerBecomesTheReplacementCharacter) {
    constexpr char16_t kUnits[] = {0xD83D, u'a', 0xDE00, 0xD83D, 0xD83D, 0xDE00, 0xD83D, 0};
    EXPECT_EQ(host::toUtf8(String16(kUnits)), "\uFFFDa\uFFFD\uFFFD\U0001F600\uFFFD");
}

TEST(String16, AppendedTextLeavesItsSourceAlone) {
    String16 name("vig:");
    const String16 process("camera");
    String16 copy = name;
    name.append(process);
    EXPECT_EQ(name, String16("vig:camera"));
    EXPECT_EQ(copy, String16("vig:"));
    copy.setTo(name);
    EXPECT_EQ(copy, name);
    EXPECT_NE(copy, process);
    EXPECT_LT(process, name);
}

}  // namespace
