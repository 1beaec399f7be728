#include "tools/vig/test/Coverage.h"

#include <fmt/format.h>

#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

std::string placeText(const TracedDocument& document, const Place& place) {
    const SourceText& source = document.text.source();
    const auto position = source.positionOf(place.begin);
    return fmt::format("{}:{}:{}", source.name(), position.line, position.column);
}

}  // namespace

Coverage::Share Coverage::transitions() const {
    Share share;
    for (const auto& config : configs) {
        for (const Transition& transition : config) {
            ++share.all;
            share.reached += transition.fired ? 1 : 0;
        }
    }
    return share;
}

Coverage::Share Coverage::filterOutcomes() const {
    Share share;
    for (const auto& config : configs) {
        for (const Transition& transition : config) {
            for (const Filter& filter : transition.filters) {
                share.all += 2;
                share.reached += (filter.wasTrue ? 1 : 0) + (filter.wasFalse ? 1 : 0);
            }
        }
    }
    return share;
}

Coverage::Share Coverage::total() const {
    const Share moves = transitions();
    const Share outcomes = filterOutcomes();
    return {moves.reached + outcomes.reached, moves.all + outcomes.all};
}

std::vector<std::string> Coverage::gaps() const {
    std::vector<std::string> lines;
    const auto add = [&](const auto& piece, std::string_view what, const std::string& which) {
        lines.push_back(fmt::format("{}: {}: {} [{}]", piece.place, what, which, piece.path));
    };
    for (const auto& config : configs) {
        for (const Transition& transition : config) {
            if (!transition.fired) {
                add(transition, "never fired", transition.description);
            }
            for (const Filter& filter : transition.filters) {
                if (!filter.wasTrue) {
                    add(filter, "never true", filter.condition);
                }
                if (!filter.wasFalse) {
                    add(filter, "never false", filter.condition);
                }
            }
        }
    }
    return lines;
}

// Another run of the same document goes on from what the earlier ones have reached.
void Coverage::loaded(const TracedDocument& document) {
    if (document.text.source().text() == text) {
        return;
    }
    text = document.text.source().text();
    configs.clear();
    for (const ConfigModel& config : document.configs) {
        auto& transitions = configs.emplace_back();
        for (const TransitionModel& each : config.transitions) {
            const std::string description =
                fmt::format("{} -> {} on {}", shownName(each.from), shownName(each.to), nameOf(each.event));
            transitions.push_back({description, placeText(document, each.place), each.place.path});
            for (const FilterModel& filter : each.filters) {
                transitions.back().filters.push_back(
                    {shownCondition(filter), placeText(document, filter.place), filter.place.path});
            }
        }
    }
}

void Coverage::step(const Step& step) {
    for (const Attempt& attempt : step.attempts) {
        Transition& transition = configs[step.machine.index][attempt.index];
        transition.fired = transition.fired || attempt.fired;
        for (std::size_t i = 0; i < attempt.comparisons.size(); ++i) {
            (attempt.comparisons[i].verdict ? transition.filters[i].wasTrue : transition.filters[i].wasFalse) = true;
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
