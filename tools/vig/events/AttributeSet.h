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
        table<T>().push_back({store(name), toStored(value)});
    }

    // Puts the attributes of a kind in order. Returns the name of one that was added twice, if any.
    template <typename T>
    std::optional<std::string_view> sort() {
        auto& attributes = table<T>();
        const auto less = [this](const auto& left, const auto& right) { return view(left.name) < view(right.name); };
        const auto notLess = [&](const auto& left, const auto& right) { return !less(left, right); };
        auto twice = std::adjacent_find(attributes.begin(), attributes.end(), notLess);
        // Most records are written in order.
        if (twice != attributes.end()) {
            std::sort(attributes.begin(), attributes.end(), less);
            twice = std::adjacent_find(attributes.begin(), attributes.end(), notLess);
        }
        return twice == attributes.end() ? std::nullopt : std::optional(view(twice->name));
    }

    template <typename T>
    std::optional<T> find(std::string_view name) const {
        const auto& attributes = table<T>();
        // Among few names, most differ in length already.
        const auto found =
            attributes.size() <= kFew
                ? std::ranges::find_if(attributes, [&](const auto& each) { return view(each.name) == name; })
                : std::ranges::lower_bound(attributes, name, {}, [this](const auto& each) { return view(each.name); });
        if (found == attributes.end() || view(found->name) != name) {
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
            visit(view(each.name), toValue(each.value));
        }
    }

    std::vector<std::string_view> names(RulesEngine::Event::ValueType kind) const;

    // Returns true if both hold the same attributes with the same values.
    bool operator==(const AttributeSet& other) const;

  private:
    static constexpr std::size_t kFew = 8;

    // It is a part of `text`, which may move while attributes are added.
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

    Span store(std::string_view added);
    std::string_view view(Span span) const { return std::string_view(text).substr(span.begin, span.size); }

    template <typename T>
    Stored<T> toStored(T value) {
        if constexpr (std::is_same_v<T, std::string_view>) {
            return store(value);
        } else {
            return value;
        }
    }
    template <typename T>
    auto toValue(T stored) const {
        if constexpr (std::is_same_v<T, Span>) {
            return view(stored);
        } else {
            return stored;
        }
    }

    template <typename T>
    bool equals(const AttributeSet& other) const;

    std::tuple<std::vector<Attribute<std::uint64_t>>, std::vector<Attribute<std::int64_t>>,
               std::vector<Attribute<double>>, std::vector<Attribute<bool>>, std::vector<Attribute<std::string_view>>>
        tables;
    std::string text;  // all names and all strings
};

}  // namespace Brenta::OS::VIG::Tool
