#include "fuzz/NaiveEngine.h"

#include <fmt/format.h>
#include <json/reader.h>
#include <json/value.h>
#include <json/writer.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <variant>

namespace naive {

namespace {

using Texts = std::set<std::string>;

const Texts kEvents = {"EnteringState",
                       "Timeout",
                       "Test",
                       "TelemetryEventBegin",
                       "ProcessMemoryHeartBeat",
                       "SystemMemoryHeartBeat",
                       "ZramHeartBeat",
                       "ProcessCpuHeartBeat",
                       "ForegroundAppsStats",
                       "TelemetryEventEnd"};
const Texts kActions = {"Test", "LogZramHeartBeat", "TriggerVelora", "TriggerVeloraCpu"};
const Texts kOperators = {"==", "!=", ">", "<", ">=", "<="};
const Texts kTypes = {"string", "integer", "double"};
const Texts kOperandTypes = {"constant", "function", "envvar"};

// Log lines take texts that end at a NUL.
std::string upToNul(const std::string& text) {
    return text.c_str();
}

// The trigger service is never sent one.
std::string withoutNul(const std::string& text) {
    std::string sent;
    for (const char each : text) {
        sent += each == '\0' ? "\uFFFD" : std::string(1, each);
    }
    return sent;
}

int depthOf(const Json::Value& json) {
    int deepest = 0;
    for (const Json::Value& each : json) {
        deepest = std::max(deepest, depthOf(each));
    }
    return json.isArray() || json.isObject() ? deepest + 1 : 0;
}

// As log lines show JSON: indented, if it is not nested absurdly deep.
std::string styled(const Json::Value& json) {
    if (depthOf(json) <= 32) {
        return json.toStyledString();
    }
    Json::StreamWriterBuilder flat;
    flat["indentation"] = "";
    return Json::writeString(flat, json) + "\n";
}

bool isText(const Json::Value& json) {
    return !json.isArray() && !json.isObject();
}

// The id without its fraction, if it fits in so many bits.
std::optional<std::int64_t> idOf(Json::Value json, int bits) {
    if (json.type() == Json::realValue) {
        json = std::trunc(json.asDouble());
    }
    return (bits == 64 ? json.isInt64() : json.isInt()) ? std::optional(json.asInt64()) : std::nullopt;
}

bool isFunction(const std::string& name, const std::string& type) {
    return name == "PseudoRandomDouble" && type == "double";
}

bool isNumber(const std::string& text, const std::string& type) {
    char* end = nullptr;
    errno = 0;
    if (type == "integer") {
        std::strtoll(text.c_str(), &end, 10);
        return end != text.c_str() && errno == 0;
    }
    const double size = std::fabs(std::strtod(text.c_str(), &end));
    return end != text.c_str() && (errno == 0 || (size > 0 && size <= std::numeric_limits<double>::max()));
}

bool isInt32(const std::string& text) {
    const long long number = std::strtoll(text.c_str(), nullptr, 10);
    return isNumber(text, "integer") && number >= INT32_MIN && number <= INT32_MAX;
}

bool compare(const std::string& op, const auto& left, const auto& right) {
    return op == "=="   ? left == right
           : op == "!=" ? left != right
           : op == ">"  ? left > right
           : op == "<"  ? left < right
           : op == ">=" ? left >= right
                        : left <= right;
}

template <typename T>
std::optional<T> find(const Named<T>& attributes, const std::string& name) {
    const auto found = std::ranges::find(attributes, name, [](const auto& each) { return each.first; });
    return found == attributes.end() ? std::nullopt : std::optional(found->second);
}

// A number as one side of a filter.
template <typename T>
std::optional<std::variant<std::string, std::int64_t, double>> numberOf(const Named<T>& event, const Named<T>& context,
                                                                        const std::string& name,
                                                                        bool isAgainstConstant) {
    const auto own = find(event, name);
    return own || !isAgainstConstant ? own.value_or(0) : find(context, name);
}

// Such filters have rules of their own.
bool hasOneConstant(const Json::Value& filter) {
    return (filter["operand1"]["type"] == "constant") != (filter["operand2"]["type"] == "constant");
}

void describe(const auto& attributes, std::vector<std::string>& metadata) {
    for (const auto& [name, value] : attributes) {
        metadata.push_back(withoutNul(fmt::format("{}:{}", name, *find(attributes, name))));
    }
}

class Engine {
  public:
    explicit Engine(const World& where) : world(where), random(where.seed) {}

