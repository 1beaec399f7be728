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
    // The kinds of attribute, in the order of the getters. The kind is part of the name: an event may have an Int64
    // and a Double that are both called "x".
    enum class ValueType {
        Uint64 = 0,  // getUint64Attr; filters cannot compare it
        Int64 = 1,   // getInt64Attr; "integer" in a document
        Double = 2,  // getDoubleAttr; "double" in a document
        Bool = 3,    // getBoolAttr; filters cannot compare it
        String = 4,  // getStringAttr; "string" in a document
    };

    // The one event that machines raise on themselves. It is initialised statically, lives as long as the
    // library and may be shared by all threads.
    static const EnteringStateEvent& ENTERING_STATE;

    // It is for derived classes: a plain event has no attributes.
    constexpr explicit Event(EventType eventType) : type(eventType) {}

    // A copy has the same type; an event cannot be assigned.
    Event(const Event&) = default;
    Event& operator=(const Event&) = delete;

    // Returns whether a transition that listens for `eventType` is concerned. An override may consult `context`,
    // which is the context of the machine that handles the event; the base compares the types.
    virtual bool matches(EventType eventType, const EvaluationContext& context) const;

    constexpr virtual ~Event() {}

    // Returns the unsigned integer of that name, or nothing. Names of attributes are compared byte by byte; their units
    // are an agreement between the service and who writes documents.
    virtual std::optional<std::uint64_t> getUint64Attr(std::string_view key) const;

    // Returns the signed integer of that name, or nothing.
    virtual std::optional<std::int64_t> getInt64Attr(std::string_view key) const;

    // Returns the floating-point number of that name, or nothing. With NaN only the filter `!=` holds.
    virtual std::optional<double> getDoubleAttr(std::string_view key) const;

    // Returns the truth value of that name, or nothing.
    virtual std::optional<bool> getBoolAttr(std::string_view key) const;

    // Returns the text of that name. An empty view means that the attribute is absent: "" and a missing attribute are
    // the same. The view must stay valid as long as the event.
    virtual std::string_view getStringAttr(std::string_view key) const;

    // Returns the names of the attributes of that kind, which the trigger actions pass on. The views must stay valid as
    // long as the event.
    virtual std::vector<std::string_view> keys(ValueType valueType) const;

    // It is fixed at construction. Transitions look at it by `matches` alone.
    const EventType type;
};

}  // namespace Brenta::OS::RulesEngine

// ENTERING_STATE can only be passed on where its class is known.
#include "rulesengine/EnteringStateEvent.h"  // IWYU pragma: export
