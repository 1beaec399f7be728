#include "tools/vig/trace/WhyNot.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

double distance(FilterOperator op, std::int64_t left, std::int64_t right) {
    const auto [low, high] = std::minmax(left, right);
    const auto gap = static_cast<double>(static_cast<std::uint64_t>(high) - static_cast<std::uint64_t>(low));
    const bool needsMore =
        op == FilterOperator::Less || op == FilterOperator::Greater || op == FilterOperator::NotEqual;
    return gap + (needsMore ? 1 : 0);
}

// Returns how far a comparison that is false is from being true; empty if it has no distance.
std::optional<double> distance(const Comparison& comparison) {
    const auto& left = comparison.left.value;
    const auto& right = comparison.right.value;
    const auto* const leftInteger = std::get_if<std::int64_t>(&left);
    const auto* const rightInteger = std::get_if<std::int64_t>(&right);
    if (leftInteger != nullptr && rightInteger != nullptr) {
        return distance(comparison.filter->op, *leftInteger, *rightInteger);
    }
    const auto* const leftDouble = std::get_if<double>(&left);
    const auto* const rightDouble = std::get_if<double>(&right);
    if (leftDouble == nullptr || rightDouble == nullptr) {
        return std::nullopt;
    }
    const double gap = *leftDouble == *rightDouble ? 0 : std::abs(*leftDouble - *rightDouble);
    return std::isnan(gap) ? std::nullopt : std::optional(gap);
}

std::string problemOf(const std::string& path, const DocumentModel& document) {
    std::vector<std::string_view> paths;
    for (const ConfigModel& config : document.configs) {
        for (const TransitionModel& transition : config.transitions) {
            paths.push_back(transition.place.path);
        }
    }
    return "no transition has the path " + quoted(path) + choices(path, paths);
}

}  // namespace

void WhyNot::loaded(const DocumentModel& document) {
    transition = nullptr;
    for (std::size_t i = 0; i < document.configs.size(); ++i) {
        const auto& transitions = document.configs[i].transitions;
        const auto found =
            std::ranges::find(transitions, path, [](const TransitionModel& each) { return each.place.path; });
        if (found != transitions.end()) {
            machine = i;
            config = &document.configs[i];
            transition = &*found;
            index = static_cast<std::size_t>(found - transitions.begin());
            stops.resize(transition->filters.size());
            return;
        }
    }
    unknown = problemOf(path, document);
}

void WhyNot::step(const Step& step) {
    if (transition == nullptr || step.machine.index != machine) {
        return;
    }
    // Of the events that a machine raises, only those in states that listen for them are steps.
    if (step.raised && (step.type != transition->event || step.state != transition->from)) {
        return;
    }
    ++events;
    const auto attempt = std::ranges::find(step.attempts, index, &Attempt::index);
    if (step.type != transition->event) {
        ++otherTypes;
    } else if (step.state != transition->from) {
        ++otherStates[std::string(step.state)];
    } else if (attempt == step.attempts.end()) {
        ++earlierFired;
    } else {
        count(step, *attempt);
    }
}

void WhyNot::count(const Step& step, const Attempt& attempt) {
    ++tried;
    if (attempt.fired) {
        ++fired;
        return;
    }
    const Comparison& last = attempt.comparisons.back();
    auto& [stopped, nearest] = stops[attempt.comparisons.size() - 1];
    ++stopped;
    const auto miss = distance(last);
    if (miss && (!nearest || *miss < nearest->distance)) {
        nearest = NearestMiss{*miss, last.left, last.right, step.event, step.timeMs};
    }
}

}  // namespace Brenta::OS::VIG::Tool
