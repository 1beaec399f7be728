// What two mutants have in common is one mutant. A transition whose from_state is misspelt never fires, just as one
// that is lost; and of integers, the next one above a threshold makes of > what >= makes of it.

#include "tools/vig/test/Mutants.h"

#include <fmt/format.h>
#include <json/writer.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <limits>
#include <set>
#include <string_view>

#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/Text.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

constexpr int kMostDecimals = 17;  // no double tells more of them apart

FilterOperator neighbourOf(FilterOperator op) {
    switch (op) {
        case FilterOperator::Equal:
            return FilterOperator::NotEqual;
        case FilterOperator::NotEqual:
            return FilterOperator::Equal;
        case FilterOperator::Greater:
            return FilterOperator::GreaterEqual;
        case FilterOperator::Less:
            return FilterOperator::LessEqual;
        case FilterOperator::GreaterEqual:
            return FilterOperator::Greater;
        case FilterOperator::LessEqual:
            break;
    }
    return FilterOperator::Less;
}

EventType neighbourOf(EventType event) {
    const auto* const own = std::ranges::find(kEventNames, nameOf(event));
    const auto* const other = own + 1 == kEventNames.end() ? own - 1 : own + 1;
    return kEventTypeNames.reverseLookup(*other).value_or(event);
}

// Returns the step by which the neighbour of the operator moves a threshold between integers, or 0.
std::int64_t stepOfNeighbour(FilterOperator op) {
    switch (op) {
        case FilterOperator::Greater:
        case FilterOperator::LessEqual:
            return -1;
        case FilterOperator::Less:
        case FilterOperator::GreaterEqual:
            return 1;
        case FilterOperator::Equal:
        case FilterOperator::NotEqual:
            break;
    }
    return 0;
}

std::vector<std::string> integersNear(const std::string& text, std::int64_t leftOut) {
    const auto value = readNearest<std::int64_t>(text);
    const std::int64_t tenth = value / 10;
    std::vector<std::string> all;
    for (const std::int64_t step : {std::int64_t{-1}, std::int64_t{1}, -tenth, tenth}) {
        std::int64_t sum = 0;
        const std::string near = __builtin_add_overflow(value, step, &sum) ? text : std::to_string(sum);
        if (step != 0 && step != leftOut && near != text && std::ranges::find(all, near) == all.end()) {
            all.push_back(near);
        }
    }
    return all;
}

// A step is one of the last digit that is written.
std::vector<std::string> doublesNear(const std::string& text) {
    const auto value = readNearest<double>(text);
    const std::size_t point = text.find('.');
    const std::size_t end =
        std::min(text.find_first_not_of("0123456789", point == std::string::npos ? point : point + 1), text.size());
    const int decimals =
        point == std::string::npos ? 0 : static_cast<int>(std::min<std::size_t>(end - point - 1, kMostDecimals));
    const double step = std::pow(10, -decimals);
    std::vector<std::string> all;
    for (const auto& [near, digits] :
         {std::pair(value - step, decimals), std::pair(value + step, decimals),
          std::pair(value - value / 10, decimals + 1), std::pair(value + value / 10, decimals + 1)}) {
        std::string written = std::isfinite(near) ? fmt::format("{:.{}f}", near, digits) : text;
        if (written.ends_with(".0")) {
            written.resize(written.size() - 2);
        }
        const double read = readNearest<double>(written);
        const auto isSame = [&](const std::string& each) { return readNearest<double>(each) == read; };
        if (read != value && std::isfinite(read) && std::ranges::none_of(all, isSame)) {
            all.push_back(std::move(written));
        }
    }
    return all;
}

// A letter is lost, or is a small or a capital one.
std::vector<std::string> textsNear(const std::string& text) {
    std::vector<std::string> all;
    if (text.empty()) {
        return all;
    }
    all.push_back(text.substr(0, characterStart(text, text.size() - 1)));
    const auto letter = std::ranges::find_if(
        text, [](char each) { return (each >= 'a' && each <= 'z') || (each >= 'A' && each <= 'Z'); });
    if (letter != text.end()) {
        all.push_back(text);
        all.back()[static_cast<std::size_t>(letter - text.begin())] ^= 'a' ^ 'A';
    }
    return all;
}

