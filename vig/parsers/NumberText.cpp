#include "vig/parsers/NumberText.h"

#include <locale.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace Brenta::OS::VIG {

namespace {

// Documents mean the same whatever locale the process has set.
locale_t cLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

}  // namespace

template <typename T>
NumberText<T> readNumber(const std::string& text) {
    char* end = nullptr;
    errno = 0;
    T value;
    bool isInRange;
    if constexpr (std::is_same_v<T, double>) {
        value = strtod_l(text.c_str(), &end, cLocale());
        // A number that a double holds with fewer digits, since it is so close to 0, is ERANGE as well.
        isInRange = errno != ERANGE || (value != 0.0 && !std::isinf(value));
    } else {
        value = strtoll_l(text.c_str(), &end, 10, cLocale());
        isInRange = errno != ERANGE;
    }
    const auto length = static_cast<std::size_t>(end - text.c_str());
    return {value, isInRange && length > 0, length};
}

template NumberText<std::int64_t> readNumber(const std::string&);
template NumberText<double> readNumber(const std::string&);

std::optional<std::int32_t> toInt32(std::optional<std::int64_t> wide) {
    return wide && std::in_range<std::int32_t>(*wide) ? std::optional(static_cast<std::int32_t>(*wide)) : std::nullopt;
}

}  // namespace Brenta::OS::VIG
