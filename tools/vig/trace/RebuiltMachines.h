#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "rulesengine/FiniteStateMachine.h"
#include "rulesengine/State.h"
#include "rulesengine/Transition.h"
#include "tools/vig/document/RuleModel.h"
#include "vig/parsers/VIGConfig.h"

namespace Brenta::OS::VIG::Tool {

// Returns configurations whose machines are in their start state and like those given, which the library made of the
// models, but for the filters: `filtersOf(transition, config, index)` gives those of each transition. Actions are
// shared.
std::vector<std::unique_ptr<VIGConfig>> rebuilt(const std::vector<std::unique_ptr<VIGConfig>>& configs,
                                                std::span<const ConfigModel> models, const auto& filtersOf) {
    std::vector<std::unique_ptr<VIGConfig>> result;
    for (std::size_t config = 0; config < configs.size(); ++config) {
        const VIGConfigPayload& payload = *configs[config]->getConfigPayload();
        auto machine = std::make_unique<RulesEngine::FiniteStateMachine>();
        std::map<std::string_view, std::size_t> taken;  // so many transitions of each state
        for (std::size_t index = 0; index < models[config].transitions.size(); ++index) {
            const TransitionModel& each = models[config].transitions[index];
            const auto* const state = payload.getFiniteStateMachine()->getStateByName(each.from);
            const auto& transition = *state->getTransitions()[taken[each.from]++];
            machine->addTransition(each.from, each.to, transition.getEventType(), filtersOf(transition, config, index),
                                   transition.getActions());
        }
        result.push_back(std::make_unique<VIGConfig>(
            configs[config]->getConfigId(),
            std::make_unique<VIGConfigPayload>(payload.getConfigPayloadId(), std::move(machine))));
    }
    return result;
}

}  // namespace Brenta::OS::VIG::Tool
