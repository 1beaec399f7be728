#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

#include "rulesengine/Event.h"
#include "rulesengine/ShortText.h"

namespace Brenta::OS::VIG::Tool {

// It holds named attributes of the five kinds, in the byte order of their names. The kind is the type T of the value:
// one of std::uint64_t, std::int64_t, double, bool and std::string_view. A set that is cleared keeps its memory for the
// next attributes, and lookups allocate nothing. The views that it hands out are valid until it changes.
class AttributeSet {
  public:
    void clear();

    // Copies the name and the value. The set is out of order until sort<T>() has been called.
    template <typename T>
    void add(std::string_view name, std::type_identity_t<T> value) {
        table<T>().push_back({store(nameText, name), toStored(value)});
    }

    // Returns the value, to be replaced, of the attribute at a place among those of its kind, which is not a string.
    template <typename T>
    T& valueAt(std::size_t place) {
        return table<T>()[place].value;
    }

    // Replaces a string. Strings are replaced all together, each once, after dropStrings().
    void replaceString(std::size_t place, std::string_view value) {
        table<std::string_view>()[place].value = store(stringText, value);
    }
    void dropStrings() { stringText.clear(); }

    // Returns the place of an attribute among those of its kind. REQUIRES: the set has it, and is in order.
    template <typename T>
    std::size_t placeOf(std::string_view name) const {
        return static_cast<std::size_t>(lowerBound<T>(name) - table<T>().begin());
    }

    // Puts the attributes of a kind in order. Returns the name of one that was added twice, if any.
    template <typename T>
    std::optional<std::string_view> sort() {
        auto& attributes = table<T>();
        const auto less = [&](const auto& left, const auto& right) { return nameOf(left) < nameOf(right); };
        const auto notLess = [&](const auto& left, const auto& right) { return !less(left, right); };
        auto twice = std::adjacent_find(attributes.begin(), attributes.end(), notLess);
        // Most records are written in order.
        if (twice != attributes.end()) {
            std::sort(attributes.begin(), attributes.end(), less);
            twice = std::adjacent_find(attributes.begin(), attributes.end(), notLess);
        }
        return twice == attributes.end() ? std::nullopt : std::optional(nameOf(*twice));
    }

    template <typename T>
    std::optional<T> find(std::string_view name) const {
        const auto& attributes = table<T>();
        // Among few names, most differ in length already.
        if (attributes.size() <= kFew) {
            for (const auto& each : attributes) {
                if (RulesEngine::areEqualTexts(nameOf(each), name)) {
                    return toValue(each.value);
                }
            }
            return std::nullopt;
        }
        const auto found = lowerBound<T>(name);
        if (found == attributes.end() || nameOf(*found) != name) {
            return std::nullopt;
        }
        return toValue(found->value);
    }

    template <typename T>
    bool isEmpty() const {
        return table<T>().empty();
    }

    // Calls `visit` with the name and the value of each attribute of a kind.
    template <typename T>
    void forEach(const auto& visit) const {
        for (const auto& each : table<T>()) {
            visit(nameOf(each), toValue(each.value));
        }
    }

    std::vector<std::string_view> names(RulesEngine::Event::ValueType kind) const;

    // Returns true if both hold the same attributes with the same values.
    bool operator==(const AttributeSet& other) const;

  private:
    static constexpr std::size_t kFew = 8;

    // It is a part of one of the two texts, which may move while attributes are added.
    struct Span {
        std::size_t begin;
        std::size_t size;
    };

    template <typename T>
    using Stored = std::conditional_t<std::is_same_v<T, std::string_view>, Span, T>;

    template <typename T>
    struct Attribute {
        Span name;
        Stored<T> value;
    };

    template <typename T>
    std::vector<Attribute<T>>& table() {
        return std::get<std::vector<Attribute<T>>>(tables);
    }
    template <typename T>
    const std::vector<Attribute<T>>& table() const {
        return std::get<std::vector<Attribute<T>>>(tables);
    }

    static Span store(std::string& text, std::string_view added);
    static std::string_view view(const std::string& text, Span span) { return {text.data() + span.begin, span.size}; }

    std::string_view nameOf(const auto& attribute) const { return view(nameText, attribute.name); }

    template <typename T>
    auto lowerBound(std::string_view name) const {
        return std::ranges::lower_bound(table<T>(), name, {}, [&](const auto& each) { return nameOf(each); });
    }

    template <typename T>
    Stored<T> toStored(T value) {
        if constexpr (std::is_same_v<T, std::string_view>) {
            return store(stringText, value);
        } else {
            return value;
        }
    }
    template <typename T>
    auto toValue(T stored) const {
        if constexpr (std::is_same_v<T, Span>) {
            return view(stringText, stored);
        } else {
            return stored;
        }
    }

    template <typename T>
    bool equals(const AttributeSet& other) const;

    std::tuple<std::vector<Attribute<std::uint64_t>>, std::vector<Attribute<std::int64_t>>,
               std::vector<Attribute<double>>, std::vector<Attribute<bool>>, std::vector<Attribute<std::string_view>>>
        tables;
    std::string nameText;    // all names
    std::string stringText;  // all strings
};

}  // namespace Brenta::OS::VIG::Tool
