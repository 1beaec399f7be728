#pragma once

#include <cstddef>
#include <string>

namespace android {

// Text in UTF-16. A value: it may be read from several threads at once.
class String16 {
  public:
    String16() = default;

    // From NUL-terminated UTF-8; characters beyond U+FFFF become surrogate pairs. Text that is not valid UTF-8
    // gives an empty string, as on the device: who wants to keep the rest of it repairs the text first.
    explicit String16(const char* utf8);

    // From NUL-terminated UTF-16, taken as it is.
    explicit String16(const char16_t* utf16) : text(utf16) {}

    void append(const String16& other) { text.append(other.text); }
    void setTo(const String16& other) { text = other.text; }

    // In UTF-16 code units.
    std::size_t size() const { return text.size(); }

    // NUL-terminated; valid until the string changes.
    const char16_t* c_str() const { return text.c_str(); }

    // By code unit.
    bool operator==(const String16&) const = default;
    bool operator<(const String16& other) const { return text < other.text; }

  private:
    std::u16string text;
};

}  // namespace android
