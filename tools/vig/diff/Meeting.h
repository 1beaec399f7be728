#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "rulesengine/EventType.h"
#include "tools/vig/decide/CellSolver.h"
#include "tools/vig/decide/Junction.h"
#include "tools/vig/diff/Ways.h"
#include "tools/vig/events/EventRecord.h"

namespace Brenta::OS::VIG::Tool {

// What is said of either machine: the old one comes first.
template <typename T>
using Both = std::array<T, 2>;

// It is what the trigger service and the log get of one machine by one event, in their order.
struct Outcome {
    std::vector<std::string_view> triggers;  // the names of the actions
    std::vector<std::string_view> lines;     // what tells them apart

    bool operator==(const Outcome&) const = default;
};

// An event meets two machines. Since both draw the same numbers, these are attributes of it like all others.
class Meeting {
  public:
    // It is a way of either machine, by its number.
    using Pair = Both<std::size_t>;

    // It is what an event fulfils by which other things come of two ways, and what comes of them.
    struct Difference {
        Junction::Question question;
        Both<Outcome> outcomes;
    };

    // It is an event, what is drawn for it, and both together.
    struct Occasion {
        EventRecord record;
        std::vector<double> numbers;
        EventRecord whole;
    };

    // The ways and the surroundings must outlive it.
    Meeting(RulesEngine::EventType event, const Both<const Ways*>& ways, const Surroundings& surroundings);
    Meeting(const Meeting&) = delete;
    Meeting& operator=(const Meeting&) = delete;

    const Way& way(std::size_t side, std::size_t index) const { return ways[side]->ways[index]; }

    // Returns the number of the one way by which an event fires the transition at the place. REQUIRES: there is one.
    std::size_t wayThrough(std::size_t side, std::size_t place) const {
        const auto found = std::ranges::find(ways[side]->ways, place, &Way::place);
        return static_cast<std::size_t>(found - ways[side]->ways.begin());
    }

    // Returns false if one of the machines may go other ways, too.
    bool isWhole() const { return ways[0]->isWhole && ways[1]->isWhole; }

    std::size_t wayCount(std::size_t side) const { return ways[side]->ways.size(); }

    // Returns false if no event makes the machines go these ways, or leaves both as they are then.
    bool isWorthAsking(const Pair& pair) const;

    // Returns what an event fulfils by which the machines go these ways.
    Junction::Question toGo(const Pair& pair) const;

    std::vector<Difference> differencesOf(const Pair& pair) const;

    Verdict decide(const Junction::Question& question, Values which, Effort& effort) const {
        return junction->decide(question, which, effort);
    }

    // Returns one by which the machines go these ways and that fulfils the question, if that is decided.
    std::optional<Occasion> occasionFor(const Pair& pair, const Junction::Question& question, Effort& effort) const;

    // Returns, for each attribute of which it matters, values around those of the event that fulfil the question
    // together, with what was drawn.
    std::vector<Extent> extentsAround(const Occasion& occasion, const Junction::Question& question,
                                      Effort& effort) const;

  private:
    using FilterKey =
        std::tuple<FilterOperator, FilterValueType, FilterOperand::Type, std::string, FilterOperand::Type, std::string>;

    std::string nameOfDraw(std::size_t number) const { return drawn + std::to_string(number); }
    std::size_t furtherNumberOf(const Asked& asked);
    std::size_t furtherNumberOf(FilterModel filter);
    std::size_t clauseNumberOf(Clause clause);
    bool contradicts(std::size_t side, const Pair& pair) const;
    void addSure(const Way& way, std::map<std::size_t, CellSet>& cells, std::size_t side) const;
    bool excludeEachOther(const Pair& pair) const;

    const Both<const Ways*> ways;
    std::string drawn;               // begins the names of the numbers, which are longer than any other
    std::deque<FilterModel> models;  // with such names in the place of functions
    std::map<FilterKey, std::size_t> numbers;
    TransitionModel actions = {};  // those that the event may run
    std::unique_ptr<const Junction> junction;
    std::map<Clause, std::size_t> clauseNumbers;
    std::vector<const Clause*> clauses;
    Both<std::vector<std::size_t>> demands;                  // the number of the clause for each demand of the ways
    Both<std::vector<std::map<std::size_t, CellSet>>> sure;  // of each way, by variable: demanded in any case
    std::vector<std::size_t> ranges;                         // likewise, two for each number that is drawn
    Both<std::map<std::size_t, std::size_t>> failedPlaces;   // by clause: the first place of such a transition
};

}  // namespace Brenta::OS::VIG::Tool
