#include "tools/vig/trace/ExplainText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "tools/vig/events/EventNames.h"
#include "tools/vig/trace/TransitionNames.h"
#include "tools/vig/words/Text.h"
#include "tools/vig/words/Wrapped.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Below the root stand the transitions, with their filters below them.
constexpr std::string_view kIndent = "  ";
constexpr std::size_t kFilterIndent = 4;
constexpr std::size_t kConditionIndent = kFilterIndent + 6;  // behind "yes", "no" or "runs"
constexpr std::size_t kGap = 2;

std::string shown(const FilterModel& filter, const ComparedValue& left, const ComparedValue& right) {
    return shownValue(left) + " " + std::string(kFilterOperatorTable.lookup(filter.op)) + " " + shownValue(right);
}

std::string shown(const FilterModel& filter, const WhyNot::NearestMiss& miss) {
    // All digits of a double hide what it is: 0.1, not 0.09999999999999787.
    const bool isInteger = std::holds_alternative<std::int64_t>(miss.left.value);
    const std::string distance =
        isInteger ? fmt::format("{:.0f}", miss.distance) : fmt::format("{:.10g}", miss.distance);
    const std::string time = miss.timeMs ? fmt::format(" at {} ms", *miss.timeMs) : "";
    return fmt::format("{} (off by {}) in event {}{}", shown(filter, miss.left, miss.right), distance, miss.event,
                       time);
}

// Names the transitions that stand beside the one that is told of.
std::string moveOf(const TransitionModel& transition) {
    return fmt::format("{} {} -> {}", lastPartOf(transition), shownName(transition.from), shownName(transition.to));
}

// Says why a transition was never tried though the machine was in its state.
std::string untriedText(const WhyNot& answer) {
    const TransitionModel& transition = *answer.transition;
    if (answer.earlier.empty()) {
        return fmt::format("no {} came while the machine was in state {}", nameOf(transition.event),
                           shownName(transition.from));
    }
    return joined(answer.earlier, " or ", [](const TransitionModel* each) { return moveOf(*each); }) +
           " fired each time before it";
}

// Says of a transition that never fired how far it came at best: of the filters, the last one that stopped it.
std::string stoppedText(const WhyNot& answer) {
    if (answer.tried == 0) {
        return untriedText(answer);
    }
    std::size_t last = answer.stops.size();
    while (last > 1 && answer.stops[last - 1].count == 0) {
        --last;
    }
    const FilterModel& filter = answer.transition->filters[last - 1];
    const auto& nearest = answer.stops[last - 1].nearest;
    return fmt::format("stopped by filter {} of {}, {}{}", last, answer.stops.size(), printable(shownCondition(filter)),
                       nearest ? ", nearest " + shown(filter, *nearest) : "");
}

std::string json(const ComparedValue& compared) {
    if (compared.missing) {
        return "null";
    }
    if (const auto* const characters = std::get_if<std::string>(&compared.value)) {
        return inQuotes(*characters);
    }
    const auto* const number = std::get_if<double>(&compared.value);
    // JSON has no word for infinities and NaN.
    return number != nullptr && !std::isfinite(*number) ? inQuotes(shownValue(compared)) : shownValue(compared);
}

std::string json(const Comparison& comparison) {
    return fmt::format(R"({{"condition":{},"left":{},"right":{},"verdict":{}}})",
                       inQuotes(conditionOf(*comparison.filter)), json(comparison.left), json(comparison.right),
                       comparison.verdict);
}

std::string json(const Attempt& attempt) {
    const std::vector<ActionModel> none;
    const auto& actions = attempt.fired ? attempt.transition->actions : none;
    return fmt::format(R"({{"path":{},"to":{},"fired":{},"filters":{},"actions":{}}})",
                       inQuotes(attempt.transition->place.path), inQuotes(attempt.transition->to), attempt.fired,
                       jsonArray(attempt.comparisons, [](const Comparison& each) { return json(each); }),
                       jsonArray(actions, [](const ActionModel& each) { return inQuotes(each.name); }));
}

std::string json(const WhyNot::NearestMiss& miss) {
    const std::string time = miss.timeMs ? fmt::format("{}", *miss.timeMs) : "null";
    const std::string distance = std::isfinite(miss.distance) ? fmt::format("{}", miss.distance) : "\"inf\"";
    return fmt::format(R"({{"distance":{},"left":{},"right":{},"event":{},"time_ms":{}}})", distance, json(miss.left),
                       json(miss.right), miss.event, time);
}

}  // namespace

