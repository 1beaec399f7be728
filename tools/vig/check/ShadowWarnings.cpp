#include "tools/vig/check/Warnings.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>

#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/Text.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// No more filters of earlier transitions are looked at for each filter. More share one only in generated documents.
constexpr std::size_t kMostCompared = 64;

std::string constantText(const OperandModel& operand, FilterValueType type) {
    return withComparedType(type, [&]<typename T>(std::type_identity<T>) {
        return fmt::format("{}", readNearest<T>(operand.operand.value));
    });
}

// Returns the same text for filters that mean the same, mirrored or with a number written in another way.
std::string meaningOf(const FilterModel& filter) {
    NormalFilter normal = normalFormOf(filter);
    std::string right = hasConstant(filter) ? constantText(normal.right, filter.valueType) : normal.right.operand.value;
    std::string left = normal.left.operand.value;
    if (!hasConstant(filter) && right < left) {
        std::swap(left, right);
        normal.op = mirrored(normal.op);
    }
    return fmt::format("{}{}{}{} {}:{}{}", static_cast<int>(filter.valueType), static_cast<int>(normal.op),
                       usesFunction(filter), hasConstant(filter), left.size(), left, right);
}

// It holds the transitions of one state on one event, from the first to the last.
class Precedence {
  public:
    // Returns the earlier transition that fires whenever this one could; null if there is none.
    const Edge* shadowOf(const Edge& edge) {
        if (unconditional != nullptr) {
            return unconditional;
        }
        std::vector<std::size_t> filters = numbersOf(edge);
        ++edges;
        for (const std::size_t filter : filters) {
            lastEdge[filter] = edges;
        }
        std::size_t rest = kMostCompared * filters.size();
        for (const std::size_t filter : filters) {
            for (const Candidate& each : earlier[filter]) {
                if (rest == 0) {
                    break;
                }
                if (hasAll(each.filters, rest)) {
                    return each.edge;
                }
            }
        }
        remember(edge, std::move(filters));
        return nullptr;
    }

  private:
    struct Candidate {
        const Edge* edge;
        std::vector<std::size_t> filters;  // all of them
    };

    // Tells whether the transition in question has all these filters. Takes as many from `rest` as it looks at.
    bool hasAll(const std::vector<std::size_t>& filters, std::size_t& rest) const {
        return std::ranges::all_of(filters, [&](std::size_t filter) {
            if (rest == 0) {
                return false;
            }
            --rest;
            return lastEdge[filter] == edges;
        });
    }

    // Returns the filters as numbers, each once.
    std::vector<std::size_t> numbersOf(const Edge& edge) {
        std::vector<std::size_t> filters;
        for (const FilterModel* const filter : edge.logic.conditions) {
            filters.push_back(numbers.emplace(meaningOf(*filter), numbers.size()).first->second);
        }
        std::ranges::sort(filters);
        filters.erase(std::unique(filters.begin(), filters.end()), filters.end());
        earlier.resize(numbers.size());
        lastEdge.resize(numbers.size());
        return filters;
    }

    // Keeps it under the filter that the fewest have, so that few have to be compared.
    void remember(const Edge& edge, std::vector<std::size_t> filters) {
        if (filters.empty()) {
            unconditional = &edge;
            return;
        }
        if (std::ranges::none_of(edge.logic.conditions, [](const FilterModel* filter) { return draws(*filter); })) {
            const std::size_t rarest =
                *std::ranges::min_element(filters, {}, [&](std::size_t filter) { return earlier[filter].size(); });
            earlier[rarest].push_back({&edge, std::move(filters)});
        }
    }

    const Edge* unconditional = nullptr;
    std::unordered_map<std::string, std::size_t> numbers;  // of the filters, by their meaning
    std::vector<std::vector<Candidate>> earlier;           // by the number of one of their filters
    std::vector<std::size_t> lastEdge;                     // that has the filter, counted from 1
    std::size_t edges = 0;
};

std::string shortPathOf(const Edge& edge) {
    const std::string& path = edge.transition->place.path;
    return path.substr(path.rfind("transitions["));
}

void appendShadowWarnings(StateGraph& graph, std::span<const std::size_t> sameEvent, std::vector<Finding>& found) {
    Precedence precedence;
    for (const std::size_t index : sameEvent) {
        Edge& edge = graph.edges[index];
        const Edge* const shadow = edge.logic.neverHolds ? nullptr : precedence.shadowOf(edge);
        if (shadow == nullptr) {
            continue;
        }
        edge.isShadowed = true;
        const bool always = shadow->logic.conditions.empty();
        const std::string why = always ? ", which always fires" : ", which fires whenever this one could";
        warn(found, "shadowed-transition", edge.transition->place,
             "this never fires: before it in " + shownQuoted(edge.transition->from) + " comes " + shortPathOf(*shadow) +
                 " on " + std::string(nameOf(edge.transition->event)) + why,
             always ? "put this one before it" : "put this one before it, or give that one another filter");
    }
}

}  // namespace

void appendShadowWarnings(StateGraph& graph, std::vector<Finding>& found) {
    for (std::vector<std::size_t> ofState : graph.outgoing) {
        const auto event = [&](std::size_t index) { return graph.edges[index].transition->event; };
        std::ranges::stable_sort(ofState, {}, event);
        for (auto begin = ofState.begin(); begin != ofState.end();) {
            const auto end =
                std::find_if(begin, ofState.end(), [&](std::size_t index) { return event(index) != event(*begin); });
            appendShadowWarnings(graph, {begin, end}, found);
            begin = end;
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
