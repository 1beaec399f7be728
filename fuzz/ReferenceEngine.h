#pragma once

#include <fmt/format.h>
#include <json/reader.h>
#include <json/value.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "tests/support/TestEvent.h"

// A second engine for rule documents, to compare the library with. It shares nothing with it. It builds nothing either:
// the rules stay JSON, which is read again on every event. Slow, and short enough to be checked by eye against
// docs/rule-documents.md.
namespace reference {

using Names = std::set<std::string>;

struct Event {
    std::string type;
    std::int64_t timeoutId;  // of a Timeout
    support::Attributes attributes;
};

// The machines meet this where they run.
struct World {
    Names eventTypes;                                          // that documents may name
    std::map<std::string, std::function<double()>> functions;  // those too, of the value type "double"
    support::Attributes context;                               // of each machine
    std::set<std::int64_t> timeoutIds;
    bool hasTriggerService;
};

inline const Names kActions = {"Test", "LogZramHeartBeat", "TriggerVelora", "TriggerVeloraCpu"};  // that it can do
inline const Names kOperators = {"==", "!=", ">", "<", ">=", "<="};
inline const Names kTypes = {"string", "integer", "double"};
inline const Names kOperandTypes = {"constant", "function", "envvar"};

// The machines let one see this, one entry each: log lines with the state that the machine was in, triggers, and where
// a machine is after each event.
using Trace = std::vector<std::string>;

inline std::string logEntry(const std::string& state, bool isError, const std::string& message) {
    return fmt::format("[{}] {}: {}", state, isError ? "error" : "info", message);
}

inline std::string triggerEntry(const std::string& name, const std::string& process,
                                const std::vector<std::string>& metadata) {
    return fmt::format("trigger {} of {}: {}", name, process, fmt::join(metadata, ", "));
}

inline std::string machineEntry(std::int64_t config, std::int64_t payload, const std::string& state,
                                const std::set<std::int64_t>& timeoutIds) {
    return fmt::format("{}/{} in {}, timers {}", config, payload, state, fmt::join(timeoutIds, " "));
}

// The trigger service is never sent one.
inline std::string withoutNul(const std::string& text) {
    std::string sent;
    for (const char each : text) {
        sent += each == '\0' ? "\uFFFD" : std::string(1, each);
    }
    return sent;
}

inline bool isOneOf(const Names& names, const Json::Value& json) {
    return json.isString() && names.contains(json.asString());
}

// Returns the id without its fraction, if it fits in so many bits.
inline std::optional<std::int64_t> idOf(Json::Value json, int bits) {
    if (json.type() == Json::realValue) {
        json = std::trunc(json.asDouble());
    }
    return (bits == 64 ? json.isInt64() : json.isInt()) ? std::optional(json.asInt64()) : std::nullopt;
}

inline bool isNumber(const std::string& text, const std::string& type) {
    char* end = nullptr;
    errno = 0;
    if (type == "integer") {
        std::strtoll(text.c_str(), &end, 10);
        return end != text.c_str() && errno == 0;
    }
    const double size = std::fabs(std::strtod(text.c_str(), &end));
    return end != text.c_str() && (errno == 0 || (size > 0 && size <= std::numeric_limits<double>::max()));
}

inline bool compare(const std::string& op, const auto& left, const auto& right) {
    return op == "=="   ? left == right
           : op == "!=" ? left != right
           : op == ">"  ? left > right
           : op == "<"  ? left < right
           : op == ">=" ? left >= right
                        : left <= right;
}

template <typename T>
std::optional<T> find(const support::NamedValues<T>& attributes, const std::string& name) {
    const auto found = std::ranges::find(attributes, name, [](const auto& each) { return each.first; });
    return found == attributes.end() ? std::nullopt : std::optional(found->second);
}

using Scalar = std::variant<std::string, std::int64_t, double>;

// Such filters have rules of their own.
inline bool hasOneConstant(const Json::Value& filter) {
    return (filter["operand1"]["type"] == "constant") != (filter["operand2"]["type"] == "constant");
}

class Engine {
  public:
    explicit Engine(const World& where) : world(where) {}

