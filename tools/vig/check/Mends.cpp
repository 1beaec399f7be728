#include "tools/vig/check/Mends.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "rulesengine/State.h"
#include "tools/vig/catalogue/ActionNeeds.h"
#include "vig/EventTypeNames.h"
#include "vig/functions/DoubleFunctions.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;
using RulesEngine::State;

namespace {

Json::Value filterOf(const char* op, const char* valueType, const char* leftType, const char* left, const char* right) {
    Json::Value filter;
    filter["operator"] = op;
    filter["value_type"] = valueType;
    filter["operand1"]["type"] = leftType;
    filter["operand1"]["value"] = left;
    filter["operand2"]["type"] = "constant";
    filter["operand2"]["value"] = right;
    return filter;
}

// A draw below the middle of its range is as often true as not.
Json::Value guardFor(Mend mend) {
    if (mend == Mend::Never || mend == Mend::Always) {
        return filterOf(mend == Mend::Never ? "!=" : "==", "integer", "constant", "0", "0");
    }
    const auto* const draw = std::ranges::find_if(kDoubleFunctions, &DoubleFunction::isRandom);
    return filterOf("<", "double", "function", draw->name, fmt::format("{}", (draw->least + draw->limit) / 2).c_str());
}

// Not each event has what each action needs to ask for a collection.
Json::Value actionFor(Mend mend) {
    std::vector<std::string> triggers;
    for (const KnownAction& each : kActions) {
        if (each.startsCollection) {
            triggers.emplace_back(each.name);
        }
    }
    Json::Value action;
    action["name"] = mend == Mend::Never ? "Test" : mend == Mend::Maybe ? triggers.front() : triggers.back();
    return action;
}

class Mender {
  public:
    Mender(const std::set<std::string>& faults, Mend mend, MendedConfig& config)
        : faults(faults), mend(mend), config(config) {}

    bool run(const std::string& path) {
        Json::Value& json = config.json;
        if (!json.isObject() || !json["payload"].isObject() || !json["payload"]["data"].isObject() ||
            !json["payload"]["data"]["transitions"].isArray()) {
            return false;
        }
        for (auto [object, place] : {std::pair(&json, path), std::pair(&json["payload"], path + ".payload")}) {
            if (faults.contains(place + ".id")) {
                (*object)["id"] = 1;
            }
        }
        Json::Value& transitions = json["payload"]["data"]["transitions"];
        elsewhere = unusedState(transitions);
        unusedEvent = unusedEventOf(transitions);
        forEach(transitions, path + ".payload.data.transitions", [&](Json::Value& each, const std::string& place) {
            if (isAtFault(place)) {
                mendTransition(each, place);
            }
        });
        return true;
    }

  private:
    static void forEach(Json::Value& list, const std::string& path, const auto& visit) {
        for (Json::ArrayIndex index = 0; index < list.size(); ++index) {
            visit(list[index], path + "[" + std::to_string(index) + "]");
        }
    }

    static std::string unusedState(const Json::Value& transitions) {
        std::string name = "?";
        const auto hasName = [&](const Json::Value& each) {
            return each.isObject() && (each["from_state"] == name || each["to_state"] == name);
        };
        while (std::any_of(transitions.begin(), transitions.end(), hasName)) {
            name += "?";
        }
        return name;
    }

    // No other transition comes before one on that event.
    static std::string unusedEventOf(const Json::Value& transitions) {
        std::string unused = "Test";
        for (const auto& [type, name] : kEventTypeNames.pairs) {
            const auto hasName = [text = Json::Value(std::string(name))](const Json::Value& each) {
                return each.isObject() && each["event"] == text;
            };
            if (std::none_of(transitions.begin(), transitions.end(), hasName) && type != EventType::EnteringState &&
                type != EventType::Timeout) {
                unused = name;
            }
        }
        return unused;
    }

    // Tells whether the value or something in it is at fault.
    bool isAtFault(const std::string& path) const {
        const auto next = faults.lower_bound(path);
        return next != faults.end() && next->starts_with(path);
    }

    void mendTransition(Json::Value& transition, const std::string& path) {
        const bool isUnknown = faults.contains(path);
        if (isUnknown) {
            transition = Json::objectValue;
            config.replaced.insert(path);
        }
        const auto isLost = [&](const char* key) { return isUnknown || faults.contains(path + "." + key); };
        const auto replace = [&](const char* key, Json::Value value) {
            transition[key] = std::move(value);
            config.replaced.insert(path + "." + key);
        };
        bool isSure = true;  // what fires it is known
        for (const auto& [key, state] : {std::pair("from_state", State::START_STATE), {"to_state", State::END_STATE}}) {
            if (isLost(key)) {
                replace(key, std::string(state));
                config.areStatesKnown = isSure = false;
            }
        }
        if (isLost("filters")) {
            replace("filters", Json::arrayValue);
            isSure = false;
        }
        if (isLost("actions")) {
            replace("actions", Json::arrayValue);
            if (mend != Mend::Never) {
                transition["actions"].append(actionFor(mend));
            }
        }
        const bool isEventLost = isLost("event");
        if (isEventLost) {
            // In a state that is left as soon as it is entered no other event comes.
            replace("event", mend == Mend::Always || mend == Mend::MaybeEntering ? "EnteringState" : unusedEvent);
            config.eventless.insert(path);
            isSure = false;
        }
        bool areFiltersSure = true;
        mendElements(transition["filters"], path + ".filters", guardFor(mend), areFiltersSure);
        bool areActionsSure = true;
        mendElements(transition["actions"], path + ".actions", actionFor(mend), areActionsSure);
        if (isEventLost && mend != Mend::Never) {
            transition["filters"] = Json::arrayValue;  // no event of another type is known to fail them
        }
        if (!isSure) {
            config.replaced.insert(path + ".filters[" + std::to_string(transition["filters"].size()) + "]");
            transition["filters"].append(guardFor(mend));
        }
        if (mend == Mend::Always && !(isSure && areFiltersSure)) {
            transition["to_state"] = elsewhere;
        }
    }

    void mendElements(Json::Value& list, const std::string& path, const Json::Value& standIn, bool& areSure) {
        forEach(list, path, [&](Json::Value& each, const std::string& place) {
            if (isAtFault(place)) {
                each = standIn;
                config.replaced.insert(place);
                areSure = false;
            }
        });
    }

    const std::set<std::string>& faults;
    const Mend mend;
    MendedConfig& config;
    std::string elsewhere = {};    // a state that the machine does not have
    std::string unusedEvent = {};  // on which it has no transition
};

}  // namespace

std::optional<MendedConfig> mended(const Json::Value& config, const std::string& path,
                                   const std::set<std::string>& faults, Mend mend) {
    MendedConfig result{config};
    return Mender(faults, mend, result).run(path) ? std::optional(std::move(result)) : std::nullopt;
}

bool isInside(const std::set<std::string>& paths, const std::string& path) {
    for (std::size_t end = 0; end != std::string::npos;) {
        end = path.find_first_of(".[", end + 1);
        if (paths.contains(path.substr(0, end))) {
            return true;
        }
    }
    return false;
}

}  // namespace Brenta::OS::VIG::Tool
