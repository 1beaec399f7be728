#pragma once

#include <string>
#include <string_view>

namespace android {

// It is text in UTF-16, a value that may be read from several threads at once.
class String16 {
  public:
    String16() = default;

    // Reads NUL-terminated UTF-8; characters beyond U+FFFF become surrogate pairs. Text that is not valid UTF-8
    // gives an empty string, as on the device: who wants to keep the rest of it repairs the text first.
    explicit String16(const char* utf8);

    void append(const String16& other) { text.append(other.text); }
    void setTo(const String16& other) { text = other.text; }

    // Returns the code units; valid until the string changes.
    std::u16string_view view() const { return text; }

    // Texts compare by code unit.
    bool operator==(const String16&) const = default;
    bool operator<(const String16& other) const { return text < other.text; }

  private:
    std::u16string text;
};

}  // namespace android
