#pragma once

#include <json/value.h>

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/check/Evidence.h"
#include "tools/vig/decide/Behaviour.h"
#include "tools/vig/document/RuleModel.h"
#include "tools/vig/findings/Findings.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

// The warnings by what they need to know; the names are of kWarningNames. Each function appends what it finds.

// Warns of every key that the library ignores, and at every key that a later one overwrites. What stands inside of an
// ignored value is not looked at. REQUIRES: the text of the document is JSON.
void appendKeyWarnings(const DocumentText& document, std::vector<Finding>& found);

// Warns of every id that an earlier configuration has, or that loses a fraction. REQUIRES: the root is an object whose
// "configs" is an array.
void appendIdWarnings(const DocumentText& document, std::vector<Finding>& found);

// It says what judging the filters of a transition has come to.
struct FilterLogic {
    Answer holds = Answer::Yes;  // whether an event can fulfil all of them
    bool isConditional = false;  // one of them is not always true
};

// It is a machine that is judged, and what has come of it so far.
struct Judged {
    const ConfigModel& config;
    const std::size_t index;           // among those of the document that the library accepts
    const Surroundings& surroundings;  // with an empty context
    Behaviour& possible;  // may have any context of which the catalogue knows: what it cannot do never happens
    Behaviour& shown;     // has an empty context: what it can do can be shown
    Evidence& evidence;
    std::vector<FilterLogic> logics = {};  // of the transitions
    bool wasCut = false;                   // something was not decided besides
};

// Warns of what is probably a mistake in a configuration that the library accepts, in the order of the text. An
// endless-entering that nothing can stop is an error. The functions below do the work.
void appendRuleWarnings(Judged& machine, std::vector<Finding>& found);

// Warns of constants that the library reads as another number than is written.
void appendNumberWarnings(const FilterModel& filter, std::vector<Finding>& found);

// Returns false if the library ignores a part of a number in the filter, which is told then.
bool isReadWhole(const FilterModel& filter);

// Warns of a NUL in what the library accepts with it: an operator, which it reads up to there, the names of states and
// attributes, and texts that are compared.
void appendNulWarnings(const TransitionModel& transition, std::vector<Finding>& found);

// Warns of attributes that the filters and actions of a transition do not find, and of functions that its filters do
// not find.
void appendAttributeWarnings(const TransitionModel& transition, const Catalogue& catalogue,
                             const VIGParserConfig& registry, std::vector<Finding>& found);

// Warns of blanks at the ends of names, and of characters in them that nobody sees. `since` is as below.
void appendInvisibleWarnings(const TransitionModel& transition, std::size_t since, std::vector<Finding>& found);

// Warns of operands whose type is that of another one, such as a number that is looked for as an attribute. What has
// been found since that place is about the transition; what this explains is taken out.
void appendTypeWarnings(const TransitionModel& transition, const Catalogue& catalogue, const VIGParserConfig& registry,
                        std::size_t since, std::vector<Finding>& found);

// Warns of numbers that are of another unit than their attribute.
void appendUnitWarnings(const ConfigModel& config, const Catalogue& catalogue, std::vector<Finding>& found);

// Warns of draws that are compared for equality, and of a transition that draws twice.
void appendDrawWarnings(const TransitionModel& transition, std::vector<Finding>& found);

// Returns what the filters come to. Warns of those that are always or never true, and that contradict each other. What
// has been found since that place is about the transition.
FilterLogic judgeFilters(Judged& machine, std::size_t transition, std::size_t since, std::vector<Finding>& found);

// The functions that follow REQUIRE that the filters have been judged.

// Warns of transitions that never fire because an earlier one always does instead.
void appendShadowWarnings(Judged& machine, std::vector<Finding>& found);

// Warns of cycles of EnteringState transitions; one that nothing can stop is an error.
void appendEnteringWarnings(Judged& machine, std::vector<Finding>& found);

// Warns of states that the machine never comes to or that it cannot leave, and of transitions on timeouts.
void appendStateWarnings(Judged& machine, std::vector<Finding>& found);

// Warns of triggers to which equal events lead again and again.
void appendStormWarnings(Judged& machine, std::vector<Finding>& found);

// Warns of filters that are false where an event lacks the attribute, so that a transition fires that is meant for
// something else.
void appendFallThroughWarnings(Judged& machine, std::vector<Finding>& found);

// Warns of a trigger to which events of several processes lead.
void appendProcessWarnings(Judged& machine, std::vector<Finding>& found);

// Warns of shares that are on the wrong side, and that are drawn again on the way.
void appendSamplingWarnings(Judged& machine, std::vector<Finding>& found);

// Warns of a machine without any action.
void appendActionWarnings(const ConfigModel& config, std::vector<Finding>& found);

// Warns of machines that do the same as an earlier one.
void appendCopyWarnings(std::span<const ConfigModel> configs, std::vector<Finding>& found);

// Returns the attributes that the action needs and events of the type are known not to have, as a list for people.
std::string missingFor(const ActionModel& action, RulesEngine::EventType event, const Catalogue& catalogue);

inline void warn(std::vector<Finding>& found, std::string_view name, Place place, std::string message,
                 std::string hint = {}) {
    found.push_back({Severity::Warning, std::string(name), std::move(place), std::move(message), std::move(hint)});
}

// Takes out what has been found since then and stands there: its cause is about to be told.
inline void takeOutAt(const Place& place, std::size_t since, std::vector<Finding>& found) {
    const auto isThere = [&](const Finding& each) { return each.place.begin == place.begin; };
    found.erase(std::remove_if(found.begin() + static_cast<std::ptrdiff_t>(since), found.end(), isThere), found.end());
}

// Marks the states to which chains of transitions lead from one; `outgoing` has the transitions by the state they
// leave.
inline void follow(const Behaviour& behaviour, const std::vector<std::vector<std::size_t>>& outgoing, std::size_t from,
                   std::vector<bool>& isBehind) {
    std::vector<std::size_t> waiting = {from};
    while (!waiting.empty()) {
        const std::size_t state = waiting.back();
        waiting.pop_back();
        if (!isBehind[state]) {
            isBehind[state] = true;
            for (const std::size_t each : outgoing[state]) {
                waiting.push_back(behaviour.to(each));
            }
        }
    }
}

// Returns what suggestion() gives, standing alone.
inline std::string asHint(const std::string& suggested) {
    return suggested.empty() ? suggested : suggested.substr(suggested.find_first_not_of("; "));
}

// Returns the place of a value inside of a transition or a filter.
Place placeInside(const auto& object, const Json::Value& value, const std::string& path) {
    const auto offsetOf = [&](std::ptrdiff_t place) {
        return object.place.begin + static_cast<std::size_t>(place - object.json->getOffsetStart());
    };
    return {offsetOf(value.getOffsetStart()), offsetOf(value.getOffsetLimit()), object.place.path + "." + path};
}

// Returns the place of a member of a transition or a filter, such as "to_state".
Place placeOf(const auto& object, const char* member) {
    const Json::Value& whole = *object.json;
    return placeInside(object, whole[member], member);
}

// Returns where such a member stands, for what is wrong with the whole: people look for a name, not for a brace.
Place placeAt(const auto& object, const char* member) {
    Place place = placeOf(object, member);
    place.path = object.place.path;
    return place;
}

}  // namespace Brenta::OS::VIG::Tool
