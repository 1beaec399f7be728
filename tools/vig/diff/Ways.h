#pragma once

#include <cstddef>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "rulesengine/EventType.h"
#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/decide/Junction.h"
#include "tools/vig/document/RuleModel.h"

namespace Brenta::OS::VIG::Tool {

// It is an action that the machine runs, and on what: its own event has no attributes. Actions that nobody notices are
// none.
struct Effect {
    const KnownAction* action;
    bool ofEvent;

    bool operator==(const Effect&) const = default;
};

// Returns how many numbers the library draws for the filter.
std::size_t numbersDrawnBy(const FilterModel& filter);

// A filter is asked, and is to have an outcome.
struct Asked {
    const FilterModel* filter;
    bool ofEvent;       // otherwise of the machine's own event
    std::size_t drawn;  // so many numbers have been drawn for the event before
    bool outcome;
};

// One of these has to be true.
using Demand = std::vector<Asked>;

// It is one way in which a machine can go by one event, until it waits for the next one.
struct Way {
    static constexpr std::size_t kPassed = std::numeric_limits<std::size_t>::max();  // it fires none

    std::size_t passed = 0;                 // so many of `Ways::passing` have to be met, in their order,
    std::vector<std::size_t> demands = {};  // and all these of `Ways::demands`
    std::vector<Effect> effects = {};
    std::size_t rest = 0;     // the state in which it waits then
    std::size_t place = 0;    // of the transition that the event fires, among those that listen, or `kPassed`
    std::size_t numbers = 0;  // so many are drawn
};

struct Ways {
    std::vector<Demand> demands;
    std::vector<std::size_t> passing;  // of `demands`: that transitions fail before anything is drawn
    std::vector<Way> ways;
    std::vector<std::optional<std::size_t>> failures;  // by place: what a transition that draws nothing demands to fail
    bool isWhole = true;                               // otherwise there are more
    std::size_t moves = 0;                             // of the machine, on all of them
};

// Returns all demands of one of the ways.
std::vector<std::size_t> demandsOf(const Way& way, const Ways& ways);

// It knows how one machine can go by an event. States and transitions are numbers: "start" is 0. Used on one thread.
class WayFinder {
  public:
    static constexpr std::size_t kStart = 0;

    // Both must outlive it.
    WayFinder(const ConfigModel& config, const Surroundings& surroundings);

    const ConfigModel& config() const { return model; }
    std::string_view stateName(std::size_t state) const { return names[state]; }
    std::size_t to(std::size_t transition) const { return targets[transition]; }

    // Returns the types of the events for which transitions of the state listen, but for the machine's own.
    std::set<RulesEngine::EventType> heardIn(std::size_t state) const;

    // Returns those transitions, in document order.
    const std::vector<std::size_t>& listening(std::size_t state, RulesEngine::EventType event) const;

    // Returns the ways from a state in which it waits; and from its start.
    const Ways& waysFrom(std::size_t state, RulesEngine::EventType event);
    Ways waysFromStart();

    // Returns the one way from there if the event fires the transition and no number is drawn, but for what it demands.
    // Nothing if numbers are drawn.
    const std::optional<Way>& wayThrough(std::size_t transition);

  private:
    class Possibilities;

    // It is the beginning of a way.
    struct Begun {
        Way way;
        std::size_t state;
        bool hasMoved = false;  // so that the machine's own event is next
        std::size_t moves = 0;  // by that
    };

    std::optional<bool> constantOutcome(const FilterModel& filter, bool ofEvent);
    bool add(const Demand& demand, Way& way, Ways& ways);
    void ask(Begun first, const std::vector<std::size_t>& transitions, const Possibilities* possibilities, Ways& ways,
             std::vector<Begun>& fired, std::vector<Begun>& passed);
    void follow(Begun first, Ways& ways);
    void addEffects(std::size_t transition, bool ofEvent, std::vector<Effect>& effects) const;

    const ConfigModel& model;
    const Surroundings& surroundings;
    std::vector<std::string_view> names;
    std::vector<std::size_t> targets;  // of the transitions
    std::map<std::pair<std::size_t, RulesEngine::EventType>, std::vector<std::size_t>> listeners;

    // What was found out once is kept.
    std::map<const FilterModel*, bool> outcomes;  // of filters without draws, for the machine's own event
    std::map<std::pair<std::size_t, RulesEngine::EventType>, Ways> known;
    std::vector<std::optional<std::optional<Way>>> through;  // by transition
};

}  // namespace Brenta::OS::VIG::Tool
