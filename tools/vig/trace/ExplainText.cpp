#include "tools/vig/trace/ExplainText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

std::string shown(const ComparedValue& compared) {
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

std::string shown(const FilterModel& filter, const ComparedValue& left, const ComparedValue& right) {
    return shown(left) + " " + std::string(kFilterOperatorTable.lookup(filter.op)) + " " + shown(right);
}

void addAttempt(std::vector<std::string>& lines, const Attempt& attempt) {
    const TransitionModel& transition = *attempt.transition;
    const std::string outcome = attempt.fired ? "fires"
                                              : fmt::format("stopped by filter {} of {}", attempt.comparisons.size(),
                                                            transition.filters.size());
    lines.push_back(fmt::format("  {} -> {}: {}", transition.place.path, shownName(transition.to), outcome));
    std::size_t width = 0;
    for (const Comparison& each : attempt.comparisons) {
        width = std::max(width, printable(shownCondition(*each.filter)).size());
    }
    for (const Comparison& each : attempt.comparisons) {
        lines.push_back(fmt::format("    {:<4}  {:<{}}  {}", each.verdict ? "yes" : "no",
                                    printable(shownCondition(*each.filter)), width,
                                    shown(*each.filter, each.left, each.right)));
    }
    if (attempt.fired) {
        for (const ActionModel& action : transition.actions) {
            lines.push_back("    runs  " + shownName(action.name));
        }
    }
}

std::string nearestText(const FilterModel& filter, const WhyNot::NearestMiss& miss) {
    // All digits of a double hide what it is: 0.1, not 0.09999999999999787.
    const bool isInteger = std::holds_alternative<std::int64_t>(miss.left.value);
    const std::string distance =
        isInteger ? fmt::format("{:.0f}", miss.distance) : fmt::format("{:.10g}", miss.distance);
    const std::string time = miss.timeMs ? fmt::format(" at {} ms", *miss.timeMs) : "";
    return fmt::format(", at the nearest {} (off by {}) in event {}{}", shown(filter, miss.left, miss.right), distance,
                       miss.event, time);
}

std::string json(const ComparedValue& compared) {
    if (compared.missing) {
        return "null";
    }
    if (const auto* const characters = std::get_if<std::string>(&compared.value)) {
        return quoted(*characters);
    }
    const auto* const number = std::get_if<double>(&compared.value);
    // JSON has no word for infinities and NaN.
    return number != nullptr && !std::isfinite(*number) ? quoted(shown(compared)) : shown(compared);
}

std::string json(const Comparison& comparison) {
    return fmt::format(R"({{"condition":{},"left":{},"right":{},"verdict":{}}})",
                       quoted(conditionOf(*comparison.filter)), json(comparison.left), json(comparison.right),
                       comparison.verdict);
}

std::string json(const Attempt& attempt) {
    const std::vector<ActionModel> none;
    const auto& actions = attempt.fired ? attempt.transition->actions : none;
    return fmt::format(R"({{"path":{},"to":{},"fired":{},"filters":{},"actions":{}}})",
                       quoted(attempt.transition->place.path), quoted(attempt.transition->to), attempt.fired,
                       jsonArray(attempt.comparisons, [](const Comparison& each) { return json(each); }),
                       jsonArray(actions, [](const ActionModel& each) { return quoted(each.name); }));
}

std::string json(const WhyNot::NearestMiss& miss) {
    const std::string time = miss.timeMs ? fmt::format("{}", *miss.timeMs) : "null";
    const std::string distance = std::isfinite(miss.distance) ? fmt::format("{}", miss.distance) : "\"inf\"";
    return fmt::format(R"({{"distance":{},"left":{},"right":{},"event":{},"time_ms":{}}})", distance, json(miss.left),
                       json(miss.right), miss.event, time);
}

}  // namespace

std::vector<std::string> explainLines(const Step& step) {
    std::vector<std::string> lines = {fmt::format("{} in state {}", nameOf(step.type), shownName(step.state))};
    if (step.attempts.empty()) {
        lines[0] += ": no transition listens";
    }
    for (const Attempt& attempt : step.attempts) {
        addAttempt(lines, attempt);
    }
    return lines;
}

std::vector<std::string> whyNotLines(const WhyNot& answer) {
    const TransitionModel& transition = *answer.transition;
    std::vector<std::string> lines = {fmt::format("{} ({} -> {} on {})", transition.place.path,
                                                  shownName(transition.from), shownName(transition.to),
                                                  nameOf(transition.event))};
    const auto add = [&](std::uint64_t count, const std::string& what) {
        if (count > 0) {
            lines.push_back(fmt::format("{:>9} {}", count, what));
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
        std::string what = "    stopped by " + printable(shownCondition(transition.filters[i]));
        if (stops.nearest) {
            what += nearestText(transition.filters[i], *stops.nearest);
        }
        add(stops.count, what);
    }
    lines.push_back(fmt::format("{:>9}     fired", answer.fired));
    return lines;
}

std::string explainJson(const Step& step) {
    return fmt::format(
        R"({{"type":"explain","event":{},"machine":{},"config_id":{},"event_type":"{}","state":{},"transitions":{}}})",
        step.event, step.machine.index, step.machine.configId, nameOf(step.type), quoted(step.state),
        jsonArray(step.attempts, [](const Attempt& each) { return json(each); }));
}

std::string whyNotJson(const WhyNot& answer) {
    const TransitionModel& transition = *answer.transition;
    const auto stateJson = [](const auto& each) {
        return fmt::format(R"({{"state":{},"events":{}}})", quoted(each.first), each.second);
    };
    std::size_t index = 0;
    const auto filterJson = [&](const WhyNot::Stops& each) {
        return fmt::format(R"({{"condition":{},"stopped":{},"nearest":{}}})",
                           quoted(conditionOf(transition.filters[index++])), each.count,
                           each.nearest ? json(*each.nearest) : "null");
    };
    return fmt::format(
        R"({{"type":"why_not","path":{},"machine":{},"config_id":{},"from":{},"to":{},"event_type":"{}",)"
        R"("events":{},"other_types":{},"other_states":{},"earlier_fired":{},"tried":{},"fired":{},)"
        R"("filters":{}}})",
        quoted(transition.place.path), answer.machine, answer.config->id, quoted(transition.from),
        quoted(transition.to), nameOf(transition.event), answer.events, answer.otherTypes,
        jsonArray(answer.otherStates, stateJson), answer.earlierFired, answer.tried, answer.fired,
        jsonArray(answer.stops, filterJson));
}

}  // namespace Brenta::OS::VIG::Tool
