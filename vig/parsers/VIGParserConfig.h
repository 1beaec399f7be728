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
    using Int64PureFunction = std::function<std::int64_t()>;
    using DoublePureFunction = std::function<double()>;
    using StringPureFunction = std::function<std::string()>;
    using BoolPureFunction = std::function<bool()>;
    using EvaluationContextFactory = std::function<std::unique_ptr<RulesEngine::EvaluationContext>()>;

    // The pure-function tables are independent: one name may stand in several of them.
    // REQUIRES: no factory and no function is empty (factories asserted in debug builds). `contextFactory` makes the
    // context of each new machine; by default a plain one.
    VIGParserConfig(
        std::unordered_map<std::string, RulesEngine::EventType> eventTypesByName,
        std::unordered_map<std::string, std::shared_ptr<VIGActionFunctionFactory>> actionFactoriesByKey,
        std::unordered_map<std::string, Int64PureFunction> int64FunctionsByName,
        std::unordered_map<std::string, DoublePureFunction> doubleFunctionsByName,
        std::unordered_map<std::string, StringPureFunction> stringFunctionsByName,
        std::unordered_map<std::string, BoolPureFunction> boolFunctionsByName,
        EvaluationContextFactory contextFactory = [] { return std::make_unique<RulesEngine::EvaluationContext>(); });

    // Each lookup returns whether the name is known, and leaves `out` alone if it is not.
    bool getEventType(const std::string& name, RulesEngine::EventType& out) const;

    // `name` is the lookup key: the action's name and, where the document gives parameters, their types in
    // parentheses. Also false, with a line in the log, if the factory refuses the parameters.
    bool getActionFunction(const std::string& name, const std::vector<VIGActionParameter>& parameters,
                           VIGActionFunction& out) const;

    bool getPureFunction(const std::string& name, Int64PureFunction& out) const;
    bool getPureFunction(const std::string& name, DoublePureFunction& out) const;
    bool getPureFunction(const std::string& name, StringPureFunction& out) const;
    bool getPureFunction(const std::string& name, BoolPureFunction& out) const;

    // Tools list the names of the tables.
    const std::unordered_map<std::string, RulesEngine::EventType>& getEventTypes() const { return eventTypes; }
    const std::unordered_map<std::string, std::shared_ptr<VIGActionFunctionFactory>>& getActionFunctionFactories()
        const {
        return actionFunctionFactories;
    }
    const std::unordered_map<std::string, Int64PureFunction>& getInt64PureFunctions() const {
        return int64PureFunctions;
    }
    const std::unordered_map<std::string, DoublePureFunction>& getDoublePureFunctions() const {
        return doublePureFunctions;
    }
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
