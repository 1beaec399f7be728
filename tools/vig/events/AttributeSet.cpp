#include "tools/vig/events/AttributeSet.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::Event;

void AttributeSet::clear() {
    std::apply([](auto&... each) { (each.clear(), ...); }, tables);
    text.clear();
}

AttributeSet::Span AttributeSet::store(std::string_view added) {
    const Span span{text.size(), added.size()};
    text += added;
    return span;
}

std::vector<std::string_view> AttributeSet::names(Event::ValueType kind) const {
    switch (kind) {
        case Event::ValueType::Uint64:
            return namesOf<std::uint64_t>();
        case Event::ValueType::Int64:
            return namesOf<std::int64_t>();
        case Event::ValueType::Double:
            return namesOf<double>();
        case Event::ValueType::Bool:
            return namesOf<bool>();
        case Event::ValueType::String:
            return namesOf<std::string_view>();
    }
    return {};
}

template <typename T>
std::vector<std::string_view> AttributeSet::namesOf() const {
    std::vector<std::string_view> names;
    names.reserve(table<T>().size());
    forEach<T>([&](std::string_view name, T) { names.push_back(name); });
    return names;
}

bool AttributeSet::operator==(const AttributeSet& other) const {
    return equals<std::uint64_t>(other) && equals<std::int64_t>(other) && equals<double>(other) &&
           equals<bool>(other) && equals<std::string_view>(other);
}

template <typename T>
bool AttributeSet::equals(const AttributeSet& other) const {
    return std::equal(table<T>().begin(), table<T>().end(), other.table<T>().begin(), other.table<T>().end(),
                      [&](const auto& left, const auto& right) {
                          return view(left.name) == other.view(right.name) &&
                                 toValue(left.value) == other.toValue(right.value);
                      });
}

}  // namespace Brenta::OS::VIG::Tool
