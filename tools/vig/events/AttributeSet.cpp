#include "tools/vig/events/AttributeSet.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::Event;

void AttributeSet::clear() {
    std::apply([](auto&... each) { (each.clear(), ...); }, tables);
    nameText.clear();
    stringText.clear();
}

AttributeSet::Span AttributeSet::store(std::string& text, std::string_view added) {
    const Span span{text.size(), added.size()};
    text += added;
    return span;
}

std::vector<std::string_view> AttributeSet::names(Event::ValueType kind) const {
    std::vector<std::string_view> names;
    const auto collect = [&](const auto& attributes) {
        names.reserve(attributes.size());
        for (const auto& each : attributes) {
            names.push_back(nameOf(each));
        }
    };
    auto place = static_cast<std::size_t>(kind);  // the tables are in the order of the kinds
    std::apply([&](const auto&... each) { ((place-- == 0 ? collect(each) : void()), ...); }, tables);
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
                          return nameOf(left) == other.nameOf(right) &&
                                 toValue(left.value) == other.toValue(right.value);
                      });
}

}  // namespace Brenta::OS::VIG::Tool