    void load(const std::string& text) {
        Json::CharReaderBuilder builder;
        builder["collectComments"] = false;
        const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
        Json::Value root;
        std::string report;
        if (!reader->parse(text.data(), text.data() + text.size(), &root, &report)) {
            complain("Wrong format, cannot parson json: " + report + "\n" + upToNul(text));
            return;
        }
        if (!root.isObject() || !root["configs"].isArray()) {
            return;
        }
        std::vector<Machine> accepted;
        for (const Json::Value& config : root["configs"]) {
            if (!acceptsConfig(config)) {
                return;
            }
            const Json::Value& payload = config["payload"];
            accepted.push_back({*idOf(config["id"], 64), *idOf(payload["id"], 32), payload["data"]["transitions"],
                                "start", world.timeoutIds});
        }
        machines = accepted;
        outcome.hasMachines = !machines.empty();
    }

    // Without an event it starts the machines.
    void deliver(const Event* event) {
        for (Machine& machine : machines) {
            current = &machine;
            if (event == nullptr || offer(*event)) {
                enter();
            }
            outcome.trace.push_back(machineEntry(machine.id, machine.payloadId, machine.state, machine.timeoutIds));
        }
    }

    Outcome outcome;

  private:
    using Scalar = std::variant<std::string, std::int64_t, double>;

    struct Machine {
        std::int64_t id;
        std::int64_t payloadId;
        Json::Value transitions;
        std::string state;
        std::set<std::int64_t> timeoutIds;
    };

    bool complain(const std::string& message) {
        outcome.trace.push_back(logEntry(current == nullptr ? "" : current->state, true, message));
        return false;
    }

    bool acceptsConfig(const Json::Value& config) {
        if (!config.isObject() || !idOf(config["id"], 64) || !config["payload"].isObject()) {
            return complain("Invalid VIG Config JSON: " + styled(config) + ".");
        }
        const Json::Value& payload = config["payload"];
        if (!idOf(payload["id"], 32) || !payload["data"].isObject()) {
            return complain("Invalid VIG Config Payload JSON: " + styled(payload) + ".");
        }
        return acceptsMachine(payload["data"]) || complain("Invalid FSM JSON: " + styled(payload["data"]) + ".");
    }

    bool acceptsMachine(const Json::Value& machine) {
        const Json::Value& list = machine["transitions"];
        return list.isArray() &&
               std::all_of(list.begin(), list.end(), [&](const auto& each) { return acceptsTransition(each); });
    }

    bool acceptsTransition(const Json::Value& json) {
        if (!json.isObject() || !json["from_state"].isString() || !json["to_state"].isString() ||
            !json["event"].isString() || !json["filters"].isArray() || !json["actions"].isArray()) {
            return false;
        }
        const Json::Value& filters = json["filters"];
        const Json::Value& actions = json["actions"];
        return std::all_of(filters.begin(), filters.end(), [&](const auto& each) { return acceptsFilter(each); }) &&
               std::all_of(actions.begin(), actions.end(), [&](const auto& each) { return acceptsAction(each); }) &&
               (kEvents.contains(json["event"].asString()) || complain("FSM Event not found!"));
    }

    bool acceptsFilter(const Json::Value& filter) {
        if (!filter.isObject() || !filter["operator"].isString()) {
            return complain("Invalid filter JSON: " + styled(filter) + ".");
        }
        const std::string op = upToNul(filter["operator"].asString());
        if (!kOperators.contains(op)) {
            return complain("Invalid operator string: " + op + ".");
        }
        const Json::Value& typeJson = filter["value_type"];
        const std::string type = isText(typeJson) ? typeJson.asString() : styled(typeJson);
        if (!kTypes.contains(type)) {
            return complain("Invalid operand value type: " + upToNul(type) + ".");
        }
        for (const std::string key : {"operand1", "operand2"}) {
            if (!acceptsOperand(filter[key])) {
                return complain("Invalid " + key + " JSON: " + styled(filter[key]) + ".");
            }
        }
        return acceptsComparison(filter, type);
    }

