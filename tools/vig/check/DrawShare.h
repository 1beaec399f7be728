#pragma once

#include <optional>
#include <string>

#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/document/Units.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

// Returns the share of all draws that fulfil the filter, if it compares a draw with a constant and some draw fulfils it
// and another one does not.
inline std::optional<double> shareOf(const FilterModel& filter) {
    const NormalFilter normal = normalFormOf(filter);
    const DoubleFunction* const function = doubleFunctionOf(normal.left);
    if (filter.valueType != FilterValueType::Double || function == nullptr || !function->isRandom ||
        !isConstant(normal.right)) {
        return std::nullopt;
    }
    const double constant = readNearest<double>(normal.right.operand.value);
    const double below = (constant - function->least) / (function->limit - function->least);
    if (!(below >= 0 && below < 1)) {
        return std::nullopt;
    }
    switch (normal.op) {
        case FilterOperator::Equal:
            return 0;
        case FilterOperator::NotEqual:
            return 1;
        case FilterOperator::Less:
            return below > 0 ? std::optional(below) : std::nullopt;
        case FilterOperator::LessEqual:
            return below;
        case FilterOperator::GreaterEqual:
            return below > 0 ? std::optional(1 - below) : std::nullopt;
        case FilterOperator::Greater:
            break;
    }
    return 1 - below;
}

// Returns true if such a filter lets some through and keeps others back, in practice too.
inline bool samples(std::optional<double> share) {
    return share && *share > 0 && *share < 1;
}

inline std::string shownPercent(double share) {
    return shownNumber(100 * share) + " %";
}

}  // namespace Brenta::OS::VIG::Tool
