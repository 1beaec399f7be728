#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vig/decide/Junction.h"
#include "tools/vig/document/RuleModel.h"
#include "tools/vig/events/EventRecord.h"

namespace Brenta::OS::VIG::Tool {

// Stands for none where an index is expected.
inline constexpr std::size_t kNoIndex = std::numeric_limits<std::size_t>::max();

// The answers, the strongest last.
enum class Answer {
    Yes,
    Unrecordable,  // only an infinity, NaN or a text that is no UTF-8 does it
    Undecided,
    No
};

// It is what a machine does after it has entered a state, until it waits for an event: it follows EnteringState
// transitions, of which draws may leave several.
struct Chain {
    struct Stop {
        std::size_t state;
        std::size_t before;      // the stop before, unless it is the first one
        std::size_t transition;  // from there
        std::size_t moves;
    };

    std::vector<Stop> stops;         // the first one is the state entered
    std::vector<std::size_t> rests;  // stops where it can wait for an event, one for each state
    bool isWhole = true;             // otherwise there may be more
};

// It is one event on the way of a machine.
struct RouteStep {
    std::size_t transition;       // in document order
    Junction::Target target;      // of its junction
    Junction::Question question;  // all that the event fulfils
    std::size_t stop = 0;         // of the chain behind the transition, to which draws lead
};

// It is a way of a machine from its start, event by event.
struct Route {
    std::size_t startStop = 0;  // of the chain behind the state "start"
    std::vector<RouteStep> steps;
    std::optional<Junction::Target> ending = {};  // of the state's EnteringState transitions, at the last stop
};

// It is a route as events and draws that make the machine take it, if nobody else draws: those of the start first.
struct Plan {
    std::vector<EventRecord> events;
    std::vector<std::vector<double>> draws;  // one more than there are events
    std::vector<double> odds;                // that draws let each of them through
};

// Decides what a machine can do, by any events. States and transitions are numbers: "start" is 0, "end" is 1, the
// others come in the order in which the document names them. Used on one thread.
class Behaviour {
  public:
    static constexpr std::size_t kStart = 0;
    static constexpr std::size_t kEnd = 1;

    // All must outlive it. `further` are filters of which routes may ask as well.
    Behaviour(const ConfigModel& config, const Surroundings& surroundings,
              std::span<const FilterModel* const> further = {});
    Behaviour(const Behaviour&) = delete;
    Behaviour& operator=(const Behaviour&) = delete;

    const ConfigModel& config() const { return model; }
    std::size_t stateCount() const { return names.size(); }
    std::string_view stateName(std::size_t state) const { return names[state]; }
    std::optional<std::size_t> stateNumber(std::string_view name) const;
    std::size_t from(std::size_t transition) const { return sites[transition].from; }
    std::size_t to(std::size_t transition) const { return sites[transition].to; }
    const Junction& junctionOf(std::size_t transition) const { return *sites[transition].junction; }
    Junction::Target targetOf(std::size_t transition) const { return {sites[transition].index}; }

    // Tells whether an event can fire the transition in its state, wherever the machine comes from.
    Answer canFire(std::size_t transition);

    // Tell whether the machine comes to the state, be it on the way to another one, and fires the transition.
    Answer reaches(std::size_t state);
    Answer fires(std::size_t transition);

    // Tells whether a filter of the transition is asked and has the outcome.
    Answer sees(std::size_t transition, std::size_t filter, bool outcome);

    // Tells whether the machine can wait for an event in the state.
    bool waitsIn(std::size_t state);

    // Return the shortest way there. REQUIRES: the answer is yes.
    Route routeTo(std::size_t state);
    Route routeToFire(std::size_t transition);

    // Returns the shortest way to a filter of the transition that has the outcome, if there is one; without a filter,
    // to the firing of a transition on an event from outside.
    std::optional<Route> routeToOutcome(std::size_t transition, std::optional<std::size_t> filter, bool outcome);

    // Returns the length of the shortest recording by which the filters of the transition are asked first, in events.
    // REQUIRES: the machine comes to its state.
    std::size_t eventsUntilTried(std::size_t transition) const;

