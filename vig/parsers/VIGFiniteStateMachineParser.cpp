#include "vig/parsers/VIGFiniteStateMachineParser.h"

#include <json/value.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "rulesengine/FuncAction.h"
#include "vig/base/Log.h"
#include "vig/parsers/FilterParser.h"
#include "vig/parsers/JsonValues.h"
#include "vig/parsers/NumberText.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG {

namespace {

using RulesEngine::Action;
using RulesEngine::Filter;
using RulesEngine::FiniteStateMachine;

// Returns nothing if the text is not a number of the type or is beyond its range.
std::optional<VIGActionParameter> convertParameter(FilterValueType type, const std::string& text) {
    switch (type) {
        case FilterValueType::Integer:
            return toInt32(readConstant<std::int64_t>(text));
        case FilterValueType::Double:
            return readConstant<double>(text);
        case FilterValueType::String:
            break;
    }
    return text;
}

// Appends the parameter to the list and its type to the lookup key.
bool parseParameter(const Json::Value& json, std::vector<VIGActionParameter>& parameters, std::string& key) {
    const auto typeText = json.isObject() ? toText(json["type"]) : std::nullopt;
    const auto type = typeText ? kFilterValueTypeTable.reverseLookup(*typeText) : std::nullopt;
    if (!type) {
        VIG_LOG_ERROR("Invalid action parameter type: %s.", (typeText ? *typeText : styledText(json)).c_str());
        return false;
    }
    const auto valueText = toText(json["value"]);
    if (!valueText) {
        VIG_LOG_ERROR("Invalid action parameter type: %s.", styledText(json).c_str());
        return false;
    }
    auto parameter = convertParameter(*type, *valueText);
    if (!parameter) {
        VIG_LOG_ERROR("Invalid value for an action parameter of type %s: %s.", typeText->c_str(), valueText->c_str());
        return false;
    }
    key += parameters.empty() ? "" : ",";
    key += *typeText;
    parameters.push_back(std::move(*parameter));
    return true;
}

// Returns null on failure.
std::shared_ptr<Action> parseAction(const Json::Value& json, const VIGParserConfig& config) {
    if (!json.isObject() || !json["name"].isString()) {
        VIG_LOG_ERROR("Invalid action JSON: %s.", styledText(json).c_str());
        return nullptr;
    }
    std::string key = json["name"].asString();
    std::vector<VIGActionParameter> parameters;
    // Even an empty list makes another key: the parameter types are part of an action's name.
    if (json["parameters"].isArray()) {
        key += "(";
        for (const Json::Value& parameter : json["parameters"]) {
            if (!parseParameter(parameter, parameters, key)) {
                return nullptr;
            }
        }
        key += ")";
    }
    VIGActionFunction function;
    if (!config.getActionFunction(key, parameters, function)) {
        VIG_LOG_ERROR("FSM Action (%s) not found!", key.c_str());
        return nullptr;
    }
    return std::make_shared<RulesEngine::FuncAction>(std::move(function));
}

bool parseTransition(const Json::Value& json, const VIGParserConfig& config, FiniteStateMachine& machine) {
    if (!json.isObject()) {
        return false;
    }
    const Json::Value& from = json["from_state"];
    const Json::Value& to = json["to_state"];
    const Json::Value& event = json["event"];
    const Json::Value& filterList = json["filters"];
    const Json::Value& actionList = json["actions"];
    if (!from.isString() || !to.isString() || !event.isString() || !filterList.isArray() || !actionList.isArray()) {
        return false;
    }
    std::vector<std::shared_ptr<Filter>> filters;
    filters.reserve(filterList.size());
    for (const Json::Value& element : filterList) {
        filters.push_back(_parseFilter(element, config));
        if (!filters.back()) {
            return false;
        }
    }
    std::vector<std::shared_ptr<Action>> actions;
    actions.reserve(actionList.size());
    for (const Json::Value& element : actionList) {
        actions.push_back(parseAction(element, config));
        if (!actions.back()) {
            return false;
        }
    }
    RulesEngine::EventType eventType{};
    if (!config.getEventType(event.asString(), eventType)) {
        VIG_LOG_ERROR("FSM Event not found!");
        return false;
    }
    machine.addTransition(from.asString(), to.asString(), eventType, std::move(filters), std::move(actions));
    return true;
}

}  // namespace

VIGParseResult<FiniteStateMachine> VIGFiniteStateMachineParser::parse(const Json::Value& json,
                                                                      const VIGParserConfig& config) const {
    const auto refused = [&json]() -> VIGParseResult<FiniteStateMachine> {
        VIG_LOG_ERROR("Invalid FSM JSON: %s.", styledText(json).c_str());
        return {nullptr, VIGParseError::InvalidFsm};
    };
    if (!json.isObject() || !json["transitions"].isArray()) {
        return refused();
    }
    auto machine = std::make_unique<FiniteStateMachine>(config.createEvaluationContext());
    for (const Json::Value& element : json["transitions"]) {
        if (!parseTransition(element, config, *machine)) {
            // The line is written while the machine is still there: a client's context may log as it is destroyed.
            return refused();
        }
    }
    return {std::move(machine), VIGParseError::Ok};
}

}  // namespace Brenta::OS::VIG
