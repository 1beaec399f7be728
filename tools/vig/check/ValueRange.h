#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <type_traits>

#include "vig/parsers/FilterParser.h"

namespace Brenta::OS::VIG::Tool {

// Return the least value that is greater, if any. Strings are ordered as byte strings, so that only a zero byte comes
// between.
inline std::optional<std::int64_t> successorOf(std::int64_t value) {
    return value == std::numeric_limits<std::int64_t>::max() ? std::nullopt : std::optional(value + 1);
}
inline std::optional<double> successorOf(double value) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    return value == kInfinity ? std::nullopt : std::optional(std::nextafter(value, kInfinity));
}
inline std::optional<std::string> successorOf(const std::string& value) {
    return value + '\0';
}

template <typename T>
T leastValue() {
    if constexpr (std::is_same_v<T, double>) {
        return -std::numeric_limits<double>::infinity();
    } else if constexpr (std::is_same_v<T, std::string>) {
        return {};
    } else {
        return std::numeric_limits<T>::lowest();
    }
}

// It has the values of a type that fulfil some comparisons with constants. NaN, which only != lets through, is no
// value.
template <typename T>
class ValueRange {
  public:
    // Keeps the values for which `value op constant` holds.
    void narrow(FilterOperator op, const T& constant) {
        if constexpr (std::is_same_v<T, double>) {
            if (std::isnan(constant)) {
                empty = empty || op != FilterOperator::NotEqual;
                return;
            }
        }
        switch (op) {
            case FilterOperator::Equal:
                raise(constant);
                lower(constant, false);
                break;
            case FilterOperator::NotEqual:
                excluded.insert(constant);
                break;
            case FilterOperator::Greater:
                raise(successorOf(constant));
                break;
            case FilterOperator::GreaterEqual:
                raise(constant);
                break;
            case FilterOperator::Less:
                lower(constant, true);
                break;
            case FilterOperator::LessEqual:
                lower(constant, false);
                break;
        }
        passExcluded();
    }

    bool isEmpty() const { return empty || (most && (mostIsOutside ? !(least < *most) : *most < least)); }

  private:
    void raise(const std::optional<T>& bound) {
        if (!bound) {
            empty = true;
        } else if (least < *bound) {
            least = *bound;
        }
    }

    void lower(const T& bound, bool isOutside) {
        if (!most || bound < *most || (bound == *most && isOutside)) {
            most = bound;
            mostIsOutside = isOutside;
        }
    }

    void passExcluded() {
        while (!isEmpty() && excluded.erase(least) != 0) {
            raise(successorOf(T(least)));
        }
    }

    T least = leastValue<T>();
    std::optional<T> most;  // none is without bound
    bool mostIsOutside = false;
    bool empty = false;
    std::set<T> excluded;
};

}  // namespace Brenta::OS::VIG::Tool
