#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "rulesengine/EvaluationContext.h"
#include "rulesengine/Event.h"
#include "rulesengine/TimeoutEvent.h"

namespace support {

// `keys` lists them in this order.
template <typename T>
using NamedValues = std::vector<std::pair<std::string, T>>;

struct Attributes {
    NamedValues<std::uint64_t> uint64 = {};
    NamedValues<std::int64_t> int64 = {};
    NamedValues<double> real = {};
    NamedValues<bool> boolean = {};
    NamedValues<std::string> string = {};
};

// An event or context with the attributes given, as in TestEvent({.int64 = {{"pid", 1}}}, EventType::Test).
// Reading them allocates nothing.
template <typename Base>
class WithAttributes : public Base {
  public:
    template <typename... Arguments>
    explicit WithAttributes(Attributes values, Arguments... arguments) : Base(arguments...), all(std::move(values)) {}

    std::optional<std::uint64_t> getUint64Attr(std::string_view key) const override { return find(all.uint64, key); }
    std::optional<std::int64_t> getInt64Attr(std::string_view key) const override { return find(all.int64, key); }
    std::optional<double> getDoubleAttr(std::string_view key) const override { return find(all.real, key); }
    std::optional<bool> getBoolAttr(std::string_view key) const override { return find(all.boolean, key); }
    std::string_view getStringAttr(std::string_view key) const override { return find(all.string, key).value_or(""); }

  protected:
    template <typename Value>
    static auto find(const NamedValues<Value>& values, std::string_view key) {
        const auto found = std::ranges::find(values, key, &std::pair<std::string, Value>::first);
        using Result = std::conditional_t<std::is_same_v<Value, std::string>, std::string_view, Value>;
        return found == values.end() ? std::nullopt : std::optional<Result>(found->second);
    }

    Attributes all;
};

using TestContext = WithAttributes<Brenta::OS::RulesEngine::EvaluationContext>;

// Events have the names of their attributes, too.
template <typename Base>
class WithKeys : public WithAttributes<Base> {
  public:
    using ValueType = Brenta::OS::RulesEngine::Event::ValueType;
    using WithAttributes<Base>::WithAttributes;

    std::vector<std::string_view> keys(ValueType kind) const override {
        const auto namesOf = [](const auto& values) {
            std::vector<std::string_view> names;
            for (const auto& named : values) {
                names.emplace_back(named.first);
            }
            return names;
        };
        const auto& [uint64, int64, real, boolean, string] = this->all;
        return kind == ValueType::Uint64   ? namesOf(uint64)
               : kind == ValueType::Int64  ? namesOf(int64)
               : kind == ValueType::Double ? namesOf(real)
               : kind == ValueType::Bool   ? namesOf(boolean)
                                           : namesOf(string);
    }
};

class TestEvent : public WithKeys<Brenta::OS::RulesEngine::Event> {
  public:
    using EventType = Brenta::OS::RulesEngine::EventType;

    explicit TestEvent(Attributes values, EventType eventType = EventType::Test)
        : WithKeys(std::move(values), eventType) {}
};

using TestTimeoutEvent = WithKeys<Brenta::OS::RulesEngine::TimeoutEvent>;

}  // namespace support
