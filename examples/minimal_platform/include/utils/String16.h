#pragma once

#include <string>
#include <string_view>

namespace android {

// It understands ASCII text only.
class String16 {
  public:
    String16() = default;
    explicit String16(const char* utf8) {
        for (const char character : std::string_view(utf8)) {
            text += static_cast<char16_t>(character);
        }
    }

    void append(const String16& other) { text += other.text; }

    bool operator==(const String16&) const = default;

  private:
    std::u16string text;
};

}  // namespace android
