#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "rulesengine/EvaluationContext.h"
#include "rulesengine/Event.h"
#include "rulesengine/TimeoutEvent.h"
#include "tools/vig/events/AttributeSet.h"

namespace Brenta::OS::VIG::Tool {

class Output;

// It is one event as it is recorded: a line of an event file; or the line that says that a device has no more of them.
struct EventRecord {
    RulesEngine::EventType type{};
    std::optional<std::int64_t> timeMs = {};     // since the recording began; for people, no rule sees it
    std::optional<std::int64_t> timeoutId = {};  // engaged exactly if the type is Timeout
    AttributeSet attributes = {};
    std::string device = {};  // whose event it is; for who reads the recording, no rule sees it; empty if not named
    bool isEnd = false;       // it is no event but the end of the device, and has nothing else

    bool operator==(const EventRecord&) const = default;
};

// Returns the record as JSON in one line, which RecordParser reads back to an equal one; or writes that line.
// REQUIRES: doubles are finite; names and strings are well-formed UTF-8; attributes are sorted.
std::string jsonOf(const EventRecord& record);
void writeEvent(Output& output, const EventRecord& record);

// Returns attributes without an event, as a test writes its context: {"int64":{"limit":5}}. REQUIRES: the same.
std::string jsonOf(const AttributeSet& attributes);

// It is an event or a context with the attributes of a set, which stays the caller's and must outlive the object.
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

using RecordedEvent = WithKeys<RulesEngine::Event>;                // built from the attributes and the event type
using RecordedTimeoutEvent = WithKeys<RulesEngine::TimeoutEvent>;  // from the attributes and the timeout's identifier
using RecordedContext = WithAttributes<RulesEngine::EvaluationContext>;

// Calls `act` with the event of the record.
void withEventOf(const EventRecord& record, const auto& act) {
    if (record.type == RulesEngine::EventType::Timeout) {
        act(RecordedTimeoutEvent(record.attributes, *record.timeoutId));
    } else {
        act(RecordedEvent(record.attributes, record.type));
    }
}

}  // namespace Brenta::OS::VIG::Tool
