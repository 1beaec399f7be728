#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "rulesengine/EvaluationContext.h"
#include "rulesengine/Event.h"
#include "rulesengine/TimeoutEvent.h"

namespace support {

// In the order in which `keys` lists them.
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
    explicit WithAttributes(Attributes values, Arguments... arguments)
        : Base(arguments...), attributes(std::move(values)) {}

    std::optional<std::uint64_t> getUint64Attr(std::string_view key) const override {
        return find<std::optional<std::uint64_t>>(attributes.uint64, key);
    }
    std::optional<std::int64_t> getInt64Attr(std::string_view key) const override {
        return find<std::optional<std::int64_t>>(attributes.int64, key);
    }
    std::optional<double> getDoubleAttr(std::string_view key) const override {
        return find<std::optional<double>>(attributes.real, key);
    }
    std::optional<bool> getBoolAttr(std::string_view key) const override {
        return find<std::optional<bool>>(attributes.boolean, key);
    }
    std::string_view getStringAttr(std::string_view key) const override {
        return find<std::string_view>(attributes.string, key);
    }

  protected:
    template <typename Result>
    static Result find(const auto& values, std::string_view key) {
        for (const auto& [name, value] : values) {
            if (name == key) {
                return value;
            }
        }
        return {};
    }

    Attributes attributes;
};

using TestContext = WithAttributes<Brenta::OS::RulesEngine::EvaluationContext>;

// With their names too, as events have them.
template <typename Base>
class WithKeys : public WithAttributes<Base> {
  public:
    using ValueType = Brenta::OS::RulesEngine::Event::ValueType;
    using WithAttributes<Base>::WithAttributes;

    std::vector<std::string_view> keys(ValueType kind) const override {
        const auto namesOf = [](const auto& values) {
            std::vector<std::string_view> names;
            for (const auto& named : values) {
                names.push_back(named.first);
            }
            return names;
        };
        const Attributes& all = this->attributes;
        return kind == ValueType::Uint64   ? namesOf(all.uint64)
               : kind == ValueType::Int64  ? namesOf(all.int64)
               : kind == ValueType::Double ? namesOf(all.real)
               : kind == ValueType::Bool   ? namesOf(all.boolean)
                                           : namesOf(all.string);
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
