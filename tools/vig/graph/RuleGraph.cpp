#include "tools/vig/graph/RuleGraph.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <span>
#include <string_view>
#include <utility>

#include "rulesengine/FiniteStateMachine.h"
#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/check/DocumentCheck.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/events/EventNames.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::FiniteStateMachine;

namespace {

using Marks = std::vector<GraphMark>;

// It has the findings by the path of what they mark.
class MarkedPlaces {
  public:
    explicit MarkedPlaces(const std::vector<Finding>& findings) {
        for (const Finding& each : findings) {
            marks[ownerOf(each.place.path)].push_back({each.name, each.message});
        }
    }

    // Appends to `target` the marks of what has that path.
    void append(const std::string& path, Marks& target) const {
        if (const auto found = marks.find(path); found != marks.end()) {
            target.insert(target.end(), found->second.begin(), found->second.end());
        }
    }

  private:
    // "configs[0].payload.data.transitions[2].filters[1]" marks the transition, and so on.
    static std::string ownerOf(const std::string& path) {
        constexpr std::string_view kTransitions = ".payload.data.transitions[";
        const std::size_t config = behindBracket(path, 0);
        if (path.compare(config, kTransitions.size(), kTransitions) != 0) {
            return path.substr(0, config);
        }
        const std::size_t transition = behindBracket(path, config);
        const std::string_view rest = std::string_view(path).substr(transition);
        return rest == ".from_state" || rest == ".to_state" ? path : path.substr(0, transition);
    }

    static std::size_t behindBracket(const std::string& path, std::size_t from) {
        const std::size_t bracket = path.find(']', from);
        return bracket == std::string::npos ? path.size() : bracket + 1;
    }

    std::map<std::string, Marks> marks;
};

GraphArrow arrowOf(const TransitionModel& transition) {
    GraphArrow arrow;
    arrow.title = nameOf(transition.event);
    std::ranges::transform(transition.filters, std::back_inserter(arrow.conditions), shownCondition);
    std::ranges::transform(transition.actions, std::back_inserter(arrow.actions), &ActionModel::key);
    return arrow;
}

// Returns a line like "Test ×2" for each event.
std::vector<std::string> eventCounts(std::span<const GraphArrow> arrows) {
    std::map<std::string, std::size_t> counts;
    for (const GraphArrow& each : arrows) {
        ++counts[each.title];
    }
    std::vector<std::string> lines;
    std::ranges::transform(counts, std::back_inserter(lines),
                           [](const auto& each) { return each.first + " ×" + std::to_string(each.second); });
    return lines;
}

// Makes one arrow of several with the same target. Of marks with the same name, one is kept.
GraphArrow sumOf(std::span<const GraphArrow> arrows) {
    GraphArrow sum;
    sum.first = arrows.front().first;
    sum.last = arrows.back().last;
    sum.title = std::to_string(arrows.size()) + " more";
    sum.conditions = eventCounts(arrows);
    sum.target = arrows.front().target;
    for (const GraphArrow& each : arrows) {
        if (each.traffic) {
            const Traffic soFar = sum.traffic.value_or(Traffic());
            sum.traffic = {soFar.tried + each.traffic->tried, soFar.fired + each.traffic->fired};
        }
        for (const GraphMark& mark : each.marks) {
            if (std::ranges::find(sum.marks, mark.name, &GraphMark::name) == sum.marks.end()) {
                sum.marks.push_back(mark);
            }
        }
    }
    return sum;
}

// If too many arrows with one kind of traffic lead to one target, the first ones stay and one more stands for the rest.
void mergeParallels(std::vector<GraphArrow>& arrows) {
    std::map<std::pair<std::size_t, TrafficKind>, std::vector<GraphArrow>> groups;
    for (GraphArrow& each : arrows) {
        groups[{each.target, kindOf(each.traffic)}].push_back(std::move(each));
    }
    arrows.clear();
    for (const auto& [kind, group] : groups) {
        const std::size_t kept = group.size() > kMostParallelArrows ? kMostParallelArrows - 1 : group.size();
        const std::span<const GraphArrow> all(group);
        std::ranges::copy(all.first(kept), std::back_inserter(arrows));
        if (kept < group.size()) {
            arrows.push_back(sumOf(all.subspan(kept)));
        }
    }
    std::ranges::sort(arrows, {}, &GraphArrow::first);
}

// Builds the graph of one configuration.
class Grapher {
  public:
    Grapher(const ConfigModel& configModel, const MarkedPlaces& markedPlaces)
        : config(configModel), marks(markedPlaces) {
        graph.id = config.id;
        marks.append(config.place.path, graph.marks);
        indexOf(FiniteStateMachine::STATE_START);
    }

