#include "bench/Report.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <thread>
#include <utility>

#include "bench/Process.h"

namespace bench {

namespace {

struct Spread {
    double low;
    double median;
    double high;
};

Spread spreadOf(std::vector<double> values) {
    std::ranges::sort(values);
    const auto at = [&](double share) {
        return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1) + 0.5)];
    };
    return {at(0.25), at(0.5), at(0.75)};
}

std::string timeText(double seconds) {
    return seconds < 1e-6   ? fmt::format("{:.1f} ns", seconds * 1e9)
           : seconds < 1e-3 ? fmt::format("{:.1f} µs", seconds * 1e6)
           : seconds < 1    ? fmt::format("{:.1f} ms", seconds * 1e3)
                            : fmt::format("{:.2f} s", seconds);
}

std::string verdict(double ratio, double aim) {
    return aim == 0 ? "" : ratio <= aim ? "yes" : "**no**";
}

std::string aimText(double aim) {
    return aim == 0 ? "reported" : fmt::format("≤ {:.4g}", aim);
}

// Compares each repetition with each of the other.
std::vector<double> ratios(const std::vector<double>& ours, const std::vector<double>& theirs, double units) {
    std::vector<double> result;
    for (const double our : ours) {
        for (const double their : theirs) {
            result.push_back(our / (their * units));
        }
    }
    return result;
}

std::string instructionRatio(const Comparison& each) {
    if (each.counted == 0) {
        return {};
    }
    const double ours = instructionsOf(each.ours, each.counted);
    const double theirs = instructionsOf(each.theirs, each.counted);
    return fmt::format("{:.0f} / {:.0f} = {:.2f}", ours, theirs, ours / theirs);
}

std::string rowOf(const Comparison& each, const Times& times) {
    const auto& ours = times.at(each.ours);
    const auto& theirs = times.at(each.theirs);
    std::vector<double> compared;
    std::string medians;
    if (each.oursSmaller.empty()) {
        compared = ratios(ours, theirs, each.units);
        medians = timeText(spreadOf(ours).median) + " / " + timeText(spreadOf(theirs).median);
    } else {
        const auto ourGrowth = ratios(ours, times.at(each.oursSmaller), each.units);
        const auto theirGrowth = ratios(theirs, times.at(each.theirsSmaller), each.units);
        compared = ratios(ourGrowth, theirGrowth, 1);
        medians = fmt::format("{:.3g} / {:.3g}", spreadOf(ourGrowth).median, spreadOf(theirGrowth).median);
    }
    const Spread ratio = spreadOf(compared);
    return fmt::format("| {} | {} | **{:.3g}** | {:.3g}–{:.3g} | {} | {} | {} | {} |\n", each.what, each.against,
                       ratio.median, ratio.low, ratio.high, aimText(each.aim), verdict(ratio.median, each.aim), medians,
                       instructionRatio(each));
}

// vig_bench_heap prints these lines.
std::string heapRows() {
    std::string rows;
    std::istringstream lines(outputOf(VIG_HEAP));
    for (std::string name, value; std::getline(lines, name, '\t') && std::getline(lines, value);) {
        const double aim = name.ends_with("text") ? 2.0 : 1.5;
        rows += fmt::format("| {} | {} | {} | {} |\n", name, value.substr(0, 5), aimText(aim),
                            verdict(std::stod(value), aim));
    }
    return rows;
}

