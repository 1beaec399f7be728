// An answer depends on an attribute if two contexts that differ in it alone give two answers. So all contexts are tried
// that the machine tells apart, one for each combination of values of all attributes; or, if these are too many, those
// that differ from the given one in one attribute.
//
// Mostly two values of an attribute are enough, none and any: events can have it with any value themselves, so that a
// context that has it only rules out that it is missing. Each value that is told apart is tried where a machine's own
// events are asked for it, which never have it, or where something asks an event alone.
#include "tools/vig/decide/ContextDependence.h"

#include <algorithm>
#include <limits>
#include <map>
#include <string_view>
#include <tuple>
#include <utility>

#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/events/EventNames.h"
#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

// So much costs each attribute, transition and filter of a machine that is decided again, besides what is looked at.
constexpr std::uint64_t kEffortOfPart = 300;

// It is an attribute of contexts, and the values of it that are tried, the given one first.
struct Dimension {
    FilterValueType type;
    std::string name;
    std::vector<std::optional<Value>> values;

    std::string text() const { return std::string(nameOf(kindOf(type))) + " " + name; }
};

using Context = std::vector<std::size_t>;  // of each attribute, which value

class Dimensions {
  public:
    Dimensions(const ConfigModel& config, const AttributeSet& given) {
        for (const TransitionModel& transition : config.transitions) {
            for (const FilterModel& filter : transition.filters) {
                read(filter, transition.event);
            }
            for (const ActionModel& action : transition.actions) {
                const KnownAction* const known = findAction(action.key);
                for (const ActionNeed& need : known != nullptr ? known->needs : std::span<const ActionNeed>()) {
                    for (const auto& [type, text] : kFilterValueTypeTable.pairs) {
                        if (kindOf(type) == need.kind) {
                            use(type, need.attribute).isToldApart = true;
                        }
                    }
                }
            }
        }
        for (auto& [attribute, use] : uses) {
            // Only some names can be written into a context.
            const std::string name(attribute.second);
            if (use.isCompared && replaceInvalidUtf8(name) == name) {
                use.scale.settle();
                all.push_back({attribute.first, name, valuesOf(use, attributeOf(given, name, attribute.first))});
            }
        }
    }

    std::vector<Dimension> all;

  private:
    struct Use {
        Scale scale;
        bool isCompared = false;  // with a constant, for which a context is asked as well
        bool isToldApart = false;
    };

    Use& use(FilterValueType type, std::string_view name) {
        return uses.try_emplace({type, name}, Use{Scale(type)}).first->second;
    }

    void read(const FilterModel& filter, EventType event) {
        const NormalFilter normal = normalFormOf(filter);
        for (const OperandModel* const each : {&normal.left, &normal.right}) {
            if (!isAttribute(*each)) {
                continue;
            }
            Use& read = use(filter.valueType, each->operand.value);
            read.isToldApart = read.isToldApart || event == EventType::EnteringState || !hasConstant(filter);
            if (hasConstant(filter)) {
                read.isCompared = true;
                read.scale.add(constantOf(normal.right.operand.value, filter.valueType));
            }
        }
    }

    static std::vector<std::optional<Value>> valuesOf(const Use& use, const std::optional<Value>& given) {
        const Scale& scale = use.scale;
        std::vector<std::optional<Value>> values = {given};
        if (given) {
            values.emplace_back(std::nullopt);
        }
        const Scale::Cell step = use.isToldApart ? 1 : scale.cellCount();
        for (Scale::Cell cell = 0; cell < scale.cellCount(); cell += step) {
            const bool isOfGiven = given && (!use.isToldApart || scale.cellOf(*given) == cell);
            if (auto value = isOfGiven ? std::nullopt : scale.pick(cell, cell + step)) {
                values.push_back(std::move(value));
            }
        }
        return values;
    }

    std::map<std::pair<FilterValueType, std::string_view>, Use> uses;
};

class ContextComparison {
  public:
    ContextComparison(const ConfigModel& config, const std::vector<std::vector<std::size_t>>& stays,
                      const Surroundings& surroundings)
        : model(config), given(surroundings), stays(stays), dimensions(Dimensions(config, surroundings.context).all) {
        std::size_t parts = dimensions.size() + model.transitions.size();
        for (const TransitionModel& each : model.transitions) {
            parts += each.filters.size();
        }
        effortOfOne = kEffortOfPart * parts;
    }

