#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <type_traits>

#include "rulesengine/Event.h"
#include "tools/vig/document/RuleModel.h"
#include "vig/functions/DoubleFunctions.h"

namespace Brenta::OS::VIG::Tool {

// It is a filter as the library builds it: turned round if only its left operand is a constant.
struct NormalFilter {
    FilterOperator op;
    const OperandModel& left;
    const OperandModel& right;
};

inline bool isConstant(const OperandModel& operand) {
    return operand.operand.type == FilterOperand::Type::Constant;
}

inline bool isFunction(const OperandModel& operand) {
    return operand.operand.type == FilterOperand::Type::Function;
}

inline bool isAttribute(const OperandModel& operand) {
    return operand.operand.type == FilterOperand::Type::Envvar;
}

// Returns what is known of the function, or null if the operand is none that gives doubles.
inline const DoubleFunction* doubleFunctionOf(const OperandModel& operand) {
    const auto* const found = std::ranges::find(kDoubleFunctions, operand.operand.value, &DoubleFunction::name);
    return isFunction(operand) && found != std::end(kDoubleFunctions) ? found : nullptr;
}

// Returns true if the next filter of the same event may get another value. An unknown function is taken for one.
inline bool isDraw(const OperandModel& operand) {
    const DoubleFunction* const function = doubleFunctionOf(operand);
    return isFunction(operand) && (function == nullptr || function->isRandom);
}

inline bool usesFunction(const FilterModel& filter) {
    return isFunction(filter.operand1) || isFunction(filter.operand2);
}

inline bool draws(const FilterModel& filter) {
    return isDraw(filter.operand1) || isDraw(filter.operand2);
}

inline bool isOfConstants(const FilterModel& filter) {
    return isConstant(filter.operand1) && isConstant(filter.operand2);
}

// Otherwise, two operands that are computed at each event are compared.
inline bool hasConstant(const FilterModel& filter) {
    return isConstant(filter.operand1) || isConstant(filter.operand2);
}

inline NormalFilter normalFormOf(const FilterModel& filter) {
    if (isConstant(filter.operand1) && !isConstant(filter.operand2)) {
        return {mirrored(filter.op), filter.operand2, filter.operand1};
    }
    return {filter.op, filter.operand1, filter.operand2};
}

// Returns the operator that holds where the other one does not, but for what cannot be compared.
inline FilterOperator negated(FilterOperator op) {
    switch (op) {
        case FilterOperator::Equal:
            return FilterOperator::NotEqual;
        case FilterOperator::NotEqual:
            return FilterOperator::Equal;
        case FilterOperator::Greater:
            return FilterOperator::LessEqual;
        case FilterOperator::Less:
            return FilterOperator::GreaterEqual;
        case FilterOperator::GreaterEqual:
            return FilterOperator::Less;
        case FilterOperator::LessEqual:
            break;
    }
    return FilterOperator::Greater;
}

// Calls `visit` with std::type_identity<T>, where T is what the library compares in filters of that value type.
auto withComparedType(FilterValueType type, const auto& visit) {
    switch (type) {
        case FilterValueType::Integer:
            return visit(std::type_identity<std::int64_t>());
        case FilterValueType::Double:
            return visit(std::type_identity<double>());
        case FilterValueType::String:
            break;
    }
    return visit(std::type_identity<std::string>());
}

// Returns the kind of the attributes that the filter reads.
inline RulesEngine::Event::ValueType kindOf(FilterValueType type) {
    switch (type) {
        case FilterValueType::Integer:
            return RulesEngine::Event::ValueType::Int64;
        case FilterValueType::Double:
            return RulesEngine::Event::ValueType::Double;
        case FilterValueType::String:
            break;
    }
    return RulesEngine::Event::ValueType::String;
}

}  // namespace Brenta::OS::VIG::Tool
