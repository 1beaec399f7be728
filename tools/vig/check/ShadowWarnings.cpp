#include "tools/vig/check/Warnings.h"

#include <string>

#include "tools/vig/check/Blame.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Tells whether the same events fulfil the filters of both, as far as the text shows.
bool isSame(const TransitionModel& left, const TransitionModel& right) {
    return !left.filters.empty() && (*left.json)["filters"] == (*right.json)["filters"];
}

void warnOfShadow(Judged& machine, std::size_t transition, Values which, std::vector<Finding>& found) {
    Behaviour& behaviour = machine.possible;
    const TransitionModel& model = machine.config.transitions[transition];
    const Junction& junction = behaviour.junctionOf(transition);
    const std::size_t place = behaviour.targetOf(transition).transition;
    Clauses earlier;
    for (std::size_t index = 0; index < place; ++index) {
        earlier.push_back(&junction.toFail(index));
    }
    const Blame blame = blameFor(behaviour, junction, junction.toHold(place, model.filters.size()), earlier, which);
    const bool isOne = blame.isWhole && blame.clauses.size() == 1;
    const bool always =
        isOne && behaviour.decide(junction, {0, {earlier[blame.clauses.front()]}}, Values::All) == Verdict::No;
    const std::string why = always  ? ", which always fires"
                            : isOne ? ", which fires whenever this one could"
                                    : ", one of which fires whenever this one could";
    warn(found, "shadowed-transition", placeAt(model, "event"),
         (which == Values::All ? "this never fires: before it "
                               : "only an infinity, NaN or a text that is no UTF-8 fires this: before it ") +
             std::string(isOne ? "comes " : "come ") +
             blame.text([&](std::size_t each) { return shownTransition(junction.transition(each)); }) + " on " +
             std::string(nameOf(model.event)) + why,
         isOne && isSame(model, junction.transition(blame.clauses.front()))
             ? "both have the same filters: leave one of them out, or change what should differ"
         : always ? "put this one before it"
         : isOne  ? "put this one before it, or give that one another filter"
                  : "put this one before them, or give one of them another filter");
}

}  // namespace

void appendShadowWarnings(Judged& machine, std::vector<Finding>& found) {
    for (std::size_t index = 0; index < machine.config.transitions.size(); ++index) {
        const Answer fires = machine.possible.canFire(index);
        const Answer holds = machine.logics[index].holds;
        if (fires == Answer::No && holds < Answer::Undecided) {
            warnOfShadow(machine, index, Values::All, found);
        } else if (fires == Answer::Unrecordable && holds == Answer::Yes) {
            warnOfShadow(machine, index, Values::Recordable, found);
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
