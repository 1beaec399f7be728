#include "tools/vig/check/Warnings.h"

#include <json/value.h>

#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::string_view kNulName = "nul-character";

bool hasNul(std::string_view text) {
    return text.find('\0') != std::string_view::npos;
}

void appendNulWarning(const std::string& text, Place place, std::vector<Finding>& found) {
    if (hasNul(text)) {
        warn(found, kNulName, std::move(place),
             shownQuoted(text) + " has a NUL, where other programs take a text to end", "leave the NUL out");
    }
}

void appendNulWarnings(const FilterModel& filter, std::vector<Finding>& found) {
    const std::string op = (*filter.json)["operator"].asString();
    if (hasNul(op)) {
        warn(found, kNulName, placeOf(filter, "operator"),
             shownQuoted(op) + " is read as " + shownQuoted(kFilterOperatorTable.lookup(filter.op)) +
                 ": what follows the NUL is ignored",
             "write " + shownQuoted(kFilterOperatorTable.lookup(filter.op)) + " if that is meant");
    }
    for (const OperandModel* const operand : {&filter.operand1, &filter.operand2}) {
        // Others warn of a number, and of a function that is not there.
        if (isAttribute(*operand) || (isConstant(*operand) && filter.valueType == FilterValueType::String)) {
            appendNulWarning(operand->operand.value, operand->place, found);
        }
    }
}

}  // namespace

void appendNulWarnings(const TransitionModel& transition, std::vector<Finding>& found) {
    appendNulWarning(transition.from, placeOf(transition, "from_state"), found);
    appendNulWarning(transition.to, placeOf(transition, "to_state"), found);
    for (const FilterModel& filter : transition.filters) {
        appendNulWarnings(filter, found);
    }
}

}  // namespace Brenta::OS::VIG::Tool