std::string shownValue(const ComparedValue& compared) {
    if (std::holds_alternative<std::monostate>(compared.value)) {
        return "missing";
    }
    std::string text;
    if (const auto* const integer = std::get_if<std::int64_t>(&compared.value)) {
        text = fmt::format("{}", *integer);
    } else if (const auto* const number = std::get_if<double>(&compared.value)) {
        text = fmt::format("{}", *number);
    } else if (const auto* const characters = std::get_if<std::string>(&compared.value)) {
        text = shownQuoted(*characters);
    }
    return compared.missing ? text + " (missing)" : text;
}

std::string ExplainText::nameOf(const TransitionModel& transition) {
    const bool isNew = named.insert(transition.place.path).second;
    return isNew ? transition.place.path : std::string(lastPartOf(transition));
}

void ExplainText::addWrapped(std::vector<std::string>& lines, const std::string& line, std::size_t hanging) const {
    std::ranges::move(wrapped(line, columns, hanging), std::back_inserter(lines));
}

void ExplainText::addAttempt(std::vector<std::string>& lines, const Attempt& attempt) {
    const TransitionModel& transition = *attempt.transition;
    const std::string outcome = attempt.fired ? "fires"
                                              : fmt::format("stopped by filter {} of {}", attempt.comparisons.size(),
                                                            transition.filters.size());
    const std::string name = nameOf(transition);
    const std::string rest = fmt::format("-> {}: {}", shownName(transition.to), outcome);
    if (kIndent.size() + charactersIn(name) + 1 + charactersIn(rest) <= columns) {
        lines.push_back(fmt::format("{}{} {}", kIndent, name, rest));
    } else {
        lines.push_back(fmt::format("{}{}", kIndent, name));
        addWrapped(lines, fmt::format("{}{}", kIndent, rest), kFilterIndent);
    }
    // Where a condition and its values do not fit in one line, the others stand in columns without them.
    std::size_t width = 0;
    for (const Comparison& each : attempt.comparisons) {
        const std::size_t condition = charactersIn(printable(shownCondition(*each.filter)));
        const std::size_t values = charactersIn(shown(*each.filter, each.left, each.right));
        if (kConditionIndent + condition + kGap + values <= columns) {
            width = std::max(width, condition);
        }
    }
    for (const Comparison& each : attempt.comparisons) {
        addComparison(lines, each, width);
    }
    if (attempt.fired) {
        for (const ActionModel& action : transition.actions) {
            lines.push_back(fmt::format("{:{}}runs  {}", "", kFilterIndent, shownName(action.name)));
        }
    }
}

void ExplainText::addComparison(std::vector<std::string>& lines, const Comparison& comparison,
                                std::size_t width) const {
    const std::string condition = printable(shownCondition(*comparison.filter));
    const std::string values = shown(*comparison.filter, comparison.left, comparison.right);
    const std::string line =
        fmt::format("{:{}}{:<4}  {}", "", kFilterIndent, comparison.verdict ? "yes" : "no", condition);
    const std::size_t column = kConditionIndent + std::max(width, charactersIn(condition)) + kGap;
    if (column + charactersIn(values) <= columns) {
        lines.push_back(line + std::string(column - charactersIn(line), ' ') + values);
        return;
    }
    addWrapped(lines, line, kConditionIndent);
    addWrapped(lines, std::string(kConditionIndent + kGap, ' ') + values, kConditionIndent + kGap);
}

std::vector<std::string> ExplainText::linesOf(const Step& step) {
    std::vector<std::string> lines = {fmt::format("{} in state {}", Tool::nameOf(step.type), shownName(step.state))};
    if (step.attempts.empty()) {
        lines[0] += ": no transition listens";
    }
    for (const Attempt& attempt : step.attempts) {
        addAttempt(lines, attempt);
    }
    return lines;
}

