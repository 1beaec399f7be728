#include "tools/vig/decide/ContextDependence.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/events/EventNames.h"
#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

// So much costs a transition of a machine that is decided again, besides what is looked at.
constexpr std::uint64_t kEffortOfTransition = 200;

// It is an attribute of a context with another value, or without one.
struct Change {
    FilterValueType type;
    std::string name;
    std::optional<Value> value;

    std::string text() const { return std::string(nameOf(kindOf(type))) + " " + name; }
};
using Variation = std::vector<Change>;

template <typename T>
void copyOthers(const AttributeSet& given, const Variation& variation, std::optional<FilterValueType> type,
                AttributeSet& copy) {
    given.forEach<T>([&](std::string_view name, T value) {
        if (std::ranges::none_of(variation,
                                 [&](const Change& each) { return each.type == type && each.name == name; })) {
            copy.add<T>(name, value);
        }
    });
}

AttributeSet contextWith(const AttributeSet& given, const Variation& variation) {
    AttributeSet context;
    copyOthers<std::uint64_t>(given, variation, std::nullopt, context);
    copyOthers<bool>(given, variation, std::nullopt, context);
    copyOthers<std::int64_t>(given, variation, FilterValueType::Integer, context);
    copyOthers<double>(given, variation, FilterValueType::Double, context);
    copyOthers<std::string_view>(given, variation, FilterValueType::String, context);
    for (const Change& each : variation) {
        if (each.value) {
            std::visit(
                [&]<typename T>(const T& value) {
                    using Stored = std::conditional_t<std::is_same_v<T, std::string>, std::string_view, T>;
                    context.add<Stored>(each.name, value);
                },
                *each.value);
        }
    }
    context.sort<std::int64_t>();
    context.sort<double>();
    context.sort<std::string_view>();
    return context;
}

std::vector<Variation> changesOfOne(const ConfigModel& config) {
    std::map<std::pair<FilterValueType, std::string>, Scale> scales;
    for (const TransitionModel& transition : config.transitions) {
        for (const FilterModel& filter : transition.filters) {
            const NormalFilter normal = normalFormOf(filter);
            const std::string& name = normal.left.operand.value;
            // Only constants are compared with what a context has, and only some names can be written into one.
            if (isAttribute(normal.left) && isConstant(normal.right) && replaceInvalidUtf8(name) == name) {
                auto& scale = scales.try_emplace({filter.valueType, name}, filter.valueType).first->second;
                scale.add(constantOf(normal.right.operand.value, filter.valueType));
            }
        }
    }
    std::vector<Variation> variations;
    for (auto& [attribute, scale] : scales) {
        const auto& [type, name] = attribute;
        scale.settle();
        variations.push_back({{type, name, std::nullopt}});
        for (Scale::Cell cell = 0; cell < scale.cellCount(); ++cell) {
            if (auto value = scale.pick(cell, cell + 1)) {
                variations.push_back({{type, name, std::move(value)}});
            }
        }
    }
    return variations;
}

// It has the answers about a machine, and all that the others follow from.
struct Verdicts {
    explicit Verdicts(Behaviour& machine) {
        for (std::size_t state = 0; state < machine.stateCount(); ++state) {
            states.push_back(machine.reaches(state));
            waits.push_back(machine.waitsIn(state));
            for (const auto& edge : waits.back() ? machine.edgesFrom(state) : std::vector<Behaviour::Edge>()) {
                edges.push_back({state, edge.transition, edge.to, machine.triggersOf(edge.transition).count});
            }
        }
        for (std::size_t transition = 0; transition < machine.config().transitions.size(); ++transition) {
            transitions.push_back(machine.fires(transition));
        }
    }

    std::vector<Answer> states;
    std::vector<Answer> transitions;
    std::vector<bool> waits;
    std::vector<std::array<std::size_t, 4>> edges;
};

