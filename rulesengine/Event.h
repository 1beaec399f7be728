#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "os/Export.h"
#include "rulesengine/EventType.h"

namespace Brenta::OS::RulesEngine {

class EnteringStateEvent;
class EvaluationContext;

// An event is one observation: it has a type and named attributes of five kinds. A client derives its own events and
// overrides the getters of the kinds that it has; the base reports every attribute as absent.
//
// An event is owned by whoever delivers it, is read only on the delivering thread, and is not kept by the
// engine after the call that delivered it. No operation reports an error: what is not there is absent.
// The order of the virtual operations is part of the binary interface.
class VIG_EXPORT Event {
  public:
    // The kinds of attribute, in the order of the getters.
    enum class ValueType { Uint64 = 0, Int64 = 1, Double = 2, Bool = 3, String = 4 };

    // The one event that machines raise on themselves. It is initialised statically, lives as long as the
    // library and may be shared by all threads.
    static const EnteringStateEvent& ENTERING_STATE;

    constexpr explicit Event(EventType eventType) : type(eventType) {}
    Event(const Event&) = default;
    Event& operator=(const Event&) = delete;

    // Returns whether a transition that listens for `eventType` is concerned. An override may consult `context`,
    // which is the context of the machine that handles the event; the base compares the types.
    virtual bool matches(EventType eventType, const EvaluationContext& context) const;

    constexpr virtual ~Event() {}

    virtual std::optional<std::uint64_t> getUint64Attr(std::string_view key) const;
    virtual std::optional<std::int64_t> getInt64Attr(std::string_view key) const;
    virtual std::optional<double> getDoubleAttr(std::string_view key) const;
    virtual std::optional<bool> getBoolAttr(std::string_view key) const;

    // An empty view means that the attribute is absent: "" and a missing attribute are the same.
    // The view must stay valid as long as the event.
    virtual std::string_view getStringAttr(std::string_view key) const;

    // Returns the names of the attributes of that kind. The views must stay valid as long as the event.
    virtual std::vector<std::string_view> keys(ValueType valueType) const;

    const EventType type;
};

}  // namespace Brenta::OS::RulesEngine

// ENTERING_STATE can only be passed on where its class is known.
#include "rulesengine/EnteringStateEvent.h"  // IWYU pragma: export
