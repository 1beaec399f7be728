#include "tools/vig/fleet/FleetSummary.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "tools/vig/document/DocumentText.h"
#include "tools/vig/document/StrictJson.h"
#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::uint64_t kMost = FleetSummary::MOST;

class SummaryParser {
  public:
    SummaryParser(const DocumentText& text, std::vector<std::string>& errors) : json(text, errors) {}

    FleetSummary summary(const Json::Value& root) {
        FleetSummary result;
        if (!json.isObject(
                root, "", {"document", "devices", "failed", "unfinished", "events", "triggers", "storms", "configs"})) {
            return result;
        }
        result.documentHash = json.requiredText(root, "document", "").value_or("");
        result.failed = number(root, "failed", "");
        result.unfinished = number(root, "unfinished", "");
        readTriggers(root["triggers"], "triggers", result);
        derived(root, "devices", "", devices);
        result.events = number(root, "events", "", 0, devices == 0 ? 0 : kMost);
        readStorms(root["storms"], "storms", result);
        if (json.isArray(root["configs"], "configs")) {
            StrictJson::forEach(root["configs"], "configs", [&](const Json::Value& each, const std::string& path) {
                result.configs.push_back(config(each, path));
            });
        }
        return result;
    }

  private:
    std::uint64_t number(const Json::Value& object, const std::string& key, const std::string& path) {
        return number(object, key, path, 0, kMost);
    }

    // REQUIRES: the limits are at most kMost + 1.
    std::uint64_t number(const Json::Value& object, const std::string& key, const std::string& path,
                         std::uint64_t least, std::uint64_t most) {
        json.hasMember(object, key, path);
        const auto read =
            json.optionalInteger(object, key, path, static_cast<std::int64_t>(least), static_cast<std::int64_t>(most));
        return static_cast<std::uint64_t>(read.value_or(0));
    }

    // Complains if a number does not follow from the others.
    void derived(const Json::Value& object, const std::string& key, const std::string& path, std::uint64_t expected) {
        if (number(object, key, path) != expected) {
            misfit(object[key], StrictJson::member(path, key), std::to_string(expected));
        }
    }

    void misfit(const Json::Value& at, const std::string& path, const std::string& expected) {
        json.complain(at, path, "does not fit the rest, of which it follows: " + expected);
    }

    void readTriggers(const Json::Value& object, const std::string& path, FleetSummary& result) {
        if (!json.isObject(object, path, {"total", "median", "p99", "most", "by_count"}) ||
            !json.isArray(object["by_count"], path + ".by_count")) {
            return;
        }
        StrictJson::forEach(
            object["by_count"], path + ".by_count",
            [&](const Json::Value& each, const std::string& place) { addByCount(each, place, result); });
        derived(object, "total", path, triggers);
        derived(object, "median", path, result.percentile(50));
        derived(object, "p99", path, result.percentile(99));
        derived(object, "most", path, result.percentile(100));
    }

    // They are in ascending order, so that none comes twice, and no more than can be added up.
    void addByCount(const Json::Value& object, const std::string& path, FleetSummary& result) {
        if (!json.isObject(object, path, {"triggers", "devices"})) {
            return;
        }
        auto& byCount = result.devicesByTriggers;
        const std::uint64_t each =
            number(object, "triggers", path, byCount.empty() ? 0 : byCount.rbegin()->first + 1, kMost);
        const std::uint64_t most = std::min(kMost - devices, (kMost - triggers) / std::max<std::uint64_t>(each, 1));
        const std::uint64_t count = number(object, "devices", path, 1, most);
        byCount[each] += count;
        devices += count;
        triggers += each * count;
    }

    void readStorms(const Json::Value& object, const std::string& path, FleetSummary& result) {
        if (!json.isObject(object, path, {"devices", "worst"}) || !json.isArray(object["worst"], path + ".worst")) {
            return;
        }
        std::uint64_t most = 0;
        for (const auto& [triggersOfEach, count] : result.devicesByTriggers) {
            most += triggersOfEach >= FleetSummary::Storm::LEAST_TRIGGERS ? count : 0;
        }
        result.stormyDevices = number(object, "devices", path, 0, most);
        const auto named = std::min<std::uint64_t>(result.stormyDevices, FleetSummary::MOST_STORMS_NAMED);
        if (object["worst"].size() != named) {
            misfit(object["worst"], path + ".worst", std::to_string(named) + " of them");
            return;
        }
        StrictJson::forEach(object["worst"], path + ".worst",
                            [&](const Json::Value& each, const std::string& place) { addStorm(each, place, result); });
    }