class Comparison {
  public:
    Comparison(Behaviour& machine, const Load& load, const std::vector<std::vector<std::size_t>>& stays,
               const Surroundings& surroundings)
        : model(machine.config()), given(surroundings), load(load), stays(stays), verdicts(machine) {
        found.states.resize(verdicts.states.size());
        found.transitions.resize(verdicts.transitions.size());
        found.stays.resize(stays.size());
        ofOne = found;
    }

    std::optional<ContextDependence> run() {
        if (!tryAll(changesOfOne(model))) {
            return std::nullopt;
        }
        const auto several = changesOfSeveral();
        // What one attribute changes needs no others.
        ofOne = found;
        if (!several || !tryAll(*several)) {
            return std::nullopt;
        }
        ofOne = found;
        return tryAllTogether() ? std::optional(std::move(found)) : std::nullopt;
    }

  private:
    bool tryAll(const std::vector<Variation>& variations) {
        const std::uint64_t cost = kEffortOfTransition * variations.size() * model.transitions.size();
        if (given.effort.left < cost) {
            return false;
        }
        return std::ranges::all_of(variations, [this](const Variation& each) { return tryOne(each); });
    }

    Surroundings with(const AttributeSet& context) const {
        given.effort.spend(kEffortOfTransition * model.transitions.size());
        return {given.registry, given.catalogue, context, given.effort};
    }

    // Returns false if it is not decided what it changes.
    bool tryOne(const Variation& variation) {
        const AttributeSet context = contextWith(given.context, variation);
        if (context == given.context) {
            return true;
        }
        const Surroundings varied = with(context);
        Behaviour machine(model, varied);
        const Verdicts now(machine);
        compare(verdicts.states, now.states, variation, ofOne.states, found.states);
        compare(verdicts.transitions, now.transitions, variation, ofOne.transitions, found.transitions);
        if (load.isDecided && (now.waits != verdicts.waits || now.edges != verdicts.edges)) {
            const Load other = worstLoad(machine);
            const auto keyOf = [](const Load& each) { return std::tuple(each.most, each.rate, each.distance); };
            note(keyOf(other) != keyOf(load), variation, ofOne.load, found.load);
            const auto others = statesToStay(machine);
            for (std::size_t index = 0; index < stays.size(); ++index) {
                const bool isOther = std::ranges::find(others, stays[index]) == others.end();
                note(isOther, variation, ofOne.stays[index], found.stays[index]);
            }
        }
        return !machine.hasGaps();
    }

    static void compare(const std::vector<Answer>& before, const std::vector<Answer>& now, const Variation& variation,
                        const std::vector<ContextDependence::Names>& known,
                        std::vector<ContextDependence::Names>& names) {
        for (std::size_t index = 0; index < before.size(); ++index) {
            const bool isOther = before[index] != Answer::Undecided && now[index] != before[index];
            note(isOther, variation, known[index], names[index]);
        }
    }

    static void note(bool isOther, const Variation& variation, const ContextDependence::Names& known,
                     ContextDependence::Names& names) {
        for (const Change& each : isOther&& known.empty() ? variation : Variation()) {
            names.insert(each.text());
        }
    }

    // Returns nothing if that is not decided.
    std::optional<std::vector<Variation>> changesOfSeveral() const {
        std::vector<Variation> variations;
        const Surroundings open{given.registry, given.catalogue, given.context, given.effort,
                                Surroundings::Context::Open};
        Behaviour machine(model, open);
        for (std::size_t index = 0; index < model.transitions.size(); ++index) {
            if (model.transitions[index].event != EventType::EnteringState || machine.canFire(index) != Answer::Yes) {
                continue;
            }
            const Junction& junction = machine.junctionOf(index);
            const auto record = junction.eventFor(junction.toReach(machine.targetOf(index)), given.effort);
            if (!record) {
                return std::nullopt;
            }
            Variation all = needed(index, changesTo(record->attributes));
            if (all.size() > 1) {
                variations.push_back(std::move(all));
            }
        }
        return machine.hasGaps() ? std::nullopt : std::optional(std::move(variations));
    }

