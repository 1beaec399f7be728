#pragma once

#include <json/value.h>

#include <cstddef>
#include <optional>
#include <string>

#include "tools/vig/document/RuleModel.h"
#include "tools/vig/tune/Thresholds.h"

namespace Brenta::OS::VIG::Tool {

// It is a number in a filter that an attribute or a random function is compared with.
struct TunedConstant {
    std::size_t config;  // the places of the filter that has it
    std::size_t transition;
    std::size_t filter;
    const FilterModel* model;  // of the filter
    bool isFirst;              // it is the first operand
    Rank current;

    const OperandModel& operand() const { return isFirst ? model->operand1 : model->operand2; }
    const OperandModel& other() const { return isFirst ? model->operand2 : model->operand1; }

    // Returns the operator that has the other operand on its left.
    FilterOperator op() const;

    // Returns the JSON of the filter with another number.
    Json::Value with(Rank number) const;
};

// Returns the constant of that JSON path, which may end in ".value"; or nothing, with the reason in `problem`.
std::optional<TunedConstant> findConstant(const DocumentModel& document, const std::string& path, std::string& problem);

}  // namespace Brenta::OS::VIG::Tool
