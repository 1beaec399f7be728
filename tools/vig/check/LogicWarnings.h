#pragma once

#include <vector>

#include "tools/vig/check/Diagnostic.h"
#include "tools/vig/document/RuleModel.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

// What the filters of a transition come to, whatever the events.
struct FilterLogic {
    bool neverHolds = false;
    std::vector<const FilterModel*> conditions = {};  // those that are not always true
};

// Warns of filters that are always or never true and of those that contradict each other.
FilterLogic appendLogicWarnings(const TransitionModel& transition, const VIGParserConfig& registry,
                                std::vector<Diagnostic>& found);

}  // namespace Brenta::OS::VIG::Tool
