// A filter says the same with all thresholds between two neighbours of the values that it compares, and so does the
// machine. So one threshold for each such gap would do, but there may be millions. The first reading of the recordings
// samples the values. The next ones try thresholds spread over the gaps, as many machines at once as one reading can
// serve, and go on where what one threshold gives is above the target and what its neighbour gives is not: there they
// sample anew, if values were left out.

#include "tools/vig/tune/Search.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <tuple>

#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/events/EventReader.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostAtOnce = 64;  // thresholds of one reading
constexpr int kMostReadings = 12;
constexpr int kDrawSteps = 1000;  // in the range of a random function
constexpr double kMillisecondsOfDay = 24.0 * 60 * 60 * 1000;

constexpr RankRange kEverything{std::numeric_limits<Rank>::min(), std::numeric_limits<Rank>::max()};

class Search {
  public:
    Search(const TunePlan& plan, const TuneTarget& target)
        : plan(plan), target(target), type(plan.constant.model->valueType) {}

    Tuning run() {
        const bool isOfDraws = isFunction(plan.constant.other());
        read({plan.constant.current}, !isOfDraws);
        if (isOfDraws) {
            breakpoints = breakpointsOfDraws();
            isComplete = true;
        }
        for (int readings = 2; readings < kMostReadings && isUsable() && !ranges.empty(); ++readings) {
            const std::vector<Rank> next = gapsToTry();
            const bool samples = !isComplete && ranges != sampled;
            if (next.empty() && !samples) {
                break;
            }
            read(next, samples);
            ranges = rangesAroundTarget();
        }
        findNearest();
        if (isUsable() && tuning.nearestBelow) {
            read(roundAround(*tuning.nearestBelow), false);
            findNearest();
        }
        return std::move(tuning);
    }

  private:
    bool isUsable() const { return tuning.failure.empty() && !plan.interruption.requested(); }

    void read(const std::vector<Rank>& thresholds, bool samples) {
        FleetReading reading = readFleet(plan, thresholds, samples ? ranges : std::vector<RankRange>());
        if (plan.interruption.requested()) {
            return;
        }
        const bool isFirst = tuning.tried.empty();
        if (!isFirst && (reading.devices != tuning.size.devices || reading.events != tuning.events)) {
            tuning.failure = "the recordings have changed while they were read";
            return;
        }
        for (std::size_t i = 0; i < thresholds.size(); ++i) {
            tuning.tried[thresholds[i]] = reading.outcomes[i];
        }
        if (samples) {
            breakpoints = reading.breakpoints.ranks();
            isComplete = reading.breakpoints.isComplete();
            sampled = ranges;
        }
        if (isFirst) {
            describe(reading);
        }
    }

    void describe(FleetReading& reading) {
        tuning.events = reading.events;
        tuning.problems = std::move(reading.problems);
        const double days = static_cast<double>(reading.milliseconds) / kMillisecondsOfDay;
        tuning.size = {reading.devices, reading.timeless ? 0 : days};
        if (reading.devices == 0) {
            tuning.failure = "there is no recording to replay";
        } else if (target.kind == TuneTarget::Kind::Rate && reading.timeless) {
            tuning.failure = nameOfEvents(plan.devices[*reading.timeless]) +
                             ": no record has a time_ms, which triggers a day are counted by";
        } else if (target.kind == TuneTarget::Kind::Rate && days == 0) {
            tuning.failure = "no time passes from the first to the last time_ms of any recording";
        }
    }

    std::vector<Rank> breakpointsOfDraws() const {
        const DoubleFunction& function = *doubleFunctionOf(plan.constant.other());
        std::vector<Rank> result;
        for (int step = 0; step <= kDrawSteps; ++step) {
            result.push_back(rankOf(function.least + (function.limit - function.least) * step / kDrawSteps));
        }
        return result;
    }

