#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <variant>

#include "rulesengine/EvaluationContext.h"
#include "rulesengine/Event.h"

namespace Brenta::OS::VIG {

// A parameter of an action has one of the types that a document can write.
using VIGActionParameter = std::variant<std::int32_t, double, std::string>;

// The function does what the action does each time its transition fires. It runs on the thread that drives the machine.
using VIGActionFunction = std::function<void(RulesEngine::EvaluationContext&, const RulesEngine::Event&)>;

}  // namespace Brenta::OS::VIG