std::string wayOf(const TransitionModel& transition) {
    return fmt::format("{} -> {} on {}", shownName(transition.from), shownName(transition.to),
                       nameOf(transition.event));
}

// It makes the mutants of one machine.
class MutantMaker {
  public:
    MutantMaker(const DocumentModel& document, std::size_t machine, const std::function<bool(const Mutant&)>& visit)
        : document(document), machine(machine), config(document.configs[machine]), visit(visit) {
        for (const std::string name : {"start", "end"}) {
            addState(name);
        }
        for (const TransitionModel& each : config.transitions) {
            addState(each.from);
            addState(each.to);
        }
    }

    // Returns false if no more are wanted.
    bool make() {
        for (std::size_t index = 0; index < config.transitions.size() && isWanted; ++index) {
            const TransitionModel& transition = config.transitions[index];
            add(transition.place, fmt::format("the transition {} was lost", wayOf(transition)),
                {{index, std::nullopt}});
            swap(index);
            changeStateAndEvent(index);
            for (std::size_t filter = 0; filter < transition.filters.size(); ++filter) {
                changeFilter(index, filter);
            }
            for (std::size_t action = 0; action < transition.actions.size(); ++action) {
                const ActionModel& model = transition.actions[action];
                TransitionModel changed = transition;
                changed.actions.erase(changed.actions.begin() + static_cast<std::ptrdiff_t>(action));
                add(model.place, fmt::format("the action {} was lost", shownName(model.name)),
                    {{index, std::move(changed)}});
            }
        }
        return isWanted;
    }

  private:
    void addState(const std::string& name) {
        if (known.insert(name).second) {
            states.push_back(name);
        }
    }

    void add(const Place& place, std::string what, std::vector<Mutant::Change> changes,
             std::shared_ptr<const Json::Value> filter = {}) {
        isWanted = isWanted && visit({&config, machine, place, std::move(what), std::move(changes), std::move(filter)});
    }

    Place placeOf(const TransitionModel& transition, const std::string& key) const {
        return document.text.placeOf((*transition.json)[key], transition.place.path + "." + key);
    }

    void changeStateAndEvent(std::size_t index) {
        const TransitionModel& transition = config.transitions[index];
        const auto lead = [&](const std::string& to) {
            TransitionModel changed = transition;
            changed.to = to;
            add(placeOf(transition, "to_state"),
                fmt::format("to_state {} became {}", shownQuoted(transition.to), shownQuoted(to)),
                {{index, std::move(changed)}});
        };
        // The machine stays, or goes somewhere where it stayed.
        const auto next = static_cast<std::size_t>(std::ranges::find(states, transition.to) - states.begin()) + 1;
        lead(transition.from != transition.to ? transition.from : states[next % states.size()]);
        std::string misspelt = transition.to + "_";
        while (known.contains(misspelt)) {
            misspelt += "_";
        }
        lead(misspelt);
        TransitionModel changed = transition;
        const EventType neighbour = neighbourOf(transition.event);
        changed.event = neighbour;
        add(placeOf(transition, "event"),
            fmt::format("the event {} became {}", nameOf(transition.event), nameOf(neighbour)),
            {{index, std::move(changed)}});
    }

    // It changes places with the next one of its state that listens for the same event.
    void swap(std::size_t index) {
        const TransitionModel& transition = config.transitions[index];
        const auto next = std::find_if(config.transitions.begin() + static_cast<std::ptrdiff_t>(index) + 1,
                                       config.transitions.end(), [&](const TransitionModel& each) {
                                           return each.from == transition.from && each.event == transition.event;
                                       });
        if (next != config.transitions.end()) {
            add(transition.place,
                fmt::format("the transitions {} and {} were swapped", wayOf(transition), wayOf(*next)),
                {{index, *next}, {static_cast<std::size_t>(next - config.transitions.begin()), transition}});
        }
    }

