#pragma once

#include <cstdint>
#include <string>
#include <type_traits>

#include "tools/vig/check/Catalogue.h"
#include "tools/vig/document/RuleModel.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

// A filter as the library builds it: turned round if only its left operand is a constant.
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

inline bool usesFunction(const FilterModel& filter) {
    return isFunction(filter.operand1) || isFunction(filter.operand2);
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

// Reads a constant as the library does.
template <typename T>
T constantOf(const OperandModel& operand) {
    if constexpr (std::is_same_v<T, std::string>) {
        return operand.operand.value;
    } else if constexpr (std::is_same_v<T, double>) {
        return readNearestDouble(operand.operand.value);
    } else {
        return readNearestInt64(operand.operand.value);
    }
}

// Returns the kind of the attributes that the filter reads.
inline AttributeKind kindOf(FilterValueType type) {
    switch (type) {
        case FilterValueType::Integer:
            return AttributeKind::Int64;
        case FilterValueType::Double:
            return AttributeKind::Double;
        case FilterValueType::String:
            break;
    }
    return AttributeKind::String;
}

}  // namespace Brenta::OS::VIG::Tool
