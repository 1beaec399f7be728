#include "tools/vig/fleet/FleetSummaryReader.h"

#include <limits>
#include <utility>

#include "tools/vig/DocumentText.h"
#include "tools/vig/StrictJson.h"

namespace tool {

namespace {

// What also programs that know only doubles read exactly; the sum of many is still far from the largest number.
constexpr std::int64_t kMost = std::int64_t{1} << 53;

class Reader {
  public:
    Reader(const DocumentText& text, std::vector<std::string>& problems) : json(text, problems) {}

    FleetSummary summary(const Json::Value& root) {
        FleetSummary result;
        if (!json.isObject(
                root, "", {"document", "devices", "failed", "unfinished", "events", "triggers", "storms", "configs"})) {
            return result;
        }
        result.documentHash = json.requiredText(root, "document", "").value_or("");
        result.failed = number(root, "failed", "");
        result.unfinished = number(root, "unfinished", "");
        result.events = number(root, "events", "");
        readTriggers(root["triggers"], "triggers", result);
        derived(root, "devices", "", result.devices());
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
        json.hasMember(object, key, path);
        return static_cast<std::uint64_t>(json.optionalInteger(object, key, path, 0, kMost).value_or(0));
    }

    // A number that follows from others.
    void derived(const Json::Value& object, const std::string& key, const std::string& path, std::uint64_t expected) {
        if (number(object, key, path) != expected) {
            json.complain(object[key], StrictJson::member(path, key),
                          "does not fit the rest, of which it follows: " + std::to_string(expected));
        }
    }

    void readTriggers(const Json::Value& object, const std::string& path, FleetSummary& result) {
        if (!json.isObject(object, path, {"total", "median", "p99", "most", "by_count"}) ||
            !json.isArray(object["by_count"], path + ".by_count")) {
            return;
        }
        StrictJson::forEach(
            object["by_count"], path + ".by_count", [&](const Json::Value& each, const std::string& place) {
                if (json.isObject(each, place, {"triggers", "devices"})) {
                    result.devicesByTriggers[number(each, "triggers", place)] += number(each, "devices", place);
                }
            });
        derived(object, "total", path, result.triggers());
        derived(object, "median", path, result.percentile(50));
        derived(object, "p99", path, result.percentile(99));
        derived(object, "most", path, result.percentile(100));
    }

    void readStorms(const Json::Value& object, const std::string& path, FleetSummary& result) {
        if (!json.isObject(object, path, {"devices", "worst"}) || !json.isArray(object["worst"], path + ".worst")) {
            return;
        }
        result.storms = number(object, "devices", path);
        StrictJson::forEach(object["worst"], path + ".worst", [&](const Json::Value& each, const std::string& place) {
            if (json.isObject(each, place, {"device", "triggers", "events"})) {
                result.worst.push_back({json.requiredText(each, "device", place).value_or(""),
                                        number(each, "triggers", place), number(each, "events", place)});
            }
        });
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
        result.count = count(object, path);
        StrictJson::forEach(
            object["transitions"], path + ".transitions",
            [&](const Json::Value& each, const std::string& place) { addTransition(each, place, result); });
        return result;
    }

    void addTransition(const Json::Value& object, const std::string& path, FleetSummary::Config& config) {
        if (json.isObject(object, path, {"path", "from", "to", "event", "devices", "fired"})) {
            const auto text = [&](const char* key) { return json.requiredText(object, key, path).value_or(""); };
            config.transitions.push_back({text("path"), text("from"), text("to"), text("event"), count(object, path)});
        }
    }

    FleetSummary::Count count(const Json::Value& object, const std::string& path) {
        return {number(object, "devices", path), number(object, "fired", path)};
    }

    StrictJson json;
};

std::optional<FleetSummary> read(const DocumentText& document, std::vector<std::string>& errors) {
    if (std::string mistake = StrictJson::mistakeIn(document); !mistake.empty()) {
        errors.push_back(std::move(mistake));
        return std::nullopt;
    }
    std::vector<std::string> problems;
    FleetSummary summary = Reader(document, problems).summary(document.root());
    errors.insert(errors.end(), problems.begin(), problems.end());
    return problems.empty() ? std::optional(std::move(summary)) : std::nullopt;
}

}  // namespace

std::optional<FleetSummary> readFleetSummary(const std::string& file, std::size_t lineNumber, std::string_view line,
                                             std::vector<std::string>& errors) {
    std::vector<std::string> withoutLine;
    auto summary = read(DocumentText(file, std::string(line)), withoutLine);
    if (!summary) {
        // The same again where the messages are to point to, which is too slow for each of many lines.
        read(DocumentText(file, std::string(lineNumber - 1, '\n') + std::string(line)), errors);
    }
    return summary;
}

}  // namespace tool
