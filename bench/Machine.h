#pragma once

#include <memory>
#include <string>
#include <vector>

#include "rulesengine/FiniteStateMachine.h"
#include "vig/parsers/VIGConfig.h"

namespace bench {

// It holds the first machine of a document, which the library has parsed.
struct Machine {
    std::shared_ptr<std::vector<std::unique_ptr<Brenta::OS::VIG::VIGConfig>>> owner;
    Brenta::OS::RulesEngine::FiniteStateMachine* fsm;
};

// Ends the program if the document is refused.
Machine machineOf(const std::string& document);

}  // namespace bench