    void changeFilter(std::size_t index, std::size_t filter) {
        const TransitionModel& transition = config.transitions[index];
        const FilterModel& model = transition.filters[filter];
        TransitionModel without = transition;
        without.filters.erase(without.filters.begin() + static_cast<std::ptrdiff_t>(filter));
        add(model.place, fmt::format("the filter `{}` was lost", shownCondition(model)), {{index, std::move(without)}});

        const auto become = [&](const auto& change) {
            TransitionModel changed = transition;
            FilterModel& other = changed.filters[filter];
            const auto json = std::make_shared<Json::Value>(*model.json);
            change(other, *json);
            other.json = json.get();
            std::string what = fmt::format("`{}` became `{}`", shownCondition(model), shownCondition(other));
            add(model.place, std::move(what), {{index, std::move(changed)}}, json);
        };
        const FilterOperator op = neighbourOf(model.op);
        become([&](FilterModel& other, Json::Value& json) {
            other.op = op;
            json["operator"] = kFilterOperatorTable.lookup(op);
        });
        for (const bool isLeft : {true, false}) {
            const OperandModel& operand = isLeft ? model.operand1 : model.operand2;
            for (const std::string& text :
                 isConstant(operand) ? constantsNear(model, isLeft) : std::vector<std::string>()) {
                become([&](FilterModel& other, Json::Value& json) {
                    (isLeft ? other.operand1 : other.operand2).operand.value = text;
                    json[isLeft ? "operand1" : "operand2"]["value"] = text;
                });
            }
        }
    }

    static std::vector<std::string> constantsNear(const FilterModel& filter, bool isLeft) {
        const std::string& text = (isLeft ? filter.operand1 : filter.operand2).operand.value;
        switch (filter.valueType) {
            case FilterValueType::String:
                return textsNear(text);
            case FilterValueType::Integer:
                return integersNear(text, stepOfNeighbour(isLeft ? mirrored(filter.op) : filter.op));
            case FilterValueType::Double:
                break;
        }
        return doublesNear(text);
    }

    const DocumentModel& document;
    const std::size_t machine;
    const ConfigModel& config;
    const std::function<bool(const Mutant&)>& visit;
    std::vector<std::string> states;  // in the order in which they are named
    std::set<std::string> known;
    bool isWanted = true;
};

Json::Value jsonOf(const TransitionModel& transition) {
    Json::Value json = *transition.json;
    json["to_state"] = transition.to;
    json["event"] = std::string(nameOf(transition.event));
    json["filters"] = Json::Value(Json::arrayValue);
    for (const FilterModel& each : transition.filters) {
        json["filters"].append(*each.json);
    }
    // No action of the library has parameters.
    json["actions"] = Json::Value(Json::arrayValue);
    for (const ActionModel& each : transition.actions) {
        json["actions"].append(Json::Value(Json::objectValue))["name"] = each.name;
    }
    return json;
}

}  // namespace

void forEachMutant(const DocumentModel& document, const std::function<bool(const Mutant&)>& visit) {
    for (std::size_t machine = 0; machine < document.configs.size(); ++machine) {
        if (!MutantMaker(document, machine, visit).make()) {
            return;
        }
    }
}

const Mutant::Change* changeOf(const Mutant& mutant, std::size_t transition) {
    const auto found = std::ranges::find(mutant.changes, transition, &Mutant::Change::first);
    return found == mutant.changes.end() ? nullptr : &*found;
}

ConfigModel configOf(const Mutant& mutant) {
    ConfigModel config{mutant.config->place, mutant.config->id, {}, mutant.config->json};
    for (std::size_t index = 0; index < mutant.config->transitions.size(); ++index) {
        const Mutant::Change* const change = changeOf(mutant, index);
        if (change == nullptr) {
            config.transitions.push_back(mutant.config->transitions[index]);
        } else if (change->second) {
            config.transitions.push_back(*change->second);
        }
    }
    return config;
}

std::string textOf(const Mutant& mutant, const DocumentModel& document) {
    Json::Value root = document.text.root();
    Json::Value transitions(Json::arrayValue);
    for (const TransitionModel& each : configOf(mutant).transitions) {
        transitions.append(jsonOf(each));
    }
    root["configs"][static_cast<Json::ArrayIndex>(mutant.machine)]["payload"]["data"]["transitions"] = transitions;
    return Json::writeString(Json::StreamWriterBuilder(), root);
}

}  // namespace Brenta::OS::VIG::Tool
