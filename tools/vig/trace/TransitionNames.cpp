#include "tools/vig/trace/TransitionNames.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostNamesShown = 50;
constexpr std::string_view kArrow = "->";

std::string_view trimmed(std::string_view text) {
    const std::size_t begin = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

const TransitionModel& transitionAt(const DocumentModel& document, const TransitionPlace& place) {
    return document.configs[place.machine].transitions[place.index];
}

// The name of a state may have an arrow in it.
bool isMove(std::string_view name, const TransitionModel& transition) {
    for (std::size_t arrow = name.find(kArrow); arrow != std::string_view::npos; arrow = name.find(kArrow, arrow + 1)) {
        if (trimmed(name.substr(0, arrow)) == trimmed(transition.from) &&
            trimmed(name.substr(arrow + kArrow.size())) == trimmed(transition.to)) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::string_view lastPartOf(const TransitionModel& transition) {
    return std::string_view(transition.place.path).substr(transition.place.path.rfind('.') + 1);
}

std::vector<TransitionPlace> allTransitions(const DocumentModel& document, std::optional<std::size_t> machine) {
    std::vector<TransitionPlace> places;
    for (std::size_t i = 0; i < document.configs.size(); ++i) {
        for (std::size_t index = 0; index < document.configs[i].transitions.size() && machine.value_or(i) == i;
             ++index) {
            places.push_back({i, index});
        }
    }
    return places;
}

std::vector<TransitionPlace> transitionsCalled(std::string_view name, const DocumentModel& document,
                                               std::optional<std::size_t> machine) {
    std::vector<TransitionPlace> places = allTransitions(document, machine);
    std::erase_if(places, [&](const TransitionPlace& place) {
        const TransitionModel& each = transitionAt(document, place);
        return name != each.place.path && name != lastPartOf(each) && !isMove(name, each);
    });
    return places;
}

std::vector<std::string> unknownTransition(const std::string& name, const DocumentModel& document,
                                           std::optional<std::size_t> machine) {
    std::vector<std::string> moves;
    std::vector<std::string_view> names;
    std::vector<std::string> lines(1);
    const bool isAlone = machine || document.configs.size() == 1;
    for (const TransitionPlace& place : allTransitions(document, machine)) {
        const TransitionModel& each = transitionAt(document, place);
        moves.push_back(each.from + " -> " + each.to);
        names.push_back(isAlone ? lastPartOf(each) : each.place.path);
        if (lines.size() <= kMostNamesShown) {
            lines.push_back(fmt::format("  {}  {} -> {} on {}", names.back(), shownName(each.from), shownName(each.to),
                                        nameOf(each.event)));
        }
        names.push_back(each.place.path);
    }
    if (moves.size() > kMostNamesShown) {
        lines.push_back(fmt::format("  and {} more", moves.size() - kMostNamesShown));
    }
    names.insert(names.end(), moves.begin(), moves.end());
    lines.front() = "there is no transition " + shownQuoted(name) + beforeList(name, names);
    return lines;
}

}  // namespace Brenta::OS::VIG::Tool