    // `traffic` is empty, or has an element for each transition.
    RuleGraph build(const std::vector<Traffic>& traffic) {
        for (std::size_t index = 0; index < config.transitions.size(); ++index) {
            add(config.transitions[index], traffic.empty() ? std::nullopt : std::optional(traffic[index]));
        }
        markReachable();
        for (GraphState& each : graph.states) {
            mergeParallels(each.arrows);
        }
        return std::move(graph);
    }

  private:
    std::size_t indexOf(const std::string& name) {
        const auto [place, isNew] = indices.try_emplace(name, graph.states.size());
        if (isNew) {
            graph.states.emplace_back().name = name;
        }
        return place->second;
    }

    void add(const TransitionModel& transition, std::optional<Traffic> traffic) {
        const std::size_t from = indexOf(transition.from);
        const std::size_t to = indexOf(transition.to);
        GraphArrow arrow = arrowOf(transition);
        arrow.target = to;
        arrow.traffic = traffic;
        marks.append(transition.place.path, arrow.marks);
        auto& arrows = graph.states[from].arrows;
        arrow.first = arrow.last = arrows.size() + 1;
        arrows.push_back(std::move(arrow));
        marks.append(transition.place.path + ".from_state", graph.states[from].marks);
        marks.append(transition.place.path + ".to_state", graph.states[to].marks);
    }

    void markReachable() {
        std::vector<std::size_t> waiting = {0};
        while (!waiting.empty()) {
            GraphState& state = graph.states[waiting.back()];
            waiting.pop_back();
            if (!std::exchange(state.reachable, true)) {
                std::ranges::transform(state.arrows, std::back_inserter(waiting), &GraphArrow::target);
            }
        }
    }

    const ConfigModel& config;
    const MarkedPlaces& marks;
    RuleGraph graph;
    std::map<std::string, std::size_t> indices;
};

}  // namespace

TrafficKind kindOf(const std::optional<Traffic>& traffic) {
    if (!traffic) {
        return TrafficKind::Unknown;
    }
    if (traffic->tried == 0) {
        return TrafficKind::NeverTried;
    }
    return traffic->fired == 0 ? TrafficKind::NeverFired : TrafficKind::Fired;
}

std::vector<RuleGraph> graphsOf(const std::vector<ConfigModel>& configs, const std::vector<Finding>& findings,
                                const std::vector<std::vector<Traffic>>& traffic) {
    const MarkedPlaces marks(findings);
    std::vector<RuleGraph> graphs;
    for (std::size_t index = 0; index < configs.size(); ++index) {
        const auto& ofConfig = traffic.empty() ? std::vector<Traffic>() : traffic[index];
        graphs.push_back(Grapher(configs[index], marks).build(ofConfig));
    }
    return graphs;
}

std::vector<RuleGraph> checkedGraphsOf(const DocumentModel& document, const std::vector<std::vector<Traffic>>& traffic,
                                       const Interruption& interruption) {
    const Findings findings = findingsIn(document.text, libraryRegistry(), Catalogue::builtIn(), &interruption);
    return graphsOf(document.configs, findings.all, traffic);
}

}  // namespace Brenta::OS::VIG::Tool
