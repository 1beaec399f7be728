#include <string>
#include <vector>

#include "tools/vig/check/DrawShare.h"
#include "tools/vig/check/Warnings.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Returns the name of the function that the filter draws from; empty if it has none.
std::string drawnBy(const FilterModel& filter) {
    for (const OperandModel* const operand : {&filter.operand1, &filter.operand2}) {
        const DoubleFunction* const function = doubleFunctionOf(*operand);
        if (filter.valueType == FilterValueType::Double && function != nullptr && function->isRandom) {
            return operand->operand.value;
        }
    }
    return {};
}

void appendExactDraw(const FilterModel& filter, std::vector<Finding>& found) {
    const NormalFilter normal = normalFormOf(filter);
    const std::string function = drawnBy(filter);
    const auto share = shareOf(filter);
    const bool isEquality = normal.op == FilterOperator::Equal || normal.op == FilterOperator::NotEqual;
    // What no draw fulfils, or every one, is told where the filters are decided.
    if (function.empty() || (hasConstant(filter) ? !share || samples(share) : !isEquality)) {
        return;
    }
    const bool isRare = normal.op == FilterOperator::Equal || normal.op == FilterOperator::LessEqual;
    const std::string constant = isConstant(normal.right) ? normal.right.operand.value : "";
    warn(found, "exact-draw", placeOf(filter, "operator"),
         markedCondition(filter) + " is as good as " + (isRare ? "never" : "always") +
             " true: a draw is hardly ever just one number",
         constant.empty() ? "compare by \"<\""
         : share && isEquality && constant.find_first_not_of("0.") != std::string::npos
             ? "write " + function + "() < " + shownName(constant) + " to let that share through"
             : "write " + function + "() < 0.1 to let 10 % through");
}

// It has the filters of a transition that draw a share, of which each draws for itself.
class Repeats {
  public:
    explicit Repeats(std::vector<Finding>& found) : found(found) {}

    void add(const FilterModel& filter, double share) {
        ++count;
        whole *= share;
        if (count > 1) {
            warnOf(filter, share);
        }
        last = &filter;
        lastShare = share;
    }

  private:
    void warnOf(const FilterModel& filter, double share) {
        // What two comparisons of one draw would let through.
        const double band = share + lastShare - 1;
        const bool isBand = count == 2 && isBelow(filter) != isBelow(*last) && band > 0;
        const OperandModel& draw = normalFormOf(filter).left;
        warn(found, "repeated-draw", draw.place,
             markedCondition(filter) + " draws anew, after " + markedCondition(*last) + ": " +
                 (count > 2 ? "all" : "both") + " together let " + shownPercent(whole) + " through",
             isBand ? "write " + draw.operand.value + "() < " + shownNumber(band) + " alone to let " +
                          shownPercent(band) + " through"
                    : "leave one of them out");
    }

    static bool isBelow(const FilterModel& filter) {
        const FilterOperator op = normalFormOf(filter).op;
        return op == FilterOperator::Less || op == FilterOperator::LessEqual;
    }

    std::vector<Finding>& found;
    std::size_t count = 0;
    double whole = 1;
    const FilterModel* last = nullptr;
    double lastShare = 1;
};

}  // namespace

void appendDrawWarnings(const TransitionModel& transition, std::vector<Finding>& found) {
    Repeats repeats(found);
    for (const FilterModel& filter : transition.filters) {
        appendExactDraw(filter, found);
        if (const auto share = shareOf(filter); samples(share)) {
            repeats.add(filter, *share);
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