    // Returns a threshold for gaps in the ranges, for all if they are few, but for those that the ends of a range have
    // tried.
    std::vector<Rank> gapsToTry() const {
        std::vector<Rank> gaps;
        for (const RankRange& range : ranges) {
            const auto begin = std::ranges::upper_bound(breakpoints, range.low);
            const auto end = std::ranges::upper_bound(breakpoints, range.high);
            if (begin == end) {
                continue;
            }
            for (auto each = begin; each + 1 != end; ++each) {
                gaps.push_back(roundestIn(*each, each[1] - 1, type));
            }
            if (range == kEverything) {
                // All that a function draws lies between the first and the last one.
                const bool isOfDraws = isFunction(plan.constant.other());
                gaps.insert(gaps.begin(), isOfDraws ? *begin : roundBelow(*begin, type));
                gaps.push_back(isOfDraws ? end[-1] : roundAbove(end[-1], type));
            }
        }
        std::erase_if(gaps, [this](Rank each) { return tuning.tried.contains(each); });
        return evenlyOf(gaps);
    }

    static std::vector<Rank> evenlyOf(const std::vector<Rank>& all) {
        if (all.size() <= kMostAtOnce) {
            return all;
        }
        std::vector<Rank> some;
        for (std::size_t i = 0; i < kMostAtOnce; ++i) {
            some.push_back(all[i * (all.size() - 1) / (kMostAtOnce - 1)]);
        }
        return some;
    }

    // Returns the ranges between neighbours of which one is above the target.
    std::vector<RankRange> rangesAroundTarget() const {
        std::vector<RankRange> result;
        for (auto each = tuning.tried.begin(); std::next(each) != tuning.tried.end(); ++each) {
            const auto& [next, outcome] = *std::next(each);
            if (target.isBelow(each->second, tuning.size) != target.isBelow(outcome, tuning.size)) {
                result.push_back({each->first, next});
            }
        }
        return result;
    }

    void findNearest() {
        tuning.nearestBelow.reset();
        tuning.nearestAbove.reset();
        if (!isUsable()) {
            return;
        }
        const auto better = [&](Rank left, const std::optional<Rank>& right, double sign) {
            const auto key = [&](Rank rank) {
                return std::tuple(sign * target.measure(tuning.tried.at(rank), tuning.size), digitsOf(rank, type),
                                  tuning.tried.at(rank).triggers);
            };
            return !right || key(left) < key(*right);
        };
        for (const auto& [rank, outcome] : tuning.tried) {
            const bool isBelow = target.isBelow(outcome, tuning.size);
            std::optional<Rank>& nearest = isBelow ? tuning.nearestBelow : tuning.nearestAbove;
            if (better(rank, nearest, isBelow ? -1 : 1)) {
                nearest = rank;
            }
        }
    }

    // Returns round thresholds on both sides, up to the next ones that are known to give something else.
    std::vector<Rank> roundAround(Rank rank) const {
        const double measure = target.measure(tuning.tried.at(rank), tuning.size);
        const auto isOther = [&](const auto& each) { return target.measure(each.second, tuning.size) != measure; };
        const auto here = tuning.tried.find(rank);
        const auto above = std::find_if(here, tuning.tried.end(), isOther);
        const auto below = std::find_if(std::make_reverse_iterator(here), tuning.tried.rend(), isOther);
        Rank high = above == tuning.tried.end() ? rank : above->first - 1;
        Rank low = below == tuning.tried.rend() ? rank : below->first + 1;
        std::vector<Rank> rounds;
        for (std::size_t i = 0; i < kMostAtOnce / 4; ++i) {
            rounds.push_back(roundestIn(low, high, type));
            rounds.push_back(roundestIn(low, rank, type));
            rounds.push_back(roundestIn(rank, high, type));
            low = std::midpoint(rank, low);
            high = std::midpoint(rank, high);
        }
        std::ranges::sort(rounds);
        rounds.erase(std::unique(rounds.begin(), rounds.end()), rounds.end());
        std::erase_if(rounds, [this](Rank each) { return tuning.tried.contains(each); });
        return rounds;
    }

    const TunePlan& plan;
    const TuneTarget& target;
    const FilterValueType type;
    std::vector<RankRange> ranges = {kEverything};  // in which thresholds are tried
    std::vector<RankRange> sampled;                 // which the breakpoints are of
    std::vector<Rank> breakpoints;                  // in order
    bool isComplete = false;                        // no value of the ranges was left out
    Tuning tuning;
};

}  // namespace

Tuning searchThreshold(const TunePlan& plan, const TuneTarget& target) {
    return Search(plan, target).run();
}

}  // namespace Brenta::OS::VIG::Tool