std::string linesOf(const std::string& command) {
    std::string text = outputOf(command);
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

std::string libraryRows() {
    const std::string size =
        linesOf("f=$(mktemp) && strip -o \"$f\" " VIG_LIBRARY " && stat -c %s \"$f\" && rm -f \"$f\"");
    const std::string relocations = linesOf("readelf -rW " VIG_LIBRARY " | grep -c R_");
    return fmt::format("| the stripped library, bytes | {} | ≤ 300000 | {} |\n", size,
                       verdict(std::stod(size), 300'000)) +
           fmt::format("| its relocations | {} | reported | |\n", relocations);
}

}  // namespace

// It takes two runs of different length, so that what is done before and after does not count.
double instructionsOf(const std::string& scenario, std::size_t times) {
    const std::string name = scenario.starts_with("document/") ? "own process/" + scenario : scenario;
    const auto count = [&](std::size_t often) {
        return std::stod(outputOf(fmt::format(
            "valgrind --tool=callgrind --callgrind-out-file=/dev/null /proc/{}/exe --only '{}' {} 2>&1 >/dev/null | "
            "sed -n 's/.*Collected : //p'",
            getpid(), name, often)));
    };
    return (count(2 * times) - count(times)) / static_cast<double>(times);
}

std::string figures() {
    return heapRows() + libraryRows();
}

std::vector<Comparison> comparisons() {
    constexpr std::size_t kShort = 2'000;
    std::vector<Comparison> result;
    for (const int count : {1, 8, 64, 512}) {
        const std::string name = fmt::format("other types/{}/", count);
        result.push_back({fmt::format("event offered to {} transitions for other types", count), "by hand",
                          name + "vig", name + "by hand", 1.1, count == 8 ? kShort : 0});
    }
    for (const std::string kind : {"integer", "double", "string"}) {
        for (const int count : {1, 3, 10}) {
            const double aim = kind != "string" ? 1.4 : count == 1 ? 1.45 : count == 3 ? 1.6 : 1.7;
            for (const char* end : {"", ", last false"}) {
                const std::string name = fmt::format("filters/{} {}{}", count, kind, end);
                result.push_back({fmt::format("event through {} {} filters{}", count, kind, end), "by hand",
                                  name + "/vig", name + "/by hand", aim, count == 3 ? kShort : 0});
            }
        }
    }
    result.push_back({"three integer filters", "LuaJIT", "filters/3 integer/vig", "script/LuaJIT", 0.25, kShort});
    result.push_back({"three integer filters", "muParser", "filters/3 integer/vig", "script/muParser", 1.0, kShort});
    for (const auto& [count, counted] : {std::pair<std::size_t, std::size_t>(1, 200), {100, 5}, {20'000, 0}}) {
        const std::string name = fmt::format("document/{}/", count);
        const std::string what = fmt::format("`parseResponse` of {} configurations", count);
        result.push_back({what, "jsoncpp", name + "vig", name + "jsoncpp", 1.35, counted});
        result.push_back({what, "jsoncpp, tree not freed", name + "vig", name + "jsoncpp, tree kept", 0});
    }
    for (const auto& [reader, aim] : {std::pair("jsoncpp", 1.0), {"jsoncpp, tree kept", 0.0}}) {
        result.push_back({"growth of a configuration's time from 100 to 20,000",
                          reader == std::string("jsoncpp") ? "jsoncpp's" : "jsoncpp's, tree not freed",
                          "document/20000/vig", fmt::format("document/20000/{}", reader), aim, 0, 200,
                          "document/100/vig", fmt::format("document/100/{}", reader)});
    }
    result.push_back({"metadata of 20 attributes", "bare conversions", "metadata/vig", "metadata/bare", 1.3, kShort});
    result.push_back({"\"PseudoRandomDouble\"", "`std::mt19937`", "random/vig", "random/std", 2.0, kShort});
    result.push_back({"\"PseudoRandomDouble\", two threads", "`std::mt19937`, one thread", "random/vig, two threads",
                      "random/std", 0});
    result.push_back({"\"PseudoRandomDouble\", two threads", "`std::mt19937` behind a mutex, two threads",
                      "random/vig, two threads", "random/std, two threads", 0});
    result.push_back({"`vig run`, 1,000,000 records", "simdjson", "run/1000000/vig", "run/1000000/simdjson", 1.8});
    result.push_back(
        {"`vig run`, the same without rules", "simdjson", "run/no rules/vig", "run/1000000/simdjson", 1.1});
    result.push_back(
        {"`vig run`, a recording of this machine", "simdjson", "run/machine/vig", "run/machine/simdjson", 2.2});
    result.push_back(
        {"`vig run`, a layout of its own for each line", "simdjson", "run/changing/vig", "run/changing/simdjson", 0});
    result.push_back({"`vig run`, 100,000 records", "`jq`", "run/100000/vig", "run/100000/jq", 1.0 / 30});
    result.push_back({"`vig diff`, 1,000 devices, each machine changed", "`vig run`", "fleet/diff", "fleet/run", 1.3});
    for (const char* verb : {"check", "diff", "prove"}) {
        for (const auto& [count, units] : {std::pair("5,000", 2), {"10,000", 4}, {"20,000", 8}}) {
            result.push_back({fmt::format("`vig {}`, {} transitions", verb, count), "2,500 of them",
                              fmt::format("{}/{}", verb, 2'500 * units), fmt::format("{}/2500", verb), 1.15, 0,
                              static_cast<double>(units)});
        }
    }
    result.push_back({"start of a program with the library", "without", "start/with", "start/without", 0});
    return result;
}

std::string tableOf(const Times& times) {
    std::string table =
        "| What | Against | Ratio | Quartiles | Aim | Met | Times | Instructions |\n"
        "|---|---|---|---|---|---|---|---|\n";
    for (const Comparison& each : comparisons()) {
        const auto isMeasured = [&](const std::string& name) { return name.empty() || times.contains(name); };
        if (isMeasured(each.ours) && isMeasured(each.theirs) && isMeasured(each.oursSmaller) &&
            isMeasured(each.theirsSmaller)) {
            table += rowOf(each, times);
        }
    }
    if (!times.contains("run/1000000/vig")) {
        return table;
    }
    return table + "\n| What | Value | Aim | Met |\n|---|---|---|---|\n" + figures() +
           fmt::format("| `vig run`, events a second | {:.0f} | reported | |\n",
                       1e6 / spreadOf(times.at("run/1000000/vig")).median);
}

std::string machineDescription() {
    return fmt::format("{} x {}; {}; {}", std::thread::hardware_concurrency(),
                       linesOf("sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1 | grep . || echo unknown"),
                       linesOf("uname -srm"), "g++ " __VERSION__ ", -O2");
}

}  // namespace bench