std::vector<std::string> ExplainText::linesOf(const WhyNot& answer) {
    constexpr std::size_t kHanging = 12;
    const TransitionModel& transition = *answer.transition;
    std::vector<std::string> lines = {nameOf(transition)};
    lines.push_back(fmt::format("  {} -> {} on {}", shownName(transition.from), shownName(transition.to),
                                Tool::nameOf(transition.event)));
    const auto add = [&](std::uint64_t count, const std::string& what) {
        if (count > 0) {
            addWrapped(lines, fmt::format("{:>9} {}", count, what), kHanging + 2);
        }
    };
    lines.push_back(fmt::format("{:>9} event{}", answer.events, answer.events == 1 ? "" : "s"));
    add(answer.otherTypes, "  of another type");
    for (const auto& [state, count] : answer.otherStates) {
        add(count, "  while the machine was in state " + shownName(state));
    }
    add(answer.earlierFired, "  for which an earlier transition fired");
    lines.push_back(fmt::format("{:>9}   for which it was tried", answer.tried));
    for (std::size_t i = 0; i < transition.filters.size(); ++i) {
        const WhyNot::Stops& stops = answer.stops[i];
        add(stops.count, "    stopped by " + printable(shownCondition(transition.filters[i])));
        if (stops.nearest) {
            addWrapped(lines,
                       fmt::format("{:{}}nearest {}", "", kHanging + 4, shown(transition.filters[i], *stops.nearest)),
                       kHanging + 6);
        }
    }
    lines.push_back(fmt::format("{:>9}     fired", answer.fired));
    addUpstream(lines, answer);
    return lines;
}

// Says what kept the transition from being tried at all.
void ExplainText::addUpstream(std::vector<std::string>& lines, const WhyNot& answer) const {
    constexpr std::size_t kMostShown = 3;
    if (answer.tried > 0) {
        return;
    }
    if (answer.wasInState) {
        addWrapped(lines, "  never tried: " + untriedText(answer), kFilterIndent);
        return;
    }
    const std::string state = shownName(answer.transition->from);
    if (answer.upstream.empty()) {
        addWrapped(lines, "  never tried: no transition leads the machine to state " + state, kFilterIndent);
        return;
    }
    addWrapped(lines, "  never tried: the machine never was in state " + state + ", since on the way there",
               kFilterIndent);
    for (std::size_t i = 0; i < std::min(kMostShown, answer.upstream.size()); ++i) {
        const WhyNot& each = answer.upstream[i];
        addWrapped(lines, fmt::format("    {} never fired: {}", moveOf(*each.transition), stoppedText(each)), 6);
    }
    if (answer.upstream.size() > kMostShown) {
        lines.push_back(fmt::format("    and {} more never fired", answer.upstream.size() - kMostShown));
    }
}

std::string explainJson(const Step& step) {
    return fmt::format(
        R"({{"type":"explain","event":{},"machine":{},"config_id":{},"event_type":"{}","state":{},"transitions":{}}})",
        step.event, step.machine.index, step.machine.configId, nameOf(step.type), inQuotes(step.state),
        jsonArray(step.attempts, [](const Attempt& each) { return json(each); }));
}

std::string whyNotJson(const WhyNot& answer) {
    const TransitionModel& transition = *answer.transition;
    const auto stateJson = [](const auto& each) {
        return fmt::format(R"({{"state":{},"events":{}}})", inQuotes(each.first), each.second);
    };
    std::size_t index = 0;
    const auto filterJson = [&](const WhyNot::Stops& each) {
        return fmt::format(R"({{"condition":{},"stopped":{},"nearest":{}}})",
                           inQuotes(conditionOf(transition.filters[index++])), each.count,
                           each.nearest ? json(*each.nearest) : "null");
    };
    return fmt::format(
        R"({{"type":"why_not","path":{},"machine":{},"config_id":{},"from":{},"to":{},"event_type":"{}",)"
        R"("events":{},"other_types":{},"other_states":{},"earlier_fired":{},"tried":{},"fired":{},)"
        R"("filters":{},"upstream":{}}})",
        inQuotes(transition.place.path), answer.machine, answer.config->id, inQuotes(transition.from),
        inQuotes(transition.to), nameOf(transition.event), answer.events, answer.otherTypes,
        jsonArray(answer.otherStates, stateJson), answer.earlierFired, answer.tried, answer.fired,
        jsonArray(answer.stops, filterJson),
        jsonArray(answer.upstream, [](const WhyNot& each) { return whyNotJson(each); }));
}

}  // namespace Brenta::OS::VIG::Tool
