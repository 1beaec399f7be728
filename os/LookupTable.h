#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

namespace Brenta::OS {

// A fixed table of key and value pairs, kept in the order in which they are written.
// It is an aggregate, so that a table can be a compile-time constant.
template <std::size_t Size, typename Key, typename Value>
struct LookupTable {
    std::array<std::pair<Key, Value>, Size> pairs;

    // The key of the first pair, in table order, whose value equals `value`; empty if there is none.
    // C strings are compared by content, up to the terminating NUL, and must not be null.
    constexpr std::optional<Key> reverseLookup(const Value& value) const {
        for (const auto& [key, candidate] : pairs) {
            if (equal(candidate, value)) {
                return key;
            }
        }
        return std::nullopt;
    }

  private:
    static constexpr bool equal(const Value& left, const Value& right) {
        if constexpr (std::is_same_v<Value, const char*>) {
            return std::string_view(left) == std::string_view(right);
        } else {
            return left == right;
        }
    }
};

}  // namespace Brenta::OS
