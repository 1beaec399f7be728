#include "tools/vig/check/Warnings.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tools/vig/check/Blame.h"
#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/document/Units.h"
#include "tools/vig/words/Text.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Returns the hint for a share that no draw can be on both sides of: mostly it is meant as percent.
std::string shareHint(const FilterModel& filter, const char* otherwise) {
    constexpr double kMostPercent = 100;
    const NormalFilter normal = normalFormOf(filter);
    const DoubleFunction* const function = doubleFunctionOf(normal.left);
    const double number = isConstant(normal.right) ? readNearest<double>(normal.right.operand.value) : 0;
    if (filter.valueType != FilterValueType::Double || function == nullptr || !isConstant(normal.right) ||
        (number >= function->least && number < function->limit)) {
        return otherwise;
    }
    const std::string range = fmt::format("a share lies between {} and {}", function->least, function->limit);
    if (number < function->limit || number >= kMostPercent || function->limit != 1) {
        return range + ": write such a number, or leave the filter out";
    }
    const bool isAbove = normal.op == FilterOperator::Greater || normal.op == FilterOperator::GreaterEqual;
    // Above 10 of 100 are 90, where mostly 10 are meant: that takes another operator.
    const bool isEquality = normal.op == FilterOperator::Equal || normal.op == FilterOperator::NotEqual;
    const bool isOther = isEquality || (isAbove && number < kMostPercent / 2);
    const std::string share = shownNumber(number / kMostPercent);
    const std::string write = "write " + (isOther ? normal.left.operand.value + "() < " + share : inQuotes(share)) +
                              " to let " + shownNumber(isAbove && !isOther ? kMostPercent - number : number) +
                              " % through";
    return number > function->limit ? range + ": " + write : std::string(otherwise) + "; or " + write;
}

// Warns of the filters of one transition, each by itself and all together.
class FilterJudge {
  public:
    FilterJudge(Judged& machine, std::size_t transition, std::vector<Finding>& found)
        : behaviour(machine.possible),
          junction(behaviour.junctionOf(transition)),
          place(behaviour.targetOf(transition).transition),
          filters(machine.config.transitions[transition].filters),
          found(found) {}

    // What stands in `found` from there on is about the transition.
    FilterLogic judge(std::size_t since) {
        for (std::size_t index = 0; index < filters.size(); ++index) {
            const auto isInside = [&](const Finding& each) {
                return filters[index].place.begin <= each.place.begin && each.place.end <= filters[index].place.end;
            };
            // What is said of its attributes and functions tells already what comes of it.
            const bool isExplained =
                std::any_of(found.begin() + static_cast<std::ptrdiff_t>(since), found.end(), [&](const Finding& each) {
                    return isInside(each) && each.name != "number-text" && each.name != "nul-character";
                });
            judgeAlone(index, isExplained);
        }
        judgeTogether();
        return logic;
    }

  private:
    void judgeAlone(std::size_t index, bool isExplained) {
        const FilterModel& filter = filters[index];
        const bool isTold = isExplained || !isReadWhole(filter);
        const Answer holds = behaviour.answerTo(junction, {0, {&junction.toHold(place, index, true)}});
        logic.holds = std::max(logic.holds, holds);
        if (holds == Answer::Yes || holds == Answer::Undecided) {
            possible.push_back(index);
        } else if (!isTold) {
            const std::string why =
                isOfConstants(filter) ? ", being a comparison of two constants" : ", whatever the event";
            warn(found, "never-true", placeAt(filter, "operator"),
                 holds == Answer::No ? markedCondition(filter) + " is never true" + why
                                     : "only " + unrecordable(filter) + " fulfils " + markedCondition(filter),
                 shareHint(filter, "mend the filter, or leave the transition out"));
        }
        const bool always = !isExplained && behaviour.decide(junction, {0, {&junction.toHold(place, index, false)}},
                                                             Values::All) == Verdict::No;
        if (always && !isTold) {
            const std::string why =
                isOfConstants(filter) ? ", being a comparison of two constants" : ", whatever the event";
            warn(found, "always-true", placeAt(filter, "operator"), markedCondition(filter) + " is always true" + why,
                 shareHint(filter, "leave the filter out"));
        }
        logic.isConditional = logic.isConditional || !always;
    }

    void judgeTogether() {
        Clauses question;
        for (const std::size_t index : possible) {
            question.push_back(&junction.toHold(place, index, true));
        }
        const Answer together = question.size() > 1 ? behaviour.answerTo(junction, {0, question}) : Answer::Yes;
        const Answer whole = possible.size() < filters.size() && logic.holds != Answer::No
                                 ? behaviour.answerTo(junction, {0, junction.toHold(place, filters.size())})
                                 : together;
        logic.holds = std::max({logic.holds, together, whole});
        if (together == Answer::Yes || together == Answer::Undecided) {
            return;
        }
        const bool isNever = together == Answer::No;
        Blame blame = blameFor(behaviour, junction, {}, question, isNever ? Values::All : Values::Recordable);
        const FilterModel& last = filters[possible[blame.clauses.front()]];
        blame.clauses.erase(blame.clauses.begin());
        const std::string others = blame.text([&](std::size_t each) {
            return markedCondition(filters[possible[each]]);
        }) + (blame.clauses.size() > 1 ? ", taken together," : "");
        warn(found, "never-true", placeAt(last, "operator"),
             isNever ? markedCondition(last) + " contradicts " + others + " in the same transition"
                     : "only " + unrecordable(last) + " fulfils " + markedCondition(last) + " and " + others +
                           " in the same transition",
             "a transition fires only if all its filters hold: make two transitions for two cases");
    }

    static std::string unrecordable(const FilterModel& filter) {
        return filter.valueType == FilterValueType::String ? "a text that is no UTF-8" : "an infinity or NaN";
    }

    Behaviour& behaviour;
    const Junction& junction;
    const std::size_t place;  // in the junction
    const std::vector<FilterModel>& filters;
    std::vector<Finding>& found;
    FilterLogic logic;
    std::vector<std::size_t> possible;  // filters that can hold
};

}  // namespace

FilterLogic judgeFilters(Judged& machine, std::size_t transition, std::size_t since, std::vector<Finding>& found) {
    return FilterJudge(machine, transition, found).judge(since);
}

}  // namespace Brenta::OS::VIG::Tool