    bool acceptsOperand(const Json::Value& operand) {
        if (!operand.isObject()) {
            return complain("Filter operand must be an object.");
        }
        if (!operand["type"].isString()) {
            return complain("Filter operand type is missing or invalid.");
        }
        if (!kOperandTypes.contains(operand["type"].asString())) {
            return complain("Unknown filter operand type: " + upToNul(operand["type"].asString()));
        }
        return operand["value"].isString() || complain("Filter operand value is missing or invalid.");
    }

    // Unknown functions and texts that are no numbers count as 0, but not where there is one constant.
    bool acceptsComparison(const Json::Value& filter, const std::string& type) {
        for (const std::string key : {"operand1", "operand2"}) {
            const std::string name = filter[key]["value"].asString();
            if (filter[key]["type"] == "function" && !isFunction(name, type)) {
                if (hasOneConstant(filter)) {
                    return complain("Failed to find function: " + upToNul(name));
                }
                complain("Invalid pure function type: " + upToNul(name));
            }
        }
        const std::string constant =
            filter[filter["operand1"]["type"] == "constant" ? "operand1" : "operand2"]["value"].asString();
        return !hasOneConstant(filter) || type == "string" || isNumber(constant, type) ||
               complain("Invalid constant of value type " + type + ": " + upToNul(constant) + ".");
    }

    bool acceptsAction(const Json::Value& action) {
        if (!action.isObject() || !action["name"].isString()) {
            return complain("Invalid action JSON: " + styled(action) + ".");
        }
        std::string key = action["name"].asString();
        if (action["parameters"].isArray()) {
            std::vector<std::string> types;
            for (const Json::Value& each : action["parameters"]) {
                if (!acceptsParameter(each)) {
                    return false;
                }
                types.push_back(each["type"].asString());
            }
            key += fmt::format("({})", fmt::join(types, ","));
        }
        return kActions.contains(key) || complain("FSM Action (" + upToNul(key) + ") not found!");
    }

    bool acceptsParameter(const Json::Value& parameter) {
        if (!parameter.isObject() || !isText(parameter["type"])) {
            return complain("Invalid action parameter type: " + styled(parameter) + ".");
        }
        const std::string type = parameter["type"].asString();
        if (!kTypes.contains(type)) {
            return complain("Invalid action parameter type: " + upToNul(type) + ".");
        }
        if (!isText(parameter["value"])) {
            return complain("Invalid action parameter type: " + styled(parameter) + ".");
        }
        const std::string value = parameter["value"].asString();
        return type == "string" || (type == "integer" ? isInt32(value) : isNumber(value, type)) ||
               complain("Invalid value for an action parameter of type " + type + ": " + upToNul(value) + ".");
    }

    void enter() {
        const Event entering = {"EnteringState", 0, {}};
        for (int moves = 0; moves < 1000 && offer(entering); ++moves) {
        }
    }

    bool offer(const Event& event) {
        for (const Json::Value& transition : current->transitions) {
            const Json::Value& filters = transition["filters"];
            if (transition["from_state"].asString() != current->state || transition["event"].asString() != event.type ||
                !std::all_of(filters.begin(), filters.end(),
                             [&](const auto& filter) { return holds(filter, event); })) {
                continue;
            }
            for (const Json::Value& action : transition["actions"]) {
                act(action["name"].asString(), event);
            }
            if (event.type == "Timeout") {
                current->timeoutIds.erase(event.timeoutId);
            }
            current->state = transition["to_state"].asString();
            ++outcome.fired;
            return true;
        }
        return false;
    }

    bool holds(const Json::Value& filter, const Event& event) {
        const std::string type = filter["value_type"].asString();
        const auto left = valueOf(filter["operand1"], type, event, hasOneConstant(filter));
        const auto right = valueOf(filter["operand2"], type, event, hasOneConstant(filter));
        return left && right && compare(upToNul(filter["operator"].asString()), *left, *right);
    }

    // Empty for a number that is missing and compared with a constant. Only then the context counts.
    std::optional<Scalar> valueOf(const Json::Value& operand, const std::string& type, const Event& event,
                                  bool isAgainstConstant) {
        const std::string text = operand["value"].asString();
        if (operand["type"] == "constant") {
            return type == "string"    ? Scalar(text)
                   : type == "integer" ? Scalar(std::int64_t{std::strtoll(text.c_str(), nullptr, 10)})
                                       : Scalar(std::strtod(text.c_str(), nullptr));
        }
        if (operand["type"] == "function" && isFunction(text, type)) {
            return std::uniform_real_distribution<double>(0, 1)(random);
        }
        const Attributes nothing;
        const Attributes& own = operand["type"] == "envvar" ? event.attributes : nothing;
        if (type == "string") {
            const std::string found = find(own.string, text).value_or("");
            return isAgainstConstant && found.empty() ? find(world.context.string, text).value_or("") : found;
        }
        return type == "integer" ? numberOf(own.int64, world.context.int64, text, isAgainstConstant)
                                 : numberOf(own.real, world.context.real, text, isAgainstConstant);
    }

