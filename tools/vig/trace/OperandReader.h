#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "rulesengine/EvaluationContext.h"
#include "rulesengine/Event.h"
#include "tools/vig/document/RuleModel.h"
#include "tools/vig/trace/Trace.h"

namespace Brenta::OS::VIG::Tool {

// It is what a function has returned to a filter.
struct FunctionResult {
    std::string function;
    ComparedValue value;
};

// Reads again what a filter has compared, by the rules by which the library builds it. All that it is given must
// outlive it.
class OperandReader {
  public:
    // `results` are those of the functions that the filter has called, in order.
    OperandReader(const std::vector<FunctionResult>& results, const FilterModel& filter,
                  const RulesEngine::EvaluationContext& context, const RulesEngine::Event& event);

    // Is to be called for the left operand of the filter, and then for the right one.
    ComparedValue read(const FilterOperand& operand);

  private:
    template <typename T>
    ComparedValue readAs(const FilterOperand& operand);
    template <typename T>
    ComparedValue readAttribute(const std::string& name) const;

    const std::vector<FunctionResult>& results;
    const FilterValueType type;
    const RulesEngine::EvaluationContext& context;
    const RulesEngine::Event& event;
    const bool looksInContext;  // for an attribute that is compared with a constant
    std::size_t next = 0;
};

}  // namespace Brenta::OS::VIG::Tool
