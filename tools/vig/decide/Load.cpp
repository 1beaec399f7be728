#include "tools/vig/decide/Load.h"

#include <algorithm>
#include <numeric>

#include "tools/vig/decide/Components.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// It is the event that asks for the most, of those that bring a machine from one state to another.
struct Arrow {
    std::size_t from;
    Behaviour::Edge edge;
    std::uint64_t triggers;
};

// It has the states in which a machine can wait, and how events lead from one to another.
class WaitGraph {
  public:
    explicit WaitGraph(Behaviour& behaviour) : machine(behaviour), outgoing(behaviour.stateCount()) {
        for (std::size_t state = 0; state < outgoing.size(); ++state) {
            std::map<std::size_t, std::size_t> best;
            for (const auto& edge :
                 machine.waitsIn(state) ? machine.edgesFrom(state) : std::vector<Behaviour::Edge>()) {
                const std::uint64_t triggers = machine.triggersOf(edge.transition).count;
                const auto [place, isNew] = best.emplace(edge.to, arrows.size());
                if (isNew) {
                    outgoing[state].push_back(arrows.size());
                    arrows.push_back({state, edge, triggers});
                } else if (arrows[place->second].triggers < triggers) {
                    arrows[place->second] = {state, edge, triggers};
                }
            }
        }
        std::vector<std::vector<std::size_t>> successors(outgoing.size());
        for (const Arrow& each : arrows) {
            successors[each.from].push_back(each.edge.to);
        }
        components.emplace(successors);
    }

    bool isCircular(const Arrow& arrow) const { return components->of[arrow.from] == components->of[arrow.edge.to]; }

    RouteStep stepOf(const Arrow& arrow) const {
        const auto& triggers = machine.triggersOf(arrow.edge.transition);
        const auto target = machine.targetOf(arrow.edge.transition);
        return {arrow.edge.transition, target,
                triggers.count > 0 ? triggers.question : machine.junctionOf(arrow.edge.transition).toReach(target),
                arrow.edge.stop};
    }

    Behaviour& machine;
    std::vector<Arrow> arrows;
    std::vector<std::vector<std::size_t>> outgoing;
    std::optional<Components> components;
};

// Returns the most collections ever, if no circle has one.
std::uint64_t mostEver(const WaitGraph& graph) {
    std::vector<std::uint64_t> best(graph.components->count);
    std::vector<std::size_t> byComponent(graph.arrows.size());
    std::iota(byComponent.begin(), byComponent.end(), 0);
    std::ranges::sort(byComponent, {},
                      [&](std::size_t arrow) { return graph.components->of[graph.arrows[arrow].from]; });
    std::uint64_t most = 0;
    for (const std::size_t index : byComponent) {
        const Arrow& arrow = graph.arrows[index];
        std::uint64_t& from = best[graph.components->of[arrow.from]];
        from = std::max(from, arrow.triggers + best[graph.components->of[arrow.edge.to]]);
        most = std::max(most, from);
    }
    return most;
}

// Returns a circle in which each event asks for more than that on average; empty if there is none, or nothing if the
// effort was used up.
std::optional<std::vector<std::size_t>> circleAbove(const WaitGraph& graph, Rate rate, Effort& effort) {
    std::vector<std::int64_t> gain(graph.outgoing.size());
    std::vector<std::size_t> by(graph.outgoing.size(), kNoIndex);  // the arrow that brought it
    for (bool hasChanged = true; hasChanged;) {
        hasChanged = false;
        if (!effort.spend(graph.arrows.size())) {
            return std::nullopt;
        }
        for (std::size_t index = 0; index < graph.arrows.size(); ++index) {
            const Arrow& arrow = graph.arrows[index];
            const std::int64_t gained = gain[arrow.from] + static_cast<std::int64_t>(rate.events * arrow.triggers) -
                                        static_cast<std::int64_t>(rate.triggers);
            if (graph.isCircular(arrow) && gained > gain[arrow.edge.to]) {
                gain[arrow.edge.to] = gained;
                by[arrow.edge.to] = index;
                hasChanged = true;
            }
        }
        // What brought a gain goes back to the beginning, or round in a circle.
        std::vector<std::size_t> seenFrom(graph.outgoing.size(), kNoIndex);
        for (std::size_t state = 0; state < by.size(); ++state) {
            std::size_t at = state;
            while (by[at] != kNoIndex && seenFrom[at] == kNoIndex) {
                seenFrom[at] = state;
                at = graph.arrows[by[at]].from;
            }
            if (by[at] == kNoIndex || seenFrom[at] != state) {
                continue;
            }
            std::vector<std::size_t> circle;
            for (std::size_t on = at; circle.empty() || on != at; on = graph.arrows[by[on]].from) {
                circle.push_back(by[on]);
            }
            std::ranges::reverse(circle);
            return circle;
        }
    }
    return std::vector<std::size_t>();
}

