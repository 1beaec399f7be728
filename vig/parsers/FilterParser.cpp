#include "vig/parsers/FilterParser.h"

#include <json/value.h>

#include <string_view>
#include <type_traits>
#include <utility>

#include "rulesengine/Comparators.h"
#include "rulesengine/FuncFilter.h"
#include "vig/base/Log.h"
#include "vig/parsers/JsonValues.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG {

using RulesEngine::EvaluationContext;
using RulesEngine::Event;
using RulesEngine::EvtAndContextComparator;
using RulesEngine::Filter;
using RulesEngine::FuncFilter;
using RulesEngine::ReturnValueComparator;

namespace {

// Hands the comparison that the operator stands for to `use`, and returns what that returns.
auto withComparison(FilterOperator op, const auto& use) {
    switch (op) {
        case FilterOperator::Equal:
            return use(std::equal_to<>());
        case FilterOperator::NotEqual:
            return use(std::not_equal_to<>());
        case FilterOperator::Greater:
            return use(std::greater<>());
        case FilterOperator::Less:
            return use(std::less<>());
        case FilterOperator::GreaterEqual:
            return use(std::greater_equal<>());
        case FilterOperator::LessEqual:
            break;
    }
    return use(std::less_equal<>());
}

template <template <typename, typename> class Comparator, typename T, typename Source>
std::shared_ptr<Filter> createComparator(FilterOperator op, Source source, T constant) {
    return withComparison(op, [&]<typename Op>(Op) -> std::shared_ptr<Filter> {
        return std::make_shared<Comparator<T, Op>>(std::move(source), std::move(constant));
    });
}

// An attribute that the event lacks reads as "" or 0.
template <typename T>
T attributeOf(const Event& event, std::string_view name) {
    if constexpr (std::is_same_v<T, std::string>) {
        return std::string(event.getStringAttr(name));
    } else if constexpr (std::is_same_v<T, double>) {
        return event.getDoubleAttr(name).value_or(0.0);
    } else {
        return event.getInt64Attr(name).value_or(0);
    }
}

template <typename T>
OperandFunction<T> constantFunction(T value) {
    return [value = std::move(value)](const EvaluationContext&, const Event&) { return value; };
}

template <typename T>
OperandFunction<T> createOperandFunction(const FilterOperand& operand, const VIGParserConfig& config,
                                         const T& fallback) {
    switch (operand.type) {
        case FilterOperand::Type::Constant:
            return constantFunction(readNearest<T>(operand.value));
        case FilterOperand::Type::Envvar:
            return [name = operand.value](const EvaluationContext&, const Event& event) {
                return attributeOf<T>(event, name);
            };
        case FilterOperand::Type::Function:
            break;
    }
    std::function<T()> function;
    if (!config.getPureFunction(operand.value, function)) {
        VIG_LOG_ERROR("Invalid pure function type: %s", operand.value.c_str());
        return constantFunction(fallback);
    }
    return [function = std::move(function)](const EvaluationContext&, const Event&) { return function(); };
}

// A comparison as parsed has a constant on the left only if both operands are constants.
struct Comparison {
    FilterOperator op;
    const char* valueType;
    FilterOperand lhs;
    FilterOperand rhs;
};

template <typename T>
std::shared_ptr<Filter> createConstantFilter(Comparison comparison, const VIGParserConfig& config) {
    std::function<T()> function;
    if (comparison.lhs.type == FilterOperand::Type::Function &&
        !config.getPureFunction(comparison.lhs.value, function)) {
        VIG_LOG_ERROR("Failed to find function: %s", comparison.lhs.value.c_str());
        return nullptr;
    }
    // Garbage must not ship as 0.
    auto constant = readConstant<T>(comparison.rhs.value);
    if (!constant) {
        VIG_LOG_ERROR("Invalid constant of value type %s: %s.", comparison.valueType, comparison.rhs.value.c_str());
        return nullptr;
    }
    if (comparison.lhs.type == FilterOperand::Type::Function) {
        return _createTypedPureFuncReturnValueComparator<T>(comparison.op, std::move(function), std::move(*constant));
    }
    return _createTypedEvtAndContextComparator<T>(comparison.op, std::move(comparison.lhs.value), std::move(*constant));
}

template <typename T>
std::shared_ptr<Filter> createFilterOf(Comparison comparison, const VIGParserConfig& config) {
    if (comparison.rhs.type == FilterOperand::Type::Constant && comparison.lhs.type != FilterOperand::Type::Constant) {
        return createConstantFilter<T>(std::move(comparison), config);
    }
    auto lhs = createOperandFunction<T>(comparison.lhs, config, T());
    auto rhs = createOperandFunction<T>(comparison.rhs, config, T());
    std::shared_ptr<Filter> filter;
    _createFilter<T>(comparison.op, std::move(lhs), std::move(rhs), filter);
    return filter;
}

std::optional<FilterOperand> parseOperand(const Json::Value& filter, const char* key) {
    const Json::Value& json = filter[key];
    auto operand = FilterOperand::fromJson(json);
    if (!operand) {
        VIG_LOG_ERROR("Invalid %s JSON: %s.", key, styledText(json).c_str());
    }
    return operand;
}

}  // namespace

