#pragma once

#include <cstddef>
#include <vector>

#include "rulesengine/EvaluationContext.h"
#include "rulesengine/Event.h"

// These do the same work as rules, written out in C++ as one would in a service that has no rules.
namespace bench::byhand {

using Brenta::OS::RulesEngine::EvaluationContext;
using Brenta::OS::RulesEngine::Event;
using Brenta::OS::RulesEngine::EventType;

// Returns true if one of the types, each asked by `matches`, is that of the event.
bool matchesAny(const std::vector<EventType>& types, const EvaluationContext& context, const Event& event);

using Rule = bool (*)(const EvaluationContext& context, const Event& event);

// Return rules with the conditions of bench::conditions(): `count` is 1, 3 or 10.
Rule integerRule(std::size_t count, bool lastIsFalse);
Rule doubleRule(std::size_t count, bool lastIsFalse);
Rule stringRule(std::size_t count, bool lastIsFalse);

}  // namespace bench::byhand