    ContextDependence run() {
        std::size_t contexts = 1;
        std::size_t ofOne = 1;
        for (const Dimension& each : dimensions) {
            contexts = std::min(contexts, kMostContexts) * each.values.size();
            ofOne += each.values.size() - 1;
        }
        const bool areAllTried = isAffordable(contexts);
        dependence.isWhole = areAllTried;
        if (!isAffordable(ofOne)) {
            return std::move(dependence);
        }
        Context context(dimensions.size());
        answers[context] = answersTo(context);
        dependence.names.resize(answers[context].size());
        for (std::size_t index = 0; index < dimensions.size();) {
            if (given.effort.left == 0) {
                dependence.isWhole = false;
                break;
            }
            if (context[index] + 1 == dimensions[index].values.size()) {
                context[index++] = 0;
                continue;
            }
            ++context[index];
            compare(context);
            index = areAllTried ? 0 : index;
        }
        return std::move(dependence);
    }

  private:
    using LoadKey = std::tuple<std::optional<std::uint64_t>, std::optional<Rate>, std::optional<std::size_t>>;

    static constexpr std::size_t kMostContexts = 1'000'000;
    static constexpr std::size_t kUndecided = std::numeric_limits<std::size_t>::max();

    bool isAffordable(std::size_t contexts) const {
        return contexts <= kMostContexts && contexts * effortOfOne < given.effort.left;
    }

    AttributeSet attributesOf(const Context& context) const {
        std::vector<std::pair<std::string_view, Value>> values;
        for (std::size_t index = 0; index < dimensions.size(); ++index) {
            if (const auto& value = dimensions[index].values[context[index]]) {
                values.emplace_back(dimensions[index].name, *value);
            }
        }
        return attributesWith(values);
    }

    // Returns what is decided with that context, as one number for each answer.
    std::vector<std::size_t> answersTo(const Context& context) {
        const AttributeSet attributes = attributesOf(context);
        given.effort.spend(effortOfOne);
        const Surroundings varied{given.registry, given.catalogue, attributes, given.effort};
        Behaviour machine(model, varied);
        std::vector<std::size_t> all;
        const auto add = [&](Answer answer) {
            all.push_back(answer == Answer::Undecided ? kUndecided : static_cast<std::size_t>(answer));
        };
        for (std::size_t state = 0; state < machine.stateCount(); ++state) {
            add(machine.reaches(state));
        }
        for (std::size_t transition = 0; transition < model.transitions.size(); ++transition) {
            add(machine.fires(transition));
        }
        const Load load = worstLoad(machine);
        const auto others = statesToStay(machine);
        for (const auto& each : stays) {
            const bool isOne = std::ranges::find(others, each) != others.end();
            all.push_back(machine.hasGaps() ? kUndecided : std::size_t{isOne});
        }
        all.push_back(load.isDecided ? numberOf({load.most, load.rate, load.distance}) : kUndecided);
        dependence.isWhole = dependence.isWhole && !machine.hasGaps();
        return all;
    }

    std::size_t numberOf(const LoadKey& load) {
        const auto place = std::ranges::find(loads, load) - loads.begin();
        if (static_cast<std::size_t>(place) == loads.size()) {
            loads.push_back(load);
        }
        return static_cast<std::size_t>(place);
    }

    // Holds a context against those that have another value of one attribute, and have been tried.
    void compare(const Context& context) {
        const std::vector<std::size_t>& these = answers[context] = answersTo(context);
        for (std::size_t index = 0; index < dimensions.size(); ++index) {
            if (context[index] == 0) {
                continue;
            }
            Context other = context;
            --other[index];
            const std::vector<std::size_t>& others = answers.at(other);
            for (std::size_t answer = 0; answer < these.size(); ++answer) {
                const bool areDecided = these[answer] != kUndecided && others[answer] != kUndecided;
                if (areDecided && these[answer] != others[answer]) {
                    dependence.names[answer].insert(dimensions[index].text());
                }
            }
        }
    }

    const ConfigModel& model;
    const Surroundings& given;
    const std::vector<std::vector<std::size_t>>& stays;
    const std::vector<Dimension> dimensions;
    std::uint64_t effortOfOne = 0;                        // context
    std::map<Context, std::vector<std::size_t>> answers;  // with the contexts that have been tried
    std::vector<LoadKey> loads;                           // that have been decided, each once
    ContextDependence dependence;
};

}  // namespace

ContextDependence dependenceOf(const ConfigModel& config, const std::vector<std::vector<std::size_t>>& stays,
                               const Surroundings& surroundings) {
    return ContextComparison(config, stays, surroundings).run();
}

}  // namespace Brenta::OS::VIG::Tool
