#pragma once

#include <utils/String16.h>

#include <string>

namespace host {

// The text in UTF-8; a surrogate without its partner becomes U+FFFD.
std::string toUtf8(const android::String16& text);

}  // namespace host
