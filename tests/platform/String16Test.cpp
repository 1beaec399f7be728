#include <gtest/gtest.h>
#include <host/Host.h>
#include <utils/String16.h>

#include <utility>

TEST(String16, HasTheTextOrNothingIfThatIsNotUtf8) {
    const std::pair<const char*, std::u16string_view> cases[] = {
        {"", u""},
        {"a\u00E9\u20AC\uFEFF\uFFFF", u"a\u00E9\u20AC\uFEFF\uFFFF"},
        {"\U0001F600\U0010FFFF", u"\U0001F600\U0010FFFF"},
        {"a\xFF", u""},              // no byte of UTF-8
        {"a\xE2\x82", u""},          // incomplete
        {"a\xC0\x80", u""},          // not the shortest form
        {"a\xED\xA0\x80", u""},      // a surrogate
        {"a\xF4\x90\x80\x80", u""},  // beyond the last character
    };
    for (const auto& [utf8, expected] : cases) {
        const android::String16 text(utf8);
        EXPECT_EQ(text.view(), expected) << utf8;
        EXPECT_EQ(host::toUtf8(text), expected.empty() ? "" : utf8);
    }
}
