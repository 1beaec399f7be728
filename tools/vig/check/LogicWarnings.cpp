#include "tools/vig/check/Warnings.h"

#include <json/value.h>

#include <map>
#include <string>
#include <tuple>

#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/check/ValueRange.h"
#include "vig/parsers/FilterParser.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EvaluationContext;
using RulesEngine::Event;
using RulesEngine::EventType;

namespace {

enum class Truth { Depends, Always, Never };

// Returns all values that a comparison with a constant can meet.
template <typename T>
ValueRange<T> domainOf(const OperandModel& operand) {
    ValueRange<T> domain;
    if constexpr (std::is_same_v<T, double>) {
        if (const DoubleFunction* const function = doubleFunctionOf(operand)) {
            domain.narrow(FilterOperator::GreaterEqual, function->least);
            domain.narrow(FilterOperator::Less, function->limit);
        }
    }
    return domain;
}

template <typename T>
bool isImpossible(FilterOperator op, const NormalFilter& normal) {
    ValueRange<T> range = domainOf<T>(normal.left);
    range.narrow(op, readNearest<T>(normal.right.operand.value));
    return range.isEmpty();
}

// A number that is missing is never equal nor different, so that nothing is always true of it.
template <typename T>
Truth truthAgainstConstant(const NormalFilter& normal) {
    if (isImpossible<T>(normal.op, normal)) {
        return Truth::Never;
    }
    const bool alwaysPresent = std::is_same_v<T, std::string> || isFunction(normal.left);
    return alwaysPresent && isImpossible<T>(negated(normal.op), normal) ? Truth::Always : Truth::Depends;
}

Truth truthAgainstConstant(const FilterModel& filter) {
    return withComparedType(filter.valueType, [&]<typename T>(std::type_identity<T>) {
        return truthAgainstConstant<T>(normalFormOf(filter));
    });
}

// The library itself compares. Nothing of the event or the context is looked at.
Truth truthOfConstants(const FilterModel& filter, const VIGParserConfig& registry) {
    const auto built = _parseFilter(*filter.json, registry);
    return built && (*built)(EvaluationContext(), Event(EventType::Test)) ? Truth::Always : Truth::Never;
}

// The filter compares an attribute or a function with itself. NaN differs from itself.
Truth truthOfOneValue(const FilterModel& filter) {
    const bool exact = filter.valueType != FilterValueType::Double;
    switch (filter.op) {
        case FilterOperator::Greater:
        case FilterOperator::Less:
            return Truth::Never;
        case FilterOperator::NotEqual:
            return exact ? Truth::Never : Truth::Depends;
        default:
            return exact ? Truth::Always : Truth::Depends;
    }
}

Truth truthOf(const FilterModel& filter, const VIGParserConfig& registry) {
    if (isOfConstants(filter)) {
        return truthOfConstants(filter, registry);
    }
    if (hasConstant(filter)) {
        return truthAgainstConstant(filter);
    }
    const FilterOperand& left = filter.operand1.operand;
    const FilterOperand& right = filter.operand2.operand;
    const bool isOneValue = left.type == right.type && left.value == right.value && !draws(filter);
    return isOneValue ? truthOfOneValue(filter) : Truth::Depends;
}

// Holds the comparisons of each attribute and function with constants, under one value type.
template <typename T>
class Contradictions {
  public:
    explicit Contradictions(std::vector<Finding>& found) : found(found) {}

    // Returns true if no value fulfils this filter and those before. Says so once.
    bool add(const FilterModel& filter) {
        const NormalFilter normal = normalFormOf(filter);
        auto& [range, filters, contradictory] = compared[{isFunction(normal.left), normal.left.operand.value}];
        if (!contradictory) {
            range.narrow(normal.op, readNearest<T>(normal.right.operand.value));
            contradictory = range.isEmpty();
            if (contradictory) {
                report(filter, filters);
            }
            filters.push_back(&filter);
        }
        return contradictory;
    }

  private:
    struct Compared {
        ValueRange<T> range = {};
        std::vector<const FilterModel*> filters = {};
        bool contradictory = false;
    };

    void report(const FilterModel& filter, const std::vector<const FilterModel*>& earlier) {
        const auto excludes = [&](const FilterModel* other) {
            ValueRange<T> range;
            for (const FilterModel* const each : {other, &filter}) {
                const NormalFilter normal = normalFormOf(*each);
                range.narrow(normal.op, readNearest<T>(normal.right.operand.value));
            }
            return range.isEmpty();
        };
        const auto culprit = std::ranges::find_if(earlier, excludes);
        const std::string others =
            culprit == earlier.end() ? "the filters before it taken together" : "`" + shownCondition(**culprit) + "`";
        warn(found, "never-true", filter.place,
             "`" + shownCondition(filter) + "` contradicts " + others + " in the same transition",
             "a transition fires only if all its filters hold: make two transitions for two cases");
    }

    std::vector<Finding>& found;
    std::map<std::pair<bool, std::string_view>, Compared> compared;
};

void warnOfTruth(const FilterModel& filter, Truth truth, std::vector<Finding>& found) {
    const bool always = truth == Truth::Always;
    const std::string why = isOfConstants(filter) ? ", being a comparison of two constants" : ", whatever the event";
    warn(found, always ? "always-true" : "never-true", filter.place,
         "`" + shownCondition(filter) + "` is " + (always ? "always" : "never") + " true" + why,
         always ? "leave the filter out" : "mend the filter, or leave the transition out");
}

}  // namespace

FilterLogic judgeFilters(const TransitionModel& transition, const VIGParserConfig& registry,
                         std::vector<Finding>& found) {
    FilterLogic logic;
    std::tuple contradictions{Contradictions<std::string>(found), Contradictions<std::int64_t>(found),
                              Contradictions<double>(found)};
    const auto contradictsOthers = [&](const FilterModel& filter) {
        return withComparedType(filter.valueType, [&]<typename T>(std::type_identity<T>) {
            return std::get<Contradictions<T>>(contradictions).add(filter);
        });
    };
    for (const FilterModel& filter : transition.filters) {
        const Truth truth = truthOf(filter, registry);
        if (truth != Truth::Depends) {
            warnOfTruth(filter, truth, found);
        }
        if (truth != Truth::Always) {
            logic.conditions.push_back(&filter);
        }
        const bool comparesOneValue = hasConstant(filter) && !draws(filter);
        const bool contradictory = truth == Truth::Depends && comparesOneValue && contradictsOthers(filter);
        logic.neverHolds = logic.neverHolds || truth == Truth::Never || contradictory;
    }
    return logic;
}

}  // namespace Brenta::OS::VIG::Tool
