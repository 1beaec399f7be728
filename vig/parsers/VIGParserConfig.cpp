#include "vig/parsers/VIGParserConfig.h"

#include <cassert>
#include <optional>
#include <utility>

#include "vig/base/Log.h"

namespace Brenta::OS::VIG {

namespace {

template <typename Value>
bool lookUp(const std::unordered_map<std::string, Value>& table, const std::string& name, Value& out) {
    const auto found = table.find(name);
    if (found == table.end()) {
        return false;
    }
    out = found->second;
    return true;
}

}  // namespace

VIGParserConfig::VIGParserConfig(
    std::unordered_map<std::string, RulesEngine::EventType> eventTypesByName,
    std::unordered_map<std::string, std::shared_ptr<VIGActionFunctionFactory>> actionFactoriesByKey,
    std::unordered_map<std::string, Int64PureFunction> int64FunctionsByName,
    std::unordered_map<std::string, DoublePureFunction> doubleFunctionsByName,
    std::unordered_map<std::string, StringPureFunction> stringFunctionsByName,
    std::unordered_map<std::string, BoolPureFunction> boolFunctionsByName, EvaluationContextFactory contextFactory)
    : eventTypes(std::move(eventTypesByName)),
      actionFunctionFactories(std::move(actionFactoriesByKey)),
      int64PureFunctions(std::move(int64FunctionsByName)),
      doublePureFunctions(std::move(doubleFunctionsByName)),
      stringPureFunctions(std::move(stringFunctionsByName)),
      boolPureFunctions(std::move(boolFunctionsByName)),
      evaluationContextFactory(std::move(contextFactory)) {
    assert(evaluationContextFactory);
}

bool VIGParserConfig::getEventType(const std::string& name, RulesEngine::EventType& out) const {
    return lookUp(eventTypes, name, out);
}

bool VIGParserConfig::getActionFunction(const std::string& name, const std::vector<VIGActionParameter>& parameters,
                                        VIGActionFunction& out) const {
    std::shared_ptr<VIGActionFunctionFactory> factory;
    if (!lookUp(actionFunctionFactories, name, factory)) {
        return false;
    }
    assert(factory != nullptr);
    const std::optional<VIGActionFunction> action = factory->get(parameters);
    if (!action) {
        VIG_LOG_ERROR("Action %s does not support the given parameters.", name.c_str());
        return false;
    }
    out = *action;
    return true;
}

bool VIGParserConfig::getPureFunction(const std::string& name, Int64PureFunction& out) const {
    return lookUp(int64PureFunctions, name, out);
}

bool VIGParserConfig::getPureFunction(const std::string& name, DoublePureFunction& out) const {
    return lookUp(doublePureFunctions, name, out);
}

bool VIGParserConfig::getPureFunction(const std::string& name, StringPureFunction& out) const {
    return lookUp(stringPureFunctions, name, out);
}

bool VIGParserConfig::getPureFunction(const std::string& name, BoolPureFunction& out) const {
    return lookUp(boolPureFunctions, name, out);
}

std::unique_ptr<RulesEngine::EvaluationContext> VIGParserConfig::createEvaluationContext() const {
    return evaluationContextFactory();
}

}  // namespace Brenta::OS::VIG
