#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "rulesengine/EventType.h"
#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/decide/CellSolver.h"
#include "tools/vig/document/RuleModel.h"
#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/events/EventRecord.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

// It is what decides over a document besides the document. All of it must outlive who decides.
struct Surroundings {
    enum class Context {
        Given,       // each machine's context has the attributes of `context`
        Catalogued,  // it may have any of those that the catalogue knows, with any value
        Open         // it may have any at all
    };

    const VIGParserConfig& registry;
    const Catalogue& catalogue;  // values of the attributes that it knows are preferred to their absence
    const AttributeSet& context;
    Effort& effort;  // that is left for all of the document
    Context kind = Context::Given;
};

// It is what the random function gives while one event is offered, in order, and how probable it is that it does as
// much for the filters.
struct DrawPlan {
    std::vector<double> numbers;
    double odds = 1;
};

// It has values of an attribute, which lie between two, or its absence.
struct Extent {
    std::string_view name;
    std::optional<Value> example;  // nothing if the attribute is absent
    std::optional<Scale::Bound> least = {};
    std::optional<Scale::Bound> most = {};
};

// Returns what filters read of an attribute. An empty text is none.
std::optional<Value> attributeOf(const AttributeSet& attributes, std::string_view name, FilterValueType type);

// Returns the attributes with those names and values.
AttributeSet attributesWith(const std::vector<std::pair<std::string_view, Value>>& values);

// Returns a constant as the library reads it.
Value constantOf(const std::string& text, FilterValueType type);

// It has the transitions of one state that listen for one event type, in order, and says which events they take: an
// event can fire one if it fulfils all its filters, and of each transition before it fails one filter. A filter with a
// draw can be fulfilled by some events, and fails for some, which may be the same.
class Junction {
  public:
    // It is what an event has to do: be asked of the filters of a transition, one after the other, until the one given;
    // with none given it fires.
    struct Target {
        std::size_t transition;
        std::optional<std::size_t> filter = {};
        bool outcome = true;  // of that filter
    };

    // All that an event has to fulfil.
    struct Question {
        std::size_t failing = 0;  // so many of the clauses that transitions fail, in their order
        Clauses clauses = {};     // and these

        void add(const Question& other) {
            failing = std::max(failing, other.failing);
            clauses.insert(clauses.end(), other.clauses.begin(), other.clauses.end());
        }

        auto operator<=>(const Question&) const = default;  // NOLINT(modernize-use-nullptr): it takes it for a 0
    };

    // `further` are filters about which is asked as well; they are not compared with draws. All must outlive it.
    Junction(const std::vector<const TransitionModel*>& listening, RulesEngine::EventType event,
             std::span<const FilterModel* const> further, const Surroundings& surroundings);
    Junction(const Junction&) = delete;
    Junction& operator=(const Junction&) = delete;

    RulesEngine::EventType event() const { return type; }
    std::size_t size() const { return transitions.size(); }
    const TransitionModel& transition(std::size_t index) const { return *transitions[index].model; }

    Question toReach(const Target& target) const;

    // The event passes all transitions.
    Question toPass() const;

    // They are asked by themselves: the filters of a transition until before one of them, and that a transition fails.
    Clauses toHold(std::size_t transition, std::size_t filters) const;
    const Clause& toFail(std::size_t transition) const { return transitions[transition].fails; }
    const Clause& toHold(std::size_t transition, std::size_t filter, bool outcome) const {
        const Meaning& meaning = transitions[transition].filters[filter];
        return outcome ? meaning.holds : meaning.fails;
    }
    const Clause& furtherHolds(std::size_t filter) const { return further[filter].holds; }
    const Clause& furtherFails(std::size_t filter) const { return further[filter].fails; }

    // Returns the clause that an attribute is there, or is not. REQUIRES: an action that asks for a collection needs
    // it, or a filter reads it.
    const Clause& present(AttributeKind kind, std::string_view name) const;
    const Clause& absent(AttributeKind kind, std::string_view name) const;

    Verdict decide(const Question& question, Values which, Effort& effort) const;

    // Returns an event that fulfils the question, if that is decided.
    std::optional<EventRecord> eventFor(const Question& question, Effort& effort) const;

    // Returns, for each attribute of which it matters, values around those of the event that fulfil the question
    // together. REQUIRES: the event does.
    std::vector<Extent> extentsAround(const EventRecord& record, const Question& question, Effort& effort) const;

    // Returns what has to be drawn for the event to come to the target; nothing of a target is that it passes all.
    DrawPlan drawsFor(const EventRecord& record, const std::optional<Target>& target) const;

  private:
    // One side of a comparison.
    struct Side {
        enum class Kind {
            Fixed,
            Missing,  // a number that is nowhere, which makes the filter false
            Attribute,
            Draw,
            Unknown
        };
        Kind kind;
        Value value = {};
        std::string_view name = {};
        double least = 0;  // of the numbers that are drawn
        double most = 0;
    };

    // What a filter asks, as clauses of one literal.
    struct Meaning {
        FilterOperator op;
        FilterValueType type;
        bool looksInContext;  // for an attribute that the event lacks
        Side left;
        Side right;
        Clause holds;
        Clause fails;
    };

    struct Listener {
        const TransitionModel* model;
        std::vector<Meaning> filters;
        Clause fails;             // one of its filters does
        std::size_t earlier = 0;  // so many of the clauses of `passing` are about transitions before it
    };

    Meaning readFilter(const FilterModel& filter);
    Side sideOf(const OperandModel& operand, FilterValueType kind, bool looksInContext) const;
    std::optional<Value> ofContext(std::string_view name, FilterValueType kind) const;
    bool isOfOpenContext(std::string_view name, FilterValueType kind) const;
    std::size_t variableOf(std::string_view name, FilterValueType kind);
    void giveMeaning(Meaning& meaning);
    CellSet cellsOf(FilterOperator op, std::size_t variable, const Value& constant) const;
    CellSet comparedWith(const Side& other, FilterOperator op, std::size_t variable, const Meaning& meaning) const;
    Literal relation(const Meaning& meaning);
    Clauses clausesOf(const Question& question) const;

    // Returns the value of a side that is no draw, or nothing if it is missing.
    std::optional<Value> valueOf(const Side& side, const Meaning& meaning, const EventRecord& record) const;

    // Returns the values of a side that are worth trying against the other one, which decide between all that may be
    // drawn.
    static std::vector<Value> candidates(const Side& side, const std::optional<Value>& other);

    static double oddsOf(const Meaning& meaning, const std::optional<Value>& left, const std::optional<Value>& right,
                         bool outcome);

    // Tells whether the filter can have the outcome for the event, and adds what has to be drawn for it.
    bool steer(const Meaning& meaning, const EventRecord& record, bool outcome, DrawPlan& draws) const;

    const RulesEngine::EventType type;
    const Surroundings& surroundings;
    Space space;
    std::map<std::pair<FilterValueType, std::string_view>, std::size_t> variables;
    std::vector<Listener> transitions;
    Clauses passing;         // that the transitions fail, in their order; what several ask is there once
    bool haveDraws = false;  // a filter has one
    std::vector<Meaning> further;
    std::map<std::size_t, std::pair<Clause, Clause>> presence;  // by variable: that it is there, that it is not
};

}  // namespace Brenta::OS::VIG::Tool