    // Returns the shortest way to wait in the state. REQUIRES: it can.
    Route routeToWait(std::size_t state);

    // Returns how many collections an event that fires the transition asks for at most, and that it does.
    struct Triggers {
        std::size_t count;
        Junction::Question question;
    };
    const Triggers& triggersOf(std::size_t transition);

    // Returns what an event that fires the transition may fulfil to ask for a collection, one way for each action that
    // asks for one.
    std::vector<Junction::Question> waysToTrigger(std::size_t transition) const;

    // It is an event that brings the machine from one state where it waits to another.
    struct Edge {
        std::size_t transition;
        std::size_t to;
        std::size_t stop;
    };
    const std::vector<Edge>& edgesFrom(std::size_t state);

    // Says what an event may do on a route that is looked for: fulfil the question, and bring the search to a mode.
    struct Option {
        Junction::Question question;
        std::size_t mode;
        bool isGoal = false;
    };
    using Options = std::function<std::vector<Option>(std::size_t transition, std::size_t mode)>;

    // Returns the shortest way to a goal, of those that begin in mode 0 and go on as the options say. Throughout, the
    // questions have been found possible.
    std::optional<Route> search(const Options& options);

    // Returns what makes the machine take the route; nothing if that could not be found within the effort.
    std::optional<Plan> planFor(const Route& route);

    Effort& budget() { return effort; }

    Verdict decide(const Junction& junction, const Junction::Question& question, Values which = Values::Recordable);

    // Tells whether an event can fulfil the question.
    Answer answerTo(const Junction& junction, const Junction::Question& question);

    // Returns true if something was left undecided since the object was made.
    bool hasGaps() const { return wasCut; }

    // Returns what the machine does after the state was entered.
    const Chain& chainFrom(std::size_t state);

  private:
    struct Site {
        std::size_t from;
        std::size_t to;
        const Junction* junction;
        std::size_t index;  // in the junction
    };

    // It says how the machine comes somewhere first.
    struct Arrival {
        Answer answer = Answer::No;
        std::size_t depth = 0;  // in events
        std::size_t from = 0;   // the state in which it waits before
        std::size_t transition = 0;
        std::size_t stop = 0;
    };

    // It has the transitions of one state on one event type.
    struct Crossing {
        std::unique_ptr<Junction> junction;
        std::vector<std::size_t> transitions;
    };

    // It says what EnteringState transitions make of a state.
    struct Entering {
        std::vector<std::size_t> transitions;  // that can fire
        bool canRest = true;
        bool isWhole = true;  // otherwise others may fire, too
    };

    void explore();
    void arrive(std::size_t entered, Arrival arrival, std::vector<bool>& seen, std::vector<std::size_t>& waiting);
    const Entering& enteringOf(std::size_t state);
    const Crossing* enteringCrossing(std::size_t state) const;
    Route routeBy(const Arrival& last);
    void steer(const Chain& chain, std::size_t stop, const std::optional<Junction::Target>& ending, DrawPlan& draws);

    const ConfigModel& model;
    Effort& effort;
    std::vector<std::string_view> names;
    std::map<std::string_view, std::size_t> numbers;
    std::vector<Site> sites;                         // of the transitions
    std::vector<std::vector<std::size_t>> outgoing;  // of each state, the transitions on events from outside
    std::map<std::pair<std::size_t, RulesEngine::EventType>, Crossing> crossings;
    bool wasCut = false;

    // What was found out once is kept.
    std::vector<std::optional<Answer>> guards;
    std::vector<std::optional<Triggers>> triggers;
    std::vector<std::optional<std::vector<Edge>>> edges;
    std::map<std::size_t, Chain> chains;
    std::map<std::pair<const Junction*, Junction::Question>, std::optional<EventRecord>> records;
    std::map<std::size_t, Entering> enterings;
    bool isExplored = false;
    std::vector<Arrival> waits;     // of each state: how the machine comes to wait there
    std::vector<Arrival> visits;    // of each state, be it on the way
    std::vector<Arrival> followed;  // of each EnteringState transition
};

}  // namespace Brenta::OS::VIG::Tool
