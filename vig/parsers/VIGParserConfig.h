#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "os/Export.h"
#include "rulesengine/EvaluationContext.h"
#include "rulesengine/EventType.h"
#include "vig/actions/VIGActionFunction.h"
#include "vig/actions/VIGActionFunctionFactory.h"

namespace Brenta::OS::VIG {

// The registry holds the names that a rule document may use. Names are matched exactly. It never changes after
// construction, so several threads may use one registry at once; what it hands out may outlive it.
class VIG_EXPORT VIGParserConfig {
  public:
    // Gives the value of an operand that is compared as "integer". A filter calls its function on every evaluation, on
    // the thread that drives the machine, so one that is registered for several machines is called on all their
    // threads.
    using Int64PureFunction = std::function<std::int64_t()>;
    using DoublePureFunction = std::function<double()>;       // the same for "double"
    using StringPureFunction = std::function<std::string()>;  // the same for "string"
    using BoolPureFunction = std::function<bool()>;           // for clients; no operand has such a value

    // Makes the context of a new machine, on the thread that parses; never null.
    using EvaluationContextFactory = std::function<std::unique_ptr<RulesEngine::EvaluationContext>()>;

    // The pure-function tables are independent: one name may stand in several of them. `contextFactory` makes the
    // context of each new machine; by default a plain one.
    // REQUIRES: no factory and no function is empty (factories asserted in debug builds).
    VIGParserConfig(
        std::unordered_map<std::string, RulesEngine::EventType> eventTypesByName,
        std::unordered_map<std::string, std::shared_ptr<VIGActionFunctionFactory>> actionFactoriesByKey,
        std::unordered_map<std::string, Int64PureFunction> int64FunctionsByName,
        std::unordered_map<std::string, DoublePureFunction> doubleFunctionsByName,
        std::unordered_map<std::string, StringPureFunction> stringFunctionsByName,
        std::unordered_map<std::string, BoolPureFunction> boolFunctionsByName,
        EvaluationContextFactory contextFactory = [] { return std::make_unique<RulesEngine::EvaluationContext>(); });

    // Looks an event type up. Returns whether the name is known, and leaves `out` alone if it is not.
    bool getEventType(const std::string& name, RulesEngine::EventType& out) const;

    // Has the factory behind `name` make an action: the lookup key, which is the action's name and, where the document
    // gives parameters, their types in parentheses, as in "Wait(integer,string)". Returns whether `out` is one, and
    // leaves it alone if the key is unknown or, with a line in the log, the factory refuses the parameters.
    bool getActionFunction(const std::string& name, const std::vector<VIGActionParameter>& parameters,
                           VIGActionFunction& out) const;

    // Looks a function up in the table of its type. Returns whether the name is known there, and leaves `out` alone if
    // it is not.
    bool getPureFunction(const std::string& name, Int64PureFunction& out) const;
    bool getPureFunction(const std::string& name, DoublePureFunction& out) const;  // the same for doubles
    bool getPureFunction(const std::string& name, StringPureFunction& out) const;  // the same for strings
    bool getPureFunction(const std::string& name, BoolPureFunction& out) const;    // the same for truth values

    // Returns the names of the event types. All tables are valid as long as the registry; who wants a registry with
    // more names makes it of copies.
    const std::unordered_map<std::string, RulesEngine::EventType>& getEventTypes() const { return eventTypes; }

    // Returns the actions by their lookup keys.
    const std::unordered_map<std::string, std::shared_ptr<VIGActionFunctionFactory>>& getActionFunctionFactories()
        const {
        return actionFunctionFactories;
    }

    // Returns the functions that give integers.
    const std::unordered_map<std::string, Int64PureFunction>& getInt64PureFunctions() const {
        return int64PureFunctions;
    }

    // Returns the functions that give doubles.
    const std::unordered_map<std::string, DoublePureFunction>& getDoublePureFunctions() const {
        return doublePureFunctions;
    }

    // Returns the functions that give strings.
    const std::unordered_map<std::string, StringPureFunction>& getStringPureFunctions() const {
        return stringPureFunctions;
    }

    // Makes a context for a new machine; the caller owns it.
    std::unique_ptr<RulesEngine::EvaluationContext> createEvaluationContext() const;

  private:
    std::unordered_map<std::string, RulesEngine::EventType> eventTypes;
    std::unordered_map<std::string, std::shared_ptr<VIGActionFunctionFactory>> actionFunctionFactories;
    std::unordered_map<std::string, Int64PureFunction> int64PureFunctions;
    std::unordered_map<std::string, DoublePureFunction> doublePureFunctions;
    std::unordered_map<std::string, StringPureFunction> stringPureFunctions;
    std::unordered_map<std::string, BoolPureFunction> boolPureFunctions;
    EvaluationContextFactory evaluationContextFactory;
};

}  // namespace Brenta::OS::VIG
