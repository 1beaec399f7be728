#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "rulesengine/EventType.h"
#include "tools/vig/init/Decimal.h"

namespace Brenta::OS::VIG::Tool {

// It says what a machine is to do that watches one attribute.
struct Sketch {
    RulesEngine::EventType event{};
    std::string attribute;
    bool isDouble = false;
    std::string process;             // whose events count; empty if the events are of no process
    Decimal limit;                   // above which the attribute is too large
    std::uint32_t times = 1;         // so often in a row, before there is an action
    std::optional<Decimal> release;  // at or below which all begins anew; never, if there is none
    std::optional<Decimal> second;   // a higher limit, above which there is one more action
    std::optional<Decimal> share;    // of the devices, on which there is anything; on all, if there is none
    std::string action;

    // Returns a number that is just greater than that limit.
    Decimal above(const Decimal& number) const { return isDouble ? number.above() : number.next(); }
};

// These read one part of a sketch from a text that a person has written. They return what is expected, and got in its
// place; nothing if all is well. Each may make use of what those before it have read. After a problem, that part of the
// sketch is of no use.
std::string readAttribute(const std::string& text, Sketch& sketch);
std::string readProcess(const std::string& text, Sketch& sketch);
std::string readLimit(const std::string& text, Sketch& sketch);
std::string readTimes(const std::string& text, Sketch& sketch);
std::string readRelease(const std::string& text, Sketch& sketch);
std::string readSecond(const std::string& text, Sketch& sketch);
std::string readShare(const std::string& text, Sketch& sketch);
std::string readAction(const std::string& text, Sketch& sketch);

// Returns the attributes that can be watched, a line for each type of events.
std::string watchableAttributes();

// Returns true if the events of the sketch are of processes.
bool isOfProcess(const Sketch& sketch);

// Returns the unit of the attribute, or nothing if it is not known.
std::string_view unitOf(const Sketch& sketch);

// Returns the actions that the events of the sketch have all attributes for, those first that start a collection.
std::vector<std::string_view> actionsFor(const Sketch& sketch);

}  // namespace Brenta::OS::VIG::Tool
