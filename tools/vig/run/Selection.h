#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/vig/document/RuleModel.h"
#include "tools/vig/events/EventRecord.h"

namespace Brenta::OS::VIG::Tool {

class Verb;

// It says of which machine and of which events somebody wants to be told.
struct SelectionOptions {
    struct Machine {
        std::int64_t number;
        bool isId;  // of the configuration, rather than the place in the document
    };

    struct Attribute {
        std::string name;
        std::string value;
    };

    struct Limit {
        std::int64_t value;
        bool isTime;  // in milliseconds, rather than the number of an event
    };

    bool isAny() const { return machine || !where.empty() || from || to; }

    std::optional<Machine> machine;
    std::vector<Attribute> where;  // an event has all of them
    std::optional<Limit> from;
    std::optional<Limit> to;
};

void addSelection(Verb& verb, SelectionOptions& options);

// Chooses among the events of a run, as they come. To start with, no event has come yet.
class Selection final {
  public:
    // The options must outlive it.
    explicit Selection(const SelectionOptions& options);

    // Finds the machine that is meant. Returns what is wrong with it, as a line and those that list the machines; else
    // nothing.
    std::vector<std::string> loaded(const DocumentModel& document);

    // Is to be told of each event before the machines are.
    void next(const EventRecord& record);

    // Returns whether the latest event is chosen, for that machine.
    bool has(std::size_t machine) const { return isChosen && place.value_or(machine) == machine; }

    // Returns the machine that is meant, if not all are.
    std::optional<std::size_t> machine() const { return place; }

    // Returns how many events were chosen.
    std::uint64_t count() const { return chosen; }

    // Returns what kept all events from being chosen, if it may be a mistake of who chose; else nothing.
    std::string note() const;

  private:
    bool isWithin() const;

    const SelectionOptions& options;
    std::optional<std::size_t> place;
    std::uint64_t number = 0;           // of the latest event
    std::int64_t timeMs;                // of the latest one that has a time
    bool hasTime = false;               // any event
    std::vector<std::uint64_t> having;  // by the index of an attribute: so many events have it at all
    bool isChosen;
    std::uint64_t chosen = 0;
};

}  // namespace Brenta::OS::VIG::Tool
