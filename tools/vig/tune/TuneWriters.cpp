#include "tools/vig/tune/TuneWriters.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostRowsOnASide = 6;
constexpr double kWidestBar = 40;

std::string shown(double number) {
    return number < 999.5 ? fmt::format("{:.3g}", number) : fmt::format("{:.0f}", number);
}

std::string shownShare(double share) {
    return shown(100 * share) + " %";
}

std::string counted(double number, const std::string& what) {
    return shown(number) + " " + what + (number == 1 ? "" : "s");
}

// Knows how the rows and lines of one report are written.
class TuneWriter {
  public:
    explicit TuneWriter(const TuneReport& given)
        : report(given), size(given.tuning.size), type(given.plan.constant.model->valueType) {}

    // Returns the thresholds of the table: near the answer the next ones that give something else, farther from it
    // fewer of them.
    std::vector<Rank> rows() const {
        const std::optional<Rank> centre =
            report.tuning.nearestBelow ? report.tuning.nearestBelow : report.tuning.nearestAbove;
        std::vector<Rank> different;
        for (const auto& [rank, outcome] : report.tuning.tried) {
            const bool isSame = !different.empty() && report.tuning.tried.at(different.back()) == outcome;
            if (rank == centre || !isSame) {
                if (isSame) {
                    different.pop_back();
                }
                different.push_back(rank);
            }
        }
        std::vector<Rank> result = {report.plan.constant.current};
        const auto place = std::ranges::find(different, *centre) - different.begin();
        const auto count = std::ssize(different);
        result.push_back(*centre);
        result.push_back(report.tuning.nearestAbove.value_or(*centre));
        for (std::size_t i = 0; i < kMostRowsOnASide; ++i) {
            const std::ptrdiff_t step = std::ptrdiff_t{1} << i;
            for (const std::ptrdiff_t at : {place - step, place + step}) {
                if (0 <= at && at < count) {
                    result.push_back(different[static_cast<std::size_t>(at)]);
                }
            }
        }
        std::ranges::sort(result);
        result.erase(std::unique(result.begin(), result.end()), result.end());
        return result;
    }

    std::string threshold(Rank rank) const { return textOf(rank, type); }

    const FleetOutcome& outcomeOf(Rank rank) const { return report.tuning.tried.at(rank); }

    std::string measured(double number) const {
        return isShare() ? shownShare(number) : shown(number) + " triggers a device and day";
    }

    std::string described(Rank rank) const {
        const FleetOutcome& outcome = outcomeOf(rank);
        const auto count = static_cast<double>(isShare() ? outcome.devices : outcome.triggers);
        const Interval interval = report.target.interval(outcome, size);
        return fmt::format(
            "{}: {}, {} (95 % interval: {} to {})", threshold(rank), counted(count, isShare() ? "device" : "trigger"),
            measured(report.target.measure(outcome, size)), isShare() ? shownShare(interval.low) : shown(interval.low),
            isShare() ? shownShare(interval.high) : shown(interval.high));
    }

    Certainty certainty() const {
        const auto& tuning = report.tuning;
        return report.target.certainty(outcomeOf(tuning.nearestBelow ? *tuning.nearestBelow : *tuning.nearestAbove),
                                       size);
    }

    std::string shownCertainty() const {
        const Certainty certainty = this->certainty();
        const bool hasDouble = !isShare() || report.target.value <= 0.5;
        const std::string_view orDouble = hasDouble ? ", or from its double" : "";
        if (certainty.fromNone && certainty.fromDouble) {
            return fmt::format("enough to tell the target from none{}", hasDouble ? ", and from its double" : "");
        }
        return fmt::format(
            "too small to tell the target from {}; {} would be enough",
            certainty.fromNone ? "its double" : fmt::format("none{}", certainty.fromDouble ? "" : orDouble),
            isShare() ? counted(std::ceil(certainty.needed), "device") : counted(certainty.needed, "day"));
    }

    bool isShare() const { return report.target.kind == TuneTarget::Kind::Share; }

    const TuneReport& report;
    const FleetSize& size;
    const FilterValueType type;
};

