#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "rulesengine/FiniteStateMachine.h"
#include "rulesengine/State.h"
#include "rulesengine/Transition.h"
#include "tools/vig/document/RuleModel.h"
#include "vig/parsers/VIGConfig.h"

namespace Brenta::OS::VIG::Tool {

// A machine in its start state like the one that the library made of the model, but for the filters:
// `filtersOf(transition, index)` gives those of each transition. Actions are shared.
std::unique_ptr<RulesEngine::FiniteStateMachine> rebuilt(RulesEngine::FiniteStateMachine& original,
                                                         const ConfigModel& model, const auto& filtersOf) {
    auto machine = std::make_unique<RulesEngine::FiniteStateMachine>();
    std::map<std::string_view, std::size_t> taken;  // of each state's transitions
    for (std::size_t index = 0; index < model.transitions.size(); ++index) {
        const TransitionModel& each = model.transitions[index];
        const auto& transition = *original.getStateByName(each.from)->getTransitions()[taken[each.from]++];
        machine->addTransition(each.from, each.to, transition.getEventType(), filtersOf(transition, index),
                               transition.getActions());
    }
    return machine;
}

// The same for all configurations of a document: `filtersOf(transition, config, index)`.
std::vector<std::unique_ptr<VIGConfig>> rebuilt(const std::vector<std::unique_ptr<VIGConfig>>& configs,
                                                const std::vector<ConfigModel>& models, const auto& filtersOf) {
    std::vector<std::unique_ptr<VIGConfig>> result;
    for (std::size_t config = 0; config < configs.size(); ++config) {
        const VIGConfigPayload& payload = *configs[config]->getConfigPayload();
        auto machine =
            rebuilt(*payload.getFiniteStateMachine(), models[config],
                    [&](const auto& transition, std::size_t index) { return filtersOf(transition, config, index); });
        result.push_back(std::make_unique<VIGConfig>(
            configs[config]->getConfigId(),
            std::make_unique<VIGConfigPayload>(payload.getConfigPayloadId(), std::move(machine))));
    }
    return result;
}

}  // namespace Brenta::OS::VIG::Tool
