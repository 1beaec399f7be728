#include "tools/vig/fleet/SummaryReader.h"

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

// Reads the numbers of a summary.
class NumberParser {
  public:
    NumberParser(const DocumentText& text, std::vector<std::string>& errors) : json(text, errors) {}

  protected:
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

    StrictJson json;
};

class FleetSummaryParser : private NumberParser {
  public:
    using NumberParser::NumberParser;

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

    std::uint64_t devices = 0;   // of all of triggers.by_count
    std::uint64_t triggers = 0;  // of them
};

class DiffSummaryParser : private NumberParser {
  public:
    using NumberParser::NumberParser;

    DiffSummary summary(const Json::Value& root) {
        DiffSummary result;
        if (!json.isObject(root, "",
                           {"old", "new", "devices", "failed", "unfinished", "events", "triggers", "changes",
                            "examples", "machines"})) {
            return result;
        }
        for (const std::size_t side : {kOld, kNew}) {
            result.documentHashes[side] = json.requiredText(root, kSides[side], "").value_or("");
        }
        result.failed = number(root, "failed", "");
        result.unfinished = number(root, "unfinished", "");
        devices = number(root, "devices", "");
        result.events = number(root, "events", "", 0, devices == 0 ? 0 : kMost);
        result.all = count(root, "", {kMost, kMost});
        readMachines(root["machines"], "machines", result);
        readExamples(root["examples"], "examples", result);
        return result;
    }

  private:
    static constexpr Both<const char*> kSides = {"old", "new"};

    // Neither number is larger than that of `most`.
    Both<std::uint64_t> both(const Json::Value& object, const std::string& path, Both<std::uint64_t> most) {
        Both<std::uint64_t> result = {};
        if (json.isObject(object, path, {"old", "new"})) {
            for (const std::size_t side : {kOld, kNew}) {
                result[side] = number(object, kSides[side], path, 0, most[side]);
            }
        }
        return result;
    }

    DiffSummary::Count count(const Json::Value& object, const std::string& path, Both<std::uint64_t> most) {
        DiffSummary::Count result;
        result.triggers = both(object["triggers"], StrictJson::member(path, "triggers"), most);
        const std::string place = StrictJson::member(path, "changes");
        const Json::Value& changes = object["changes"];
        if (json.isObject(changes, place, {kDeviceChangeNames.begin(), kDeviceChangeNames.end()})) {
            std::uint64_t left = devices;
            for (std::size_t change = 0; change < kDeviceChangeNames.size(); ++change) {
                result.devices[change] = number(changes, std::string(kDeviceChangeNames[change]), place, 0, left);
                left -= result.devices[change];
            }
            if (left > 0) {
                json.complain(changes, place, fmt::format("{} devices fewer than there are", left));
            }
        }
        return result;
    }

    void readMachines(const Json::Value& array, const std::string& path, DiffSummary& result) {
        if (!json.isArray(array, path)) {
            return;
        }
        Both<std::uint64_t> left = result.all.triggers;
        StrictJson::forEach(array, path, [&](const Json::Value& each, const std::string& place) {
            if (json.isObject(each, place, {"id", "old", "new", "triggers", "changes"})) {
                result.machines.push_back(machine(each, place, left));
            }
        });
        if (left != Both<std::uint64_t>{}) {
            json.complain(array, path, "fewer triggers than there are");
        }
    }

    // Takes its triggers from those that are `left`.
    DiffSummary::Machine machine(const Json::Value& object, const std::string& path, Both<std::uint64_t>& left) {
        DiffSummary::Machine result{0, {}};
        json.hasMember(object, "id", path);
        using Limits = std::numeric_limits<std::int64_t>;
        result.id = json.optionalInteger(object, "id", path, Limits::min(), Limits::max()).value_or(0);
        for (const std::size_t side : {kOld, kNew}) {
            if (json.hasMember(object, kSides[side], path) && !object[kSides[side]].isNull()) {
                result.paths[side] = json.requiredText(object, kSides[side], path).value_or("");
            }
        }
        result.count = count(object, path, left);
        for (const std::size_t side : {kOld, kNew}) {
            left[side] -= result.count.triggers[side];
        }
        return result;
    }

    void readExamples(const Json::Value& array, const std::string& path, DiffSummary& result) {
        if (!json.isArray(array, path)) {
            return;
        }
        StrictJson::forEach(array, path, [&](const Json::Value& each, const std::string& place) {
            if (json.isObject(each, place, {"change", "device", "triggers", "event"})) {
                addExample(each, place, result);
            }
        });
        for (std::size_t change = 0; change + 1 < kDeviceChangeNames.size(); ++change) {
            const auto named = static_cast<std::size_t>(
                std::ranges::count(result.examples, static_cast<DeviceChange>(change), &DiffSummary::Example::change));
            const auto expected = std::min<std::uint64_t>(result.all.devices[change], DiffSummary::MOST_EXAMPLES);
            if (named != expected) {
                misfit(array, path, fmt::format("{} of change {}", expected, kDeviceChangeNames[change]));
            }
        }
    }

    void addExample(const Json::Value& object, const std::string& path, DiffSummary& result) {
        const std::string name = json.requiredText(object, "change", path).value_or("");
        const auto* const change = std::ranges::find(kDeviceChangeNames, name);
        DiffSummary::Example example{static_cast<DeviceChange>(change - kDeviceChangeNames.begin()),
                                     json.requiredText(object, "device", path).value_or(""),
                                     both(object["triggers"], path + ".triggers", result.all.triggers),
                                     number(object, "event", path, 0, result.events)};
        // Only a change of the triggers follows from their numbers.
        const BothDid did{example.triggers, example.change != DeviceChange::Logs, true};
        if (did.change() != example.change) {
            json.complain(object["change"], path + ".change", "does not fit the triggers");
        }
        if (!result.examples.empty() && example.comesBefore(result.examples.back())) {
            json.complain(object, path, "is not in order");
        }
        result.examples.push_back(std::move(example));
    }

    std::uint64_t devices = 0;
};

std::optional<AnySummary> read(const DocumentText& document, std::vector<std::string>& errors) {
    if (const auto mistakes = StrictJson::mistakesIn(document); !mistakes.empty()) {
        errors.insert(errors.end(), mistakes.begin(), mistakes.end());
        return std::nullopt;
    }
    std::vector<std::string> problems;
    const Json::Value& root = document.root();
    AnySummary summary;
    if (root.isObject() && root.isMember("changes")) {
        summary = DiffSummaryParser(document, problems).summary(root);
    } else {
        summary = FleetSummaryParser(document, problems).summary(root);
    }
    errors.insert(errors.end(), problems.begin(), problems.end());
    return problems.empty() ? std::optional(std::move(summary)) : std::nullopt;
}

}  // namespace

std::optional<AnySummary> readSummary(const std::string& file, std::size_t lineNumber, std::string_view line,
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