FilterOperator mirrored(FilterOperator op) {
    switch (op) {
        case FilterOperator::Greater:
            return FilterOperator::Less;
        case FilterOperator::Less:
            return FilterOperator::Greater;
        case FilterOperator::GreaterEqual:
            return FilterOperator::LessEqual;
        case FilterOperator::LessEqual:
            return FilterOperator::GreaterEqual;
        case FilterOperator::Equal:
        case FilterOperator::NotEqual:
            break;
    }
    return op;
}

std::optional<FilterOperand> FilterOperand::fromJson(const Json::Value& json) {
    if (!json.isObject()) {
        VIG_LOG_ERROR("Filter operand must be an object.");
        return std::nullopt;
    }
    const Json::Value& type = json["type"];
    if (!type.isString()) {
        VIG_LOG_ERROR("Filter operand type is missing or invalid.");
        return std::nullopt;
    }
    const std::string typeText = type.asString();
    const auto operandType = kFilterOperandTypeTable.reverseLookup(typeText);
    if (!operandType) {
        VIG_LOG_ERROR("Unknown filter operand type: %s", typeText.c_str());
        return std::nullopt;
    }
    const Json::Value& value = json["value"];
    if (!value.isString()) {
        VIG_LOG_ERROR("Filter operand value is missing or invalid.");
        return std::nullopt;
    }
    return FilterOperand{*operandType, value.asString()};
}

OperandFunction<std::string> _createStringOperandFunction(const FilterOperand& operand, const VIGParserConfig& config,
                                                          const std::string& fallback) {
    return createOperandFunction<std::string>(operand, config, fallback);
}

OperandFunction<std::int64_t> _createIntegerOperandFunction(const FilterOperand& operand, const VIGParserConfig& config,
                                                            std::int64_t fallback) {
    return createOperandFunction<std::int64_t>(operand, config, fallback);
}

OperandFunction<double> _createDoubleOperandFunction(const FilterOperand& operand, const VIGParserConfig& config,
                                                     double fallback) {
    return createOperandFunction<double>(operand, config, fallback);
}

template <typename T>
void _createFilter(FilterOperator op, OperandFunction<T> lhs, OperandFunction<T> rhs, std::shared_ptr<Filter>& out) {
    out = std::make_shared<FuncFilter>(
        [op, lhs = std::move(lhs), rhs = std::move(rhs)](const EvaluationContext& context, const Event& event) {
            const T left = lhs(context, event);
            const T right = rhs(context, event);
            return withComparison(op, [&](auto comparison) { return comparison(left, right); });
        });
}

