#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/support/TestEvent.h"

// A second engine for rule documents, to compare the library with. It shares nothing with it. It builds nothing either:
// the rules stay JSON, which is read again on every event. Slow, and short enough to be checked by eye against
// docs/rule-documents.md.
namespace naive {

using Names = std::set<std::string>;

// The actions that it can do.
extern const Names kActions;

struct Event {
    std::string type;
    std::int64_t timeoutId;  // of a Timeout
    support::Attributes attributes;
};

// What the machines meet where they run.
struct World {
    Names eventTypes;                                          // that documents may name
    std::map<std::string, std::function<double()>> functions;  // those too, of the value type "double"
    support::Attributes context;                               // of each machine
    std::set<std::int64_t> timeoutIds;
    bool hasTriggerService;
};

// The machines let one see this, one entry each: log lines with the state that the machine was in, triggers, and where
// a machine is after each event.
using Trace = std::vector<std::string>;

std::string logEntry(const std::string& state, bool isError, const std::string& message);
std::string triggerEntry(const std::string& name, const std::string& process, const std::vector<std::string>& metadata);
std::string machineEntry(std::int64_t config, std::int64_t payload, const std::string& state,
                         const std::set<std::int64_t>& timeoutIds);

struct Outcome {
    Trace trace = {};
    bool hasMachines = false;   // not if the document is refused
    unsigned fired = 0;         // how many transitions have
    std::size_t delivered = 0;  // how many events have been
};

// Reads the document, starts its machines and gives each of them the events, but not those
// after a thousand moves or entries in the trace.
// REQUIRES: the document has fewer than 1000 brackets.
Outcome run(const World& world, const std::string& document, const std::vector<Event>& events);

}  // namespace naive
