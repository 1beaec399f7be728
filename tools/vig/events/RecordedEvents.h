#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "rulesengine/EvaluationContext.h"
#include "rulesengine/Event.h"
#include "rulesengine/TimeoutEvent.h"
#include "tools/vig/events/AttributeSet.h"

namespace Brenta::OS::VIG::Tool {

// An event or a context with the attributes of a set, which stays the caller's and must outlive the object.
template <typename Base>
class WithAttributes : public Base {
  public:
    template <typename... Arguments>
    explicit WithAttributes(const AttributeSet& set, Arguments... arguments) : Base(arguments...), attributes(set) {}

    std::optional<std::uint64_t> getUint64Attr(std::string_view key) const override {
        return attributes.find<std::uint64_t>(key);
    }
    std::optional<std::int64_t> getInt64Attr(std::string_view key) const override {
        return attributes.find<std::int64_t>(key);
    }
    std::optional<double> getDoubleAttr(std::string_view key) const override { return attributes.find<double>(key); }
    std::optional<bool> getBoolAttr(std::string_view key) const override { return attributes.find<bool>(key); }
    std::string_view getStringAttr(std::string_view key) const override {
        return attributes.find<std::string_view>(key).value_or(std::string_view());
    }

  protected:
    const AttributeSet& attributes;
};

template <typename Base>
class WithKeys : public WithAttributes<Base> {
  public:
    using WithAttributes<Base>::WithAttributes;

    std::vector<std::string_view> keys(RulesEngine::Event::ValueType kind) const override {
        return this->attributes.names(kind);
    }
};

// Built from the attributes and the event type.
using RecordedEvent = WithKeys<RulesEngine::Event>;

// Built from the attributes and the timeout's identifier.
using RecordedTimeoutEvent = WithKeys<RulesEngine::TimeoutEvent>;

using RecordedContext = WithAttributes<RulesEngine::EvaluationContext>;

}  // namespace Brenta::OS::VIG::Tool