template <typename T>
std::shared_ptr<Filter> _createTypedEvtAndContextComparator(const FilterOperator& op, std::string attributeName,
                                                            T constant) {
    return createComparator<EvtAndContextComparator>(op, std::move(attributeName), std::move(constant));
}

template <typename T>
std::shared_ptr<Filter> _createTypedPureFuncReturnValueComparator(const FilterOperator& op, std::function<T()> function,
                                                                  T constant) {
    return createComparator<ReturnValueComparator>(op, std::move(function), std::move(constant));
}

std::shared_ptr<Filter> _parseFilter(const Json::Value& filter, const VIGParserConfig& config) {
    const Json::Value& operatorJson = filter.isObject() ? filter["operator"] : Json::Value::nullSingleton();
    if (!operatorJson.isString()) {
        VIG_LOG_ERROR("Invalid filter JSON: %s.", styledText(filter).c_str());
        return nullptr;
    }
    const std::string operatorText = operatorJson.asString();
    const auto op = kFilterOperatorTable.reverseLookup(operatorText.c_str());
    if (!op) {
        VIG_LOG_ERROR("Invalid operator string: %s.", operatorText.c_str());
        return nullptr;
    }
    const auto valueTypeText = toText(filter["value_type"]);
    const auto valueType = valueTypeText ? kFilterValueTypeTable.reverseLookup(*valueTypeText) : std::nullopt;
    if (!valueType) {
        const std::string shown = valueTypeText ? *valueTypeText : styledText(filter["value_type"]);
        VIG_LOG_ERROR("Invalid operand value type: %s.", shown.c_str());
        return nullptr;
    }
    auto lhs = parseOperand(filter, "operand1");
    auto rhs = lhs ? parseOperand(filter, "operand2") : std::nullopt;
    if (!rhs) {
        return nullptr;
    }
    Comparison comparison{*op, valueTypeText->c_str(), std::move(*lhs), std::move(*rhs)};
    if (comparison.lhs.type == FilterOperand::Type::Constant && comparison.rhs.type != FilterOperand::Type::Constant) {
        std::swap(comparison.lhs, comparison.rhs);
        comparison.op = mirrored(comparison.op);
    }
    switch (*valueType) {
        case FilterValueType::String:
            return createFilterOf<std::string>(std::move(comparison), config);
        case FilterValueType::Integer:
            return createFilterOf<std::int64_t>(std::move(comparison), config);
        case FilterValueType::Double:
            break;
    }
    return createFilterOf<double>(std::move(comparison), config);
}

template void _createFilter(FilterOperator, OperandFunction<std::string>, OperandFunction<std::string>,
                            std::shared_ptr<Filter>&);
template void _createFilter(FilterOperator, OperandFunction<std::int64_t>, OperandFunction<std::int64_t>,
                            std::shared_ptr<Filter>&);
template void _createFilter(FilterOperator, OperandFunction<double>, OperandFunction<double>, std::shared_ptr<Filter>&);

template std::shared_ptr<Filter> _createTypedEvtAndContextComparator(const FilterOperator&, std::string, std::string);
template std::shared_ptr<Filter> _createTypedEvtAndContextComparator(const FilterOperator&, std::string, std::int64_t);
template std::shared_ptr<Filter> _createTypedEvtAndContextComparator(const FilterOperator&, std::string, double);

template std::shared_ptr<Filter> _createTypedPureFuncReturnValueComparator(const FilterOperator&,
                                                                           std::function<std::string()>, std::string);
template std::shared_ptr<Filter> _createTypedPureFuncReturnValueComparator(const FilterOperator&,
                                                                           std::function<std::int64_t()>, std::int64_t);
template std::shared_ptr<Filter> _createTypedPureFuncReturnValueComparator(const FilterOperator&,
                                                                           std::function<double()>, double);

}  // namespace Brenta::OS::VIG