    // Reads the document, starts its machines and gives each of them the events, but not those after a thousand moves
    // or entries in the trace: there are rules that go round in circles.
    // REQUIRES: the document has fewer than 1000 brackets.
    void run(const std::string& document, const std::vector<Event>& events) {
        constexpr std::size_t kMost = 1000;
        load(document);
        deliver(nullptr);
        while (delivered < events.size() && trace.size() < kMost && fired < kMost) {
            deliver(&events[delivered++]);
        }
    }

    bool hasMachines() const { return !machines.empty(); }  // not if the document is refused

    Trace trace;
    std::size_t delivered = 0;  // how many events have been

  private:
    struct Machine {
        std::int64_t id;
        std::int64_t payloadId;
        Json::Value transitions;
        std::string state;
        std::set<std::int64_t> timeoutIds;
    };

    void load(const std::string& text) {
        Json::CharReaderBuilder builder;
        builder["collectComments"] = false;
        const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
        Json::Value root;
        if (!reader->parse(text.data(), text.data() + text.size(), &root, nullptr) || !root.isObject() ||
            !areAll(root["configs"], &Engine::acceptsConfig)) {
            return;
        }
        for (const Json::Value& config : root["configs"]) {
            const Json::Value& payload = config["payload"];
            machines.push_back({*idOf(config["id"], 64), *idOf(payload["id"], 32), payload["data"]["transitions"],
                                "start", world.timeoutIds});
        }
    }

    // Starts the machines if there is no event.
    void deliver(const Event* event) {
        for (Machine& machine : machines) {
            current = &machine;
            if (event == nullptr || offer(*event)) {
                enter();
            }
            trace.push_back(machineEntry(machine.id, machine.payloadId, machine.state, machine.timeoutIds));
        }
    }

    void complain(const std::string& message) { trace.push_back(logEntry(current->state, true, message)); }

    bool isFunction(const std::string& name, const std::string& type) const {
        return type == "double" && world.functions.contains(name);
    }

    bool areAll(const Json::Value& list, bool (Engine::*accepts)(const Json::Value&) const) const {
        return list.isArray() && std::ranges::all_of(list, [&](const auto& each) { return (this->*accepts)(each); });
    }

    bool acceptsConfig(const Json::Value& config) const {
        return config.isObject() && idOf(config["id"], 64) && config["payload"].isObject() &&
               idOf(config["payload"]["id"], 32) && config["payload"]["data"].isObject() &&
               areAll(config["payload"]["data"]["transitions"], &Engine::acceptsTransition);
    }

    bool acceptsTransition(const Json::Value& json) const {
        return json.isObject() && json["from_state"].isString() && json["to_state"].isString() &&
               isOneOf(world.eventTypes, json["event"]) && areAll(json["filters"], &Engine::acceptsFilter) &&
               areAll(json["actions"], &Engine::acceptsAction);
    }

    bool acceptsFilter(const Json::Value& filter) const {
        return filter.isObject() && filter["operator"].isString() &&
               kOperators.contains(filter["operator"].asCString()) && isOneOf(kTypes, filter["value_type"]) &&
               acceptsOperand(filter["operand1"]) && acceptsOperand(filter["operand2"]) &&
               (!hasOneConstant(filter) || acceptsComparison(filter, filter["value_type"].asString()));
    }

    static bool acceptsOperand(const Json::Value& operand) {
        return operand.isObject() && isOneOf(kOperandTypes, operand["type"]) && operand["value"].isString();
    }

    // There is one constant. Otherwise unknown functions and texts that are no numbers count as 0.
    bool acceptsComparison(const Json::Value& filter, const std::string& type) const {
        const bool isFirst = filter["operand1"]["type"] == "constant";
        const Json::Value& other = filter[isFirst ? "operand2" : "operand1"];
        return (type == "string" || isNumber(filter[isFirst ? "operand1" : "operand2"]["value"].asString(), type)) &&
               (other["type"] != "function" || isFunction(other["value"].asString(), type));
    }

    // None takes parameters.
    bool acceptsAction(const Json::Value& action) const {
        return action.isObject() && isOneOf(kActions, action["name"]) && !action["parameters"].isArray();
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
            ++fired;
            return true;
        }
        return false;
    }

