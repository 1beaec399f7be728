#pragma once

#include <string>
#include <vector>

#include "tools/vig/check/Catalogue.h"
#include "tools/vig/check/Diagnostic.h"
#include "tools/vig/document/RuleModel.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

// Warns of attributes that the filters and actions of a transition do not find, and of functions that its filters do
// not find.
void appendAttributeWarnings(const TransitionModel& transition, const Catalogue& catalogue,
                             const VIGParserConfig& registry, std::vector<Diagnostic>& found);

// The attributes that the action needs and events of the type are known not to have, as a list for people.
std::string missingFor(const ActionModel& action, RulesEngine::EventType event, const Catalogue& catalogue);

}  // namespace Brenta::OS::VIG::Tool
