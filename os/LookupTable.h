#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

namespace Brenta::OS {

// A table holds pairs of key and value in the order in which they are written.
// It is an aggregate, so that a table can be a compile-time constant.
template <std::size_t Size, typename Key, typename Value>
struct LookupTable {
    std::array<std::pair<Key, Value>, Size> pairs;

    // Returns the key of the first pair, in table order, whose value equals `value`; empty if there is none.
    // C strings are compared by content, up to the terminating NUL, and must not be null.
    constexpr std::optional<Key> reverseLookup(const Value& value) const {
        for (const auto& [key, candidate] : pairs) {
            if (equal(candidate, value)) {
                return key;
            }
        }
        return std::nullopt;
    }

    // Returns the value of the first pair with that key. REQUIRES: there is one.
    constexpr const Value& lookup(const Key& key) const {
        std::size_t place = 0;
        while (pairs[place].first != key) {
            ++place;
        }
        return pairs[place].second;
    }

    // Returns the values, which are texts, in table order.
    constexpr std::array<std::string_view, Size> texts() const {
        std::array<std::string_view, Size> all;
        for (std::size_t place = 0; place < Size; ++place) {
            all[place] = pairs[place].second;
        }
        return all;
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

// Makes a table of as many pairs as are written, so that none can be left empty.
template <typename Key, typename Value, std::size_t Size>
constexpr LookupTable<Size, Key, Value> makeLookupTable(const std::pair<Key, Value> (&pairs)[Size]) {
    return {std::to_array(pairs)};
}

}  // namespace Brenta::OS
