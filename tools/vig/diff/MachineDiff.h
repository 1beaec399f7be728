#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/vig/decide/Behaviour.h"
#include "tools/vig/decide/Junction.h"
#include "tools/vig/diff/Meeting.h"
#include "tools/vig/diff/Ways.h"
#include "tools/vig/document/RuleModel.h"

namespace Brenta::OS::VIG::Tool {

// It says whether two machines do the same by any events: ask for the same collections and log the same lines, event by
// event. While one event is offered, the k-th number that either of them draws is the same.
struct MachineDiff {
    enum class Verdict {
        Same,
        Different,
        Unrecordable,  // they differ, but only an infinity, NaN or a text that is no UTF-8 shows it
        Undecided
    };

    // It is one kind of event by which they do other things than each other, after the same recording.
    struct Change {
        RulesEngine::EventType event;
        Both<Outcome> outcomes;
        std::vector<Extent> extents;  // of the attributes of which it matters
        bool isDrawn;                 // what is drawn matters, too
    };

    Verdict verdict;
    std::size_t events = 0;            // Different: of the recording; Undecided: so many, less one, show no difference
    bool isShortest = true;            // otherwise some shorter recording was not decided
    bool areOddsSame = false;          // it is as probable that one of them does something as that the other one does
    Plan plan = {};                    // what either of them is offered and draws, after which they have differed
    Both<std::string> states = {};     // in which they wait for the last event
    std::vector<Change> changes = {};  // by the last event, that of the plan first; none if they differ from the start
};

// Compares a machine with changed ones, each by a search for the shortest recording that tells them apart. Used on one
// thread.
class Differ {
  public:
    enum class States {
        Ignored,
        Compared  // the names of those in which the machines wait have to be the same, too
    };

    enum class Words {
        None,    // only the plan is made
        Wanted,  // also all that is told of it
    };

    // All must outlive it.
    Differ(const ConfigModel& old, const Surroundings& surroundings, States states, Words words);
    Differ(const Differ&) = delete;
    Differ& operator=(const Differ&) = delete;

    // Nothing of the model but what its transitions say is asked.
    MachineDiff to(const ConfigModel& changed);

  private:
    class Search;

    // It says whether an event fires a transition: one that a record can hold, or else any other one.
    struct Firing {
        Verdict verdict;
        bool isUnrecordable;
    };
    using Firings = std::vector<Firing>;

    // Filters are the same as far as what they say goes.
    struct ComesBefore {
        bool operator()(const std::vector<FilterModel>* left, const std::vector<FilterModel>* right) const;
    };

    bool isWrittenAlike(const ConfigModel& changed) const;

    // Returns the filters of each transition as a number; nothing where something is drawn, or no transition of the old
    // machine has such filters.
    std::vector<std::optional<std::size_t>> conditionsOf(const ConfigModel& config) const;

    const Surroundings& surroundings;
    const States states;
    const Words words;
    WayFinder old;
    std::map<const std::vector<FilterModel>*, std::size_t, ComesBefore> conditions;  // of the old machine
    std::vector<std::optional<std::size_t>> oldConditions;                           // by its transitions

    // It is kept what events of a type do in a state of the old machine, by the place of the transitions that listen.
    std::map<std::pair<std::size_t, RulesEngine::EventType>, Firings> firings;
};

}  // namespace Brenta::OS::VIG::Tool