// Each circle that is found is better than the one before, until there is no better one.
void findRate(const WaitGraph& graph, Effort& effort, Load& load) {
    Rate best{0, 1};
    std::vector<std::size_t> circle;
    for (auto better = circleAbove(graph, best, effort);; better = circleAbove(graph, best, effort)) {
        load.isDecided = better.has_value();
        if (!better || better->empty()) {
            break;
        }
        circle = std::move(*better);
        best = {0, circle.size()};
        for (const std::size_t arrow : circle) {
            best.triggers += graph.arrows[arrow].triggers;
        }
    }
    if (!load.isDecided) {
        return;
    }
    const std::uint64_t common = std::gcd(best.triggers, best.events);
    load.rate = {best.triggers / common, best.events / common};
    load.lap = circle.size();
    const auto first = std::ranges::min_element(circle, {}, [&](std::size_t arrow) {
        return graph.machine.routeToWait(graph.arrows[arrow].from).steps.size();
    });
    std::rotate(circle.begin(), first, circle.end());
    load.route = graph.machine.routeToWait(graph.arrows[circle.front()].from);
    for (const std::size_t arrow : circle) {
        load.route.steps.push_back(graph.stepOf(graph.arrows[arrow]));
    }
}

// Looks back from the events that ask: how many events away is the next one.
void findDistance(const WaitGraph& graph, Load& load) {
    Behaviour& machine = graph.machine;
    std::vector<const Arrow*> next(graph.outgoing.size());  // on the way to the next event that asks
    std::vector<std::size_t> away(graph.outgoing.size(), kNoIndex);
    std::vector<std::vector<const Arrow*>> incoming(graph.outgoing.size());
    std::vector<std::size_t> waiting;
    const auto reach = [&](const Arrow& arrow, std::size_t distance) {
        if (away[arrow.from] == kNoIndex) {
            away[arrow.from] = distance;
            next[arrow.from] = &arrow;
            waiting.push_back(arrow.from);
        }
    };
    for (const Arrow& each : graph.arrows) {
        incoming[each.edge.to].push_back(&each);
        if (each.triggers > 0) {
            reach(each, 1);
        }
    }
    for (std::size_t index = 0; index < waiting.size(); ++index) {
        for (const Arrow* const each : incoming[waiting[index]]) {
            reach(*each, away[waiting[index]] + 1);
        }
    }
    const Arrow* first = nullptr;
    std::size_t shortest = kNoIndex;
    for (const Arrow& each : graph.arrows) {
        const std::size_t distance = each.triggers > 1 ? 0 : away[each.edge.to];
        if (each.triggers == 0 || distance == kNoIndex) {
            continue;
        }
        const std::size_t length = machine.routeToWait(each.from).steps.size();
        if (!load.distance || std::pair(distance, length) < std::pair(*load.distance, shortest)) {
            load.distance = distance;
            shortest = length;
            first = &each;
        }
    }
    if (first == nullptr) {
        return;
    }
    load.distanceRoute = machine.routeToWait(first->from);
    load.distanceRoute.steps.push_back(graph.stepOf(*first));
    std::size_t state = first->edge.to;
    for (std::size_t left = *load.distance; left > 0; --left) {
        load.distanceRoute.steps.push_back(graph.stepOf(*next[state]));
        state = next[state]->edge.to;
    }
}

}  // namespace

Load worstLoad(Behaviour& machine) {
    const WaitGraph graph(machine);
    Load load;
    const bool isBounded = std::ranges::none_of(
        graph.arrows, [&](const Arrow& each) { return each.triggers > 0 && graph.isCircular(each); });
    if (isBounded) {
        load.most = mostEver(graph);
        const auto optionsOf = [&](std::size_t transition, std::size_t count) {
            const auto& triggers = machine.triggersOf(transition);
            const std::size_t sum = count + triggers.count;
            auto question = triggers.count > 0 ? triggers.question
                                               : machine.junctionOf(transition).toReach(machine.targetOf(transition));
            return std::vector<Behaviour::Option>{{std::move(question), sum, sum == *load.most}};
        };
        load.route = *load.most > 0 ? machine.search(optionsOf).value_or(Route()) : Route();
    } else {
        findRate(graph, machine.budget(), load);
    }
    findDistance(graph, load);
    load.isDecided = load.isDecided && !machine.hasGaps();
    return load;
}

std::vector<std::vector<std::size_t>> statesToStay(Behaviour& machine) {
    const WaitGraph graph(machine);
    std::vector<bool> isLeft(graph.components->count);
    for (const Arrow& each : graph.arrows) {
        isLeft[graph.components->of[each.from]] = isLeft[graph.components->of[each.from]] || !graph.isCircular(each);
    }
    std::vector<std::vector<std::size_t>> byComponent(graph.components->count);
    for (std::size_t state = 0; state < graph.components->of.size(); ++state) {
        if (machine.waitsIn(state) && !isLeft[graph.components->of[state]]) {
            byComponent[graph.components->of[state]].push_back(state);
        }
    }
    std::erase_if(byComponent, [](const auto& states) { return states.empty(); });
    std::ranges::sort(byComponent);
    return byComponent;
}

}  // namespace Brenta::OS::VIG::Tool