    bool holds(const Json::Value& filter, const Event& event) {
        const std::string type = filter["value_type"].asString();
        const auto left = valueOf(filter["operand1"], type, event, hasOneConstant(filter));
        const auto right = valueOf(filter["operand2"], type, event, hasOneConstant(filter));
        return left && right && compare(filter["operator"].asCString(), *left, *right);
    }

    // Returns nothing for a number that is missing and compared with a constant. Only then the context counts.
    std::optional<Scalar> valueOf(const Json::Value& operand, const std::string& type, const Event& event,
                                  bool isAgainstConstant) {
        const std::string text = operand["value"].asString();
        if (operand["type"] == "constant") {
            return type == "string"    ? Scalar(text)
                   : type == "integer" ? Scalar(std::int64_t{std::strtoll(text.c_str(), nullptr, 10)})
                                       : Scalar(std::strtod(text.c_str(), nullptr));
        }
        if (operand["type"] == "function" && isFunction(text, type)) {
            return world.functions.at(text)();
        }
        const support::Attributes nothing;
        const support::Attributes& own = operand["type"] == "envvar" ? event.attributes : nothing;
        if (type == "string") {
            const std::string found = find(own.string, text).value_or("");
            return isAgainstConstant && found.empty() ? find(world.context.string, text).value_or("") : found;
        }
        const auto number = [&](const auto& values, const auto& context) -> std::optional<Scalar> {
            const auto found = find(values, text);
            return found || !isAgainstConstant ? found.value_or(0) : find(context, text);
        };
        return type == "integer" ? number(own.int64, world.context.int64) : number(own.real, world.context.real);
    }

    void act(const std::string& action, const Event& event) {
        if (action == "LogZramHeartBeat") {
            const auto figure = [&](const char* name) { return find(event.attributes.uint64, name).value_or(0); };
            const std::string message =
                fmt::format("Received VIG zram heart beat. memUsedMaxBytes: {}, numCompressedDataBytes: {}",
                            figure("memUsedMaxBytes"), figure("numCompressedDataBytes"));
            trace.push_back(logEntry(current->state, false, message));
        } else if (action == "TriggerVelora" || action == "TriggerVeloraCpu") {
            trigger(action == "TriggerVelora", event);
        } else if (action != "Test") {
            std::abort();  // it is listed as known
        }
    }

    void trigger(bool isMemory, const Event& event) {
        const auto& [uint64, int64, real, boolean, string] = event.attributes;
        const std::string process = find(string, "processName").value_or("");
        if (process.empty() || !world.hasTriggerService) {
            complain(process.empty() ? "Missing required attribute processName in event."
                                     : "Error while getting the service proxy: -2 , triggerService is null!");
            return;
        }
        std::vector<std::string> metadata;
        const auto utilization = find(real, "cpuAvgUtilization");
        const auto rss = find(int64, "vmRssKB");
        const auto swap = find(int64, "vmSwapKB");
        if (isMemory && rss && swap) {
            const auto sum = static_cast<std::uint64_t>(*rss) + static_cast<std::uint64_t>(*swap);
            metadata = {fmt::format("threshold_current_value:{}", static_cast<std::int64_t>(sum)),
                        "threshold_units:RSS_anon_plus_swap_KB"};
        } else if (!isMemory && utilization) {
            metadata = {fmt::format("threshold_current_value:{}", *utilization), "threshold_units:CPU_credits"};
        } else {
            complain(isMemory ? fmt::format("Missing required attributes {} in event.", rss ? "vmSwapKB" : "vmRssKB")
                              : "Missing required attribute cpuAvgUtilization in event.");
            complain("synthesizeMetadata from event failed!");
            return;
        }
        const auto describe = [&](const auto& attributes) {
            for (const auto& [name, value] : attributes) {
                metadata.push_back(withoutNul(fmt::format("{}:{}", name, *find(attributes, name))));
            }
        };
        describe(uint64), describe(int64), describe(real), describe(boolean), describe(string);
        const std::string prefix = isMemory ? "vig:memory_heartbeat_over_budget:" : "vig:cpu_over_budget:";
        trace.push_back(triggerEntry(prefix + withoutNul(process), withoutNul(process), metadata));
    }

    const World& world;
    std::vector<Machine> machines;
    Machine* current = nullptr;  // while it runs
    std::size_t fired = 0;
};

}  // namespace reference
