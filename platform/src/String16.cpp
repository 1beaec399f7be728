#include <host/Host.h>
#include <utils/String16.h>

#include <cstring>
#include <cwchar>
#include <locale>

namespace {

const auto& utf8AndUtf16() {
    return std::use_facet<std::codecvt<char16_t, char8_t, std::mbstate_t>>(std::locale::classic());
}

}  // namespace

namespace android {

String16::String16(const char* utf8) {
    const std::u8string bytes(utf8, utf8 + std::strlen(utf8));
    text.resize(bytes.size());
    std::mbstate_t state{};
    const char8_t* read = nullptr;
    char16_t* written = nullptr;
    utf8AndUtf16().in(state, bytes.data(), bytes.data() + bytes.size(), read, text.data(), text.data() + text.size(),
                      written);
    text.erase(static_cast<std::size_t>(written - text.data()));
    // The facet stops at most of what is not UTF-8, but takes surrogates for characters.
    if (host::toUtf8(*this) != utf8) {
        text.clear();
    }
}

}  // namespace android

namespace host {

std::string toUtf8(const android::String16& text) {
    const std::u16string_view units = text.view();
    std::u8string bytes(3 * units.size(), u8'\0');
    std::mbstate_t state{};
    const char16_t* read = nullptr;
    char8_t* written = nullptr;
    utf8AndUtf16().out(state, units.data(), units.data() + units.size(), read, bytes.data(),
                       bytes.data() + bytes.size(), written);
    return {bytes.data(), written};
}

}  // namespace host
