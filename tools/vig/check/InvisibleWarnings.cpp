#include <string>

#include "tools/vig/check/Warnings.h"
#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/words/Text.h"
#include "tools/vig/words/Unseen.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Judges the names of one transition.
class NameJudge {
  public:
    NameJudge(std::size_t since, std::vector<Finding>& found) : since(since), found(found) {}

    void judge(const std::string& name, const Place& place) {
        const std::string unseen = unseenIn(name);
        if (!unseen.empty()) {
            takeOutAt(place, since, found);
            const std::string seen = seenOf(name);
            warn(found, "invisible-character", place, shownQuoted(name) + " has " + unseen,
                 seen.empty() ? "write a name that can be seen" : "write " + shownQuoted(seen));
        }
    }

    void judge(const FilterModel& filter) {
        const bool isName = filter.valueType == FilterValueType::String &&
                            (filter.op == FilterOperator::Equal || filter.op == FilterOperator::NotEqual);
        for (const OperandModel* const operand : {&filter.operand1, &filter.operand2}) {
            if (isAttribute(*operand) || (isConstant(*operand) && isName)) {
                judge(operand->operand.value, operand->place);
            }
        }
    }

  private:
    const std::size_t since;
    std::vector<Finding>& found;
};

}  // namespace

void appendInvisibleWarnings(const TransitionModel& transition, std::size_t since, std::vector<Finding>& found) {
    NameJudge judge(since, found);
    judge.judge(transition.from, placeOf(transition, "from_state"));
    judge.judge(transition.to, placeOf(transition, "to_state"));
    for (const FilterModel& filter : transition.filters) {
        judge.judge(filter);
    }
}

}  // namespace Brenta::OS::VIG::Tool
