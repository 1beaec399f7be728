#include "tools/vig/trace/WhyNot.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostPathsShown = 10;

double distance(FilterOperator op, std::int64_t left, std::int64_t right) {
    const auto [low, high] = std::minmax(left, right);
    const auto gap = static_cast<double>(static_cast<std::uint64_t>(high) - static_cast<std::uint64_t>(low));
    const bool needsMore =
        op == FilterOperator::Less || op == FilterOperator::Greater || op == FilterOperator::NotEqual;
    return gap + (needsMore ? 1 : 0);
}

// How far a comparison that is false is from being true; empty if it has no distance.
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

std::string problemOf(const std::string& path, const TracedDocument& document) {
    std::vector<std::string_view> paths;
    for (const ConfigModel& config : document.configs) {
        for (const TransitionModel& transition : config.transitions) {
            paths.push_back(transition.place.path);
        }
    }
    std::string text = "no transition has the path " + quoted(path);
    if (paths.empty()) {
        return text + "; there are none";
    }
    text += suggestion(path, paths) + "; there are";
    for (std::size_t i = 0; i < std::min(paths.size(), kMostPathsShown); ++i) {
        text += (i == 0 ? " " : ", ") + std::string(paths[i]);
    }
    const std::size_t rest = paths.size() - std::min(paths.size(), kMostPathsShown);
    return rest == 0 ? text : text + " and " + std::to_string(rest) + " more";
}

}  // namespace

void WhyNot::loaded(const TracedDocument& document) {
    model = nullptr;
    for (std::size_t i = 0; i < document.configs.size(); ++i) {
        const ConfigModel& config = document.configs[i];
        const auto found =
            std::ranges::find(config.transitions, path, [](const TransitionModel& each) { return each.place.path; });
        if (found != config.transitions.end()) {
            machineIndex = i;
            owner = &config;
            model = &*found;
            index = static_cast<std::size_t>(found - config.transitions.begin());
            stopsByFilter.resize(model->filters.size());
            return;
        }
    }
    unknown = problemOf(path, document);
}

void WhyNot::step(const Step& step) {
    if (model == nullptr || step.machine.index != machineIndex) {
        return;
    }
    // Of the events that a machine raises, only those in states that listen for them are steps.
    if (step.raised && (step.type != model->event || step.state != model->from)) {
        return;
    }
    ++offered;
    if (step.type != model->event) {
        ++unheard;
        return;
    }
    if (step.state != model->from) {
        ++elsewhere[std::string(step.state)];
        return;
    }
    const auto attempt = std::ranges::find(step.attempts, index, &Attempt::index);
    if (attempt == step.attempts.end()) {
        ++overtaken;
    } else {
        count(step, *attempt);
    }
}

void WhyNot::count(const Step& step, const Attempt& attempt) {
    ++attempts;
    if (attempt.fired) {
        ++moves;
        return;
    }
    const Comparison& last = attempt.comparisons.back();
    Stops& stops = stopsByFilter[attempt.comparisons.size() - 1];
    ++stops.count;
    const auto miss = distance(last);
    if (miss && (!stops.nearest || *miss < stops.nearest->distance)) {
        stops.nearest = NearestMiss{*miss, last.left, last.right, step.event, step.timeMs};
    }
}

}  // namespace Brenta::OS::VIG::Tool
