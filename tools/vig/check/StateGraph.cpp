#include "tools/vig/check/StateGraph.h"

#include <unordered_map>
#include <utility>

#include "rulesengine/State.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::State;

StateGraph::StateGraph(const ConfigModel& config, std::vector<FilterLogic> logics) {
    std::unordered_map<std::string_view, std::size_t> numbers;
    const auto numberOf = [&](std::string_view name) {
        const auto [place, isNew] = numbers.emplace(name, names.size());
        if (isNew) {
            names.push_back(name);
        }
        return place->second;
    };
    numberOf(State::START_STATE);
    numberOf(State::END_STATE);
    edges.reserve(config.transitions.size());
    for (std::size_t index = 0; index < config.transitions.size(); ++index) {
        const TransitionModel& transition = config.transitions[index];
        const std::size_t from = numberOf(transition.from);
        edges.push_back({&transition, from, numberOf(transition.to), std::move(logics[index])});
    }
    outgoing.resize(names.size());
    for (std::size_t index = 0; index < edges.size(); ++index) {
        outgoing[edges[index].from].push_back(index);
    }
    isReachable.resize(names.size());
    std::vector<std::size_t> waiting = {START};
    isReachable[START] = true;
    while (!waiting.empty()) {
        const std::size_t state = waiting.back();
        waiting.pop_back();
        for (const std::size_t index : outgoing[state]) {
            const std::size_t target = edges[index].to;
            if (!isReachable[target]) {
                isReachable[target] = true;
                waiting.push_back(target);
            }
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