    // Where a machine that may have any context, a new one at each event, comes to what this one never does, all that
    // its own events need on the way is tried at once. Returns false if it is not decided what that changes.
    bool tryAllTogether() {
        const Surroundings open{given.registry, given.catalogue, given.context, given.effort,
                                Surroundings::Context::Open};
        Behaviour machine(model, open);
        const auto isOpen = [](Answer never, Answer ever, const ContextDependence::Names& names) {
            return never == Answer::No && ever == Answer::Yes && names.empty();
        };
        for (std::size_t state = 0; state < verdicts.states.size(); ++state) {
            if (isOpen(verdicts.states[state], machine.reaches(state), found.states[state]) &&
                !tryOne(changesAlong(machine, machine.routeTo(state)))) {
                return false;
            }
        }
        for (std::size_t index = 0; index < verdicts.transitions.size(); ++index) {
            if (isOpen(verdicts.transitions[index], machine.fires(index), found.transitions[index]) &&
                !tryOne(changesAlong(machine, machine.routeToFire(index)))) {
                return false;
            }
        }
        return !machine.hasGaps();
    }

    Variation changesAlong(Behaviour& machine, const Route& route) const {
        Variation all;
        const auto add = [&](const Junction& junction, const Junction::Question& question) {
            const auto record = junction.eventFor(question, given.effort);
            for (Change& each : record ? changesTo(record->attributes) : Variation()) {
                const auto isSame = [&](const Change& other) { return other.text() == each.text(); };
                if (std::ranges::none_of(all, isSame)) {
                    all.push_back(std::move(each));
                }
            }
        };
        const auto follow = [&](const Chain& chain, std::size_t stop) {
            for (; stop != 0; stop = chain.stops[stop].before) {
                const std::size_t transition = chain.stops[stop].transition;
                const Junction& junction = machine.junctionOf(transition);
                add(junction, junction.toReach(machine.targetOf(transition)));
            }
        };
        follow(machine.chainFrom(Behaviour::kStart), route.startStop);
        for (const RouteStep& each : route.steps) {
            follow(machine.chainFrom(machine.to(each.transition)), each.stop);
        }
        return all;
    }

    static Variation changesTo(const AttributeSet& attributes) {
        Variation changes;
        const auto add = [&](FilterValueType type, std::string_view name, Value value) {
            changes.push_back({type, std::string(name), std::move(value)});
        };
        attributes.forEach<std::int64_t>(
            [&](std::string_view name, std::int64_t value) { add(FilterValueType::Integer, name, value); });
        attributes.forEach<double>(
            [&](std::string_view name, double value) { add(FilterValueType::Double, name, value); });
        attributes.forEach<std::string_view>([&](std::string_view name, std::string_view value) {
            add(FilterValueType::String, name, std::string(value));
        });
        return changes;
    }

    // Leaves out the changes without which the transition can fire, too.
    Variation needed(std::size_t transition, Variation changes) const {
        for (std::size_t index = 0; changes.size() > 1 && index < changes.size();) {
            Variation others = changes;
            others.erase(others.begin() + static_cast<std::ptrdiff_t>(index));
            const AttributeSet context = contextWith(given.context, others);
            const Surroundings varied = with(context);
            if (Behaviour(model, varied).canFire(transition) == Answer::Yes) {
                changes = std::move(others);
            } else {
                ++index;
            }
        }
        return changes;
    }

    const ConfigModel& model;
    const Surroundings& given;
    const Load& load;
    const std::vector<std::vector<std::size_t>>& stays;
    const Verdicts verdicts;
    ContextDependence found;
    ContextDependence ofOne;  // what was found with the changes of one attribute, once all are tried
};

}  // namespace

std::optional<ContextDependence> dependenceOf(Behaviour& machine, const Load& load,
                                              const std::vector<std::vector<std::size_t>>& stays,
                                              const Surroundings& surroundings) {
    return Comparison(machine, load, stays, surroundings).run();
}

}  // namespace Brenta::OS::VIG::Tool
