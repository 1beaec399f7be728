#pragma once

#include "tools/vig/RuleModel.h"
#include "tools/vig/check/Catalogue.h"

namespace tool {

// A filter as the library builds it: turned round if only its left operand is a constant.
struct NormalFilter {
    Brenta::OS::VIG::FilterOperator op;
    const OperandModel& left;
    const OperandModel& right;
};

inline bool isConstant(const OperandModel& operand) {
    return operand.operand.type == Brenta::OS::VIG::FilterOperand::Type::Constant;
}

inline bool isFunction(const OperandModel& operand) {
    return operand.operand.type == Brenta::OS::VIG::FilterOperand::Type::Function;
}

inline bool isAttribute(const OperandModel& operand) {
    return operand.operand.type == Brenta::OS::VIG::FilterOperand::Type::Envvar;
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

// The kind of the attributes that the filter reads.
inline AttributeKind kindOf(Brenta::OS::VIG::FilterValueType type) {
    switch (type) {
        case Brenta::OS::VIG::FilterValueType::Integer:
            return AttributeKind::Int64;
        case Brenta::OS::VIG::FilterValueType::Double:
            return AttributeKind::Double;
        case Brenta::OS::VIG::FilterValueType::String:
            break;
    }
    return AttributeKind::String;
}

}  // namespace tool
