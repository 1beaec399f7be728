#include "tools/vig/events/JsonNumber.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace Brenta::OS::VIG::Tool {

namespace {

std::size_t countDigits(std::string_view text) {
    return std::min(text.find_first_not_of("0123456789"), text.size());
}

}  // namespace

bool isJsonNumber(std::string_view text) {
    text.remove_prefix(text.starts_with('-') ? 1 : 0);
    const std::size_t whole = text.starts_with('0') ? 1 : countDigits(text);
    text.remove_prefix(whole);
    bool isComplete = whole > 0;
    if (text.starts_with('.')) {
        const std::size_t fraction = countDigits(text.substr(1));
        isComplete = isComplete && fraction > 0;
        text.remove_prefix(1 + fraction);
    }
    if (text.starts_with('e') || text.starts_with('E')) {
        text.remove_prefix(1);
        text.remove_prefix(text.starts_with('+') || text.starts_with('-') ? 1 : 0);
        const std::size_t exponent = countDigits(text);
        isComplete = isComplete && exponent > 0;
        text.remove_prefix(exponent);
    }
    return isComplete && text.empty();
}

std::errc toDouble(std::string_view text, double& converted) {
    return isJsonNumber(text) ? std::from_chars(text.data(), text.data() + text.size(), converted).ec
                              : std::errc::invalid_argument;
}

}  // namespace Brenta::OS::VIG::Tool
