#include "vig/parsers/NumberText.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "vig/parsers/CLocale.h"

namespace Brenta::OS::VIG {

std::optional<std::int32_t> readInt32(const std::string& text) {
    const std::optional<std::int64_t> wide = readInt64(text);
    if (!wide || *wide < std::numeric_limits<std::int32_t>::min() || *wide > std::numeric_limits<std::int32_t>::max()) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(*wide);
}

std::optional<std::int64_t> readInt64(const std::string& text) {
    char* end = nullptr;
    errno = 0;
    const std::int64_t value = strtoll_l(text.c_str(), &end, 10, cLocale());
    return end == text.c_str() || errno == ERANGE ? std::nullopt : std::optional(value);
}

std::optional<double> readDouble(const std::string& text) {
    char* end = nullptr;
    errno = 0;
    const double value = strtod_l(text.c_str(), &end, cLocale());
    // A number that a double holds with fewer digits, since it is so close to 0, is ERANGE as well.
    const bool isOutOfRange = errno == ERANGE && (value == 0.0 || std::isinf(value));
    return end == text.c_str() || isOutOfRange ? std::nullopt : std::optional(value);
}

std::int64_t readNearestInt64(const std::string& text) {
    return strtoll_l(text.c_str(), nullptr, 10, cLocale());
}

double readNearestDouble(const std::string& text) {
    return strtod_l(text.c_str(), nullptr, cLocale());
}

}  // namespace Brenta::OS::VIG