    void addStorm(const Json::Value& object, const std::string& path, FleetSummary& result) {
        if (!json.isObject(object, path, {"device", "triggers", "events"})) {
            return;
        }
        const FleetSummary::Storm storm{json.requiredText(object, "device", path).value_or(""),
                                        number(object, "triggers", path),
                                        number(object, "events", path, 0, result.events)};
        if (!FleetSummary::isStorm(storm.triggers, storm.events)) {
            json.complain(object, path, "is no storm");
        }
        if (!result.worstStorms.empty() && storm.comesBefore(result.worstStorms.back())) {
            json.complain(object, path, "expected the most triggers first, then the names in their order");
        }
        result.worstStorms.push_back(storm);
        const auto known = result.devicesByTriggers.find(storm.triggers);
        const auto same = std::ranges::count(result.worstStorms, storm.triggers, &FleetSummary::Storm::triggers);
        if (known == result.devicesByTriggers.end() || known->second < static_cast<std::uint64_t>(same)) {
            json.complain(object["triggers"], path + ".triggers", "triggers.by_count has fewer devices with so many");
        }
    }

    FleetSummary::Config config(const Json::Value& object, const std::string& path) {
        FleetSummary::Config result{"", 0, {}, {}};
        if (!json.isObject(object, path, {"path", "id", "devices", "fired", "transitions"}) ||
            !json.isArray(object["transitions"], path + ".transitions")) {
            return result;
        }
        result.path = json.requiredText(object, "path", path).value_or("");
        json.hasMember(object, "id", path);
        using Limits = std::numeric_limits<std::int64_t>;
        result.id = json.optionalInteger(object, "id", path, Limits::min(), Limits::max()).value_or(0);
        StrictJson::forEach(
            object["transitions"], path + ".transitions",
            [&](const Json::Value& each, const std::string& place) { addTransition(each, place, result); });
        readCount(object, path, result);
        return result;
    }

    // The number of a configuration lies between its transitions firing on the same devices and each on others.
    void readCount(const Json::Value& object, const std::string& path, FleetSummary::Config& config) {
        std::uint64_t least = 0;
        std::uint64_t most = 0;
        std::uint64_t fired = 0;
        for (const FleetSummary::Transition& each : config.transitions) {
            least = std::max(least, each.count.devices);
            most = std::min(devices, most + each.count.devices);
            fired = std::min(kMost + 1, fired + each.count.fired);
        }
        config.count.devices = number(object, "devices", path, least, most);
        config.count.fired = fired;
        derived(object, "fired", path, fired);
    }

    void addTransition(const Json::Value& object, const std::string& path, FleetSummary::Config& config) {
        if (json.isObject(object, path, {"path", "from", "to", "event", "devices", "fired"})) {
            const auto text = [&](const char* key) { return json.requiredText(object, key, path).value_or(""); };
            config.transitions.push_back({text("path"), text("from"), text("to"), text("event"), count(object, path)});
        }
    }

    FleetSummary::Count count(const Json::Value& object, const std::string& path) {
        const std::uint64_t on = number(object, "devices", path, 0, devices);
        return {on, number(object, "fired", path, on, on == 0 ? 0 : kMost)};
    }

    StrictJson json;
    std::uint64_t devices = 0;   // of all of triggers.by_count
    std::uint64_t triggers = 0;  // of them
};

std::optional<FleetSummary> read(const DocumentText& document, std::vector<std::string>& errors) {
    if (std::string mistake = StrictJson::mistakeIn(document); !mistake.empty()) {
        errors.push_back(std::move(mistake));
        return std::nullopt;
    }
    std::vector<std::string> problems;
    FleetSummary summary = SummaryParser(document, problems).summary(document.root());
    errors.insert(errors.end(), problems.begin(), problems.end());
    return problems.empty() ? std::optional(std::move(summary)) : std::nullopt;
}

}  // namespace

std::optional<FleetSummary> readFleetSummary(const std::string& file, std::size_t lineNumber, std::string_view line,
                                             std::vector<std::string>& errors) {
    // The reader would skip it.
    if (withoutByteOrderMark(line).size() != line.size()) {
        errors.push_back(fmt::format("{}:{}:1: error: a byte order mark", file, lineNumber));
        return std::nullopt;
    }
    std::vector<std::string> withoutLine;
    auto summary = read(DocumentText(file, std::string(line)), withoutLine);
    if (!summary) {
        // It is read again where the messages are to point to, which is too slow for each of many lines.
        read(DocumentText(file, std::string(lineNumber - 1, '\n') + std::string(line)), errors);
    }
    return summary;
}

}  // namespace Brenta::OS::VIG::Tool