std::string tableOf(const TuneWriter& writer) {
    const TuneReport& report = writer.report;
    const std::vector<Rank> rows = writer.rows();
    const bool hasDays = writer.size.days > 0;
    double most = 0;
    std::size_t width = 9;
    for (const Rank each : rows) {
        most = std::max(most, report.target.measure(writer.outcomeOf(each), writer.size));
        width = std::max(width, writer.threshold(each).size());
    }
    std::string text = fmt::format("\n    {:>{}}  {:>8}  {:>8}  {:>9}{}\n", "threshold", width, "devices", "share",
                                   "triggers", hasDays ? "     a day" : "");
    const auto answer = report.answer();
    for (const Rank each : rows) {
        const FleetOutcome& outcome = writer.outcomeOf(each);
        const double measure = report.target.measure(outcome, writer.size);
        const auto bar = static_cast<std::size_t>(most > 0 ? std::ceil(kWidestBar * measure / most) : 0);
        const double share = static_cast<double>(outcome.devices) / static_cast<double>(writer.size.devices);
        std::string line =
            fmt::format("  {} {:>{}}  {:>8}  {:>8}  {:>9}", each == answer ? '>' : ' ', writer.threshold(each), width,
                        outcome.devices, shownShare(share), outcome.triggers);
        if (hasDays) {
            line += fmt::format("  {:>8}", shown(static_cast<double>(outcome.triggers) / writer.size.days));
        }
        line += bar > 0 ? "  " + std::string(bar, '#') : "";
        line += each == report.plan.constant.current ? "  now" : "";
        text += line + "\n";
    }
    return text;
}

std::string jsonOf(const TuneWriter& writer, Rank rank) {
    const FleetOutcome& outcome = writer.outcomeOf(rank);
    const Interval interval = writer.report.target.interval(outcome, writer.size);
    const std::string perDay =
        writer.size.days > 0 ? fmt::format("{}", static_cast<double>(outcome.triggers) / writer.size.days) : "null";
    return fmt::format(
        R"({{"threshold":{},"devices":{},"share":{},"triggers":{},"triggers_a_day":{},"interval":[{},{}]}})",
        inQuotes(writer.threshold(rank)), outcome.devices,
        static_cast<double>(outcome.devices) / static_cast<double>(writer.size.devices), outcome.triggers, perDay,
        interval.low, interval.high);
}

std::string jsonOf(const TuneWriter& writer, std::optional<Rank> rank) {
    return rank ? jsonOf(writer, *rank) : "null";
}

}  // namespace

std::optional<Rank> TuneReport::answer() const {
    const auto& rank = tuning.nearestBelow;
    return rank && target.isGivenBy(tuning.tried.at(*rank), tuning.size) ? rank : std::nullopt;
}

std::string textOf(const TuneReport& report) {
    const TuneWriter writer(report);
    std::string text = "tune\n";
    const auto add = [&text](const char* name, const std::string& value) {
        text += fmt::format("  {:<9}  {}\n", name, value);
    };
    const std::string& path = report.plan.constant.operand().place.path;
    add("constant", path);
    add("filter", printable(shownCondition(*report.plan.constant.model)));
    add("fleet", counted(static_cast<double>(writer.size.devices), "device") +
                     (writer.size.days > 0 ? ", " + counted(writer.size.days, "day") + " in all" : "") +
                     (report.tuning.problems.empty()
                          ? ""
                          : fmt::format(", {} cannot be read, or not to the end", report.tuning.problems.size())));
    add("target", report.targetText + (writer.isShare() ? " of the devices" : " on each device"));
    if (const auto answer = report.answer()) {
        add("answer", writer.described(*answer));
    } else {
        add("answer", fmt::format("none of the {} that were replayed gives it", report.tuning.tried.size()));
        for (const auto& nearest : {report.tuning.nearestBelow, report.tuning.nearestAbove}) {
            if (nearest) {
                add("nearest", writer.described(*nearest));
            }
        }
    }
    add("certainty", writer.shownCertainty());
    return text + tableOf(writer);
}

std::string jsonOf(const TuneReport& report) {
    const TuneWriter writer(report);
    const Certainty certainty = writer.certainty();
    return fmt::format(
        R"({{"path":{},"filter":{},"target":{},"devices":{},"failed":{},"events":{},"days":{},"tried":{},)"
        R"("answer":{},"below":{},"above":{},"now":{},)"
        R"("certainty":{{"from_none":{},"from_double":{},"needed":{}}},"thresholds":{}}})"
        "\n",
        inQuotes(report.plan.constant.operand().place.path), inQuotes(conditionOf(*report.plan.constant.model)),
        inQuotes(report.targetText), writer.size.devices, report.tuning.problems.size(), report.tuning.events,
        writer.size.days > 0 ? fmt::format("{}", writer.size.days) : "null", report.tuning.tried.size(),
        jsonOf(writer, report.answer()), jsonOf(writer, report.tuning.nearestBelow),
        jsonOf(writer, report.tuning.nearestAbove), jsonOf(writer, report.plan.constant.current), certainty.fromNone,
        certainty.fromDouble, certainty.needed,
        jsonArray(writer.rows(), [&](Rank rank) { return jsonOf(writer, rank); }));
}

}  // namespace Brenta::OS::VIG::Tool