    void act(const std::string& action, const Event& event) {
        if (action == "LogZramHeartBeat") {
            const auto figure = [&](const char* name) { return find(event.attributes.uint64, name).value_or(0); };
            const std::string message =
                fmt::format("Received VIG zram heart beat. memUsedMaxBytes: {}, numCompressedDataBytes: {}",
                            figure("memUsedMaxBytes"), figure("numCompressedDataBytes"));
            outcome.trace.push_back(logEntry(current->state, false, message));
        } else if (action != "Test") {
            trigger(action == "TriggerVelora", event);
        }
    }

    void trigger(bool isMemory, const Event& event) {
        const std::string process = find(event.attributes.string, "processName").value_or("");
        if (process.empty()) {
            complain("Missing required attribute processName in event.");
            return;
        }
        if (!world.hasTriggerService) {
            complain("Error while getting the service proxy: -2 , triggerService is null!");
            return;
        }
        std::vector<std::string> metadata = measured(isMemory, event);
        if (metadata.empty()) {
            complain("synthesizeMetadata from event failed!");
            return;
        }
        describe(event.attributes.uint64, metadata);
        describe(event.attributes.int64, metadata);
        describe(event.attributes.real, metadata);
        describe(event.attributes.boolean, metadata);
        describe(event.attributes.string, metadata);
        const std::string prefix = isMemory ? "vig:memory_heartbeat_over_budget:" : "vig:cpu_over_budget:";
        outcome.trace.push_back(triggerEntry(prefix + withoutNul(process), withoutNul(process), metadata));
    }

    std::vector<std::string> measured(bool isMemory, const Event& event) {
        const auto utilization = find(event.attributes.real, "cpuAvgUtilization");
        const auto rss = find(event.attributes.int64, "vmRssKB");
        const auto swap = find(event.attributes.int64, "vmSwapKB");
        if (!isMemory && utilization) {
            return {fmt::format("threshold_current_value:{}", *utilization), "threshold_units:CPU_credits"};
        }
        if (isMemory && rss && swap) {
            const auto sum = static_cast<std::uint64_t>(*rss) + static_cast<std::uint64_t>(*swap);
            return {fmt::format("threshold_current_value:{}", static_cast<std::int64_t>(sum)),
                    "threshold_units:RSS_anon_plus_swap_KB"};
        }
        complain(isMemory ? fmt::format("Missing required attributes {} in event.", rss ? "vmSwapKB" : "vmRssKB")
                          : "Missing required attribute cpuAvgUtilization in event.");
        return {};
    }

    const World& world;
    std::mt19937 random;
    std::vector<Machine> machines;
    Machine* current = nullptr;  // while it runs
};

}  // namespace

std::string logEntry(const std::string& state, bool isError, const std::string& message) {
    return fmt::format("[{}] {}: {}", state, isError ? "error" : "info", message);
}

std::string triggerEntry(const std::string& name, const std::string& process,
                         const std::vector<std::string>& metadata) {
    return fmt::format("trigger {} of {}: {}", name, process, fmt::join(metadata, ", "));
}

std::string machineEntry(std::int64_t config, std::int64_t payload, const std::string& state,
                         const std::set<std::int64_t>& timeoutIds) {
    return fmt::format("{}/{} in {}, timers {}", config, payload, state, fmt::join(timeoutIds, " "));
}

Outcome run(const World& world, const std::string& document, const std::vector<Event>& events) {
    constexpr std::size_t kMost = 1000;  // of rules that go round in circles
    Engine engine(world);
    engine.load(document);
    engine.deliver(nullptr);
    Outcome& outcome = engine.outcome;
    while (outcome.delivered < events.size() && outcome.trace.size() < kMost && outcome.fired < kMost) {
        engine.deliver(&events[outcome.delivered++]);
    }
    return outcome;
}

}  // namespace naive
