// A rule that waits for a second event before it asks for a collection means two events of one process. Nothing makes
// sure of that but filters on the name.
//
// The search goes along events that move the machine, and remembers of the way so far only this: whether every event
// was bound to a name by filters, or one was not, or two of which one was not. Names that an author has bound are meant
// to be as they are. A way that comes back to "start" has been forgotten, and an event after which the machine waits
// where it was has armed nothing.
#include "tools/vig/check/Warnings.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>

#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::string_view kProcessName = "processName";

FilterModel isNamed(const std::string& name) {
    return {{},
            FilterOperator::Equal,
            FilterValueType::String,
            {{}, {FilterOperand::Type::Envvar, std::string(kProcessName)}},
            {{}, {FilterOperand::Type::Constant, name}},
            nullptr};
}

// Tells whether the filter alone does so, as most do.
bool bindsName(const FilterModel& filter) {
    const NormalFilter normal = normalFormOf(filter);
    return filter.valueType == FilterValueType::String && normal.op == FilterOperator::Equal &&
           isAttribute(normal.left) && normal.left.operand.value == kProcessName && isConstant(normal.right) &&
           !normal.right.operand.value.empty();
}

bool looksAtName(const FilterModel& filter) {
    const NormalFilter normal = normalFormOf(filter);
    return (isAttribute(normal.left) && normal.left.operand.value == kProcessName) ||
           (isAttribute(normal.right) && normal.right.operand.value == kProcessName);
}

std::string nameIn(const EventRecord& record) {
    return std::string(record.attributes.find<std::string_view>(kProcessName).value_or(""));
}

class ProcessSearch {
  public:
    ProcessSearch(Judged& machine, std::vector<Finding>& found)
        : machine(machine), behaviour(machine.shown), transitions(machine.config.transitions), found(found) {
        bindings.resize(transitions.size());
    }

    void search() {
        const auto route =
            behaviour.search([this](std::size_t transition, std::size_t mode) { return optionsOf(transition, mode); });
        if (route) {
            report(*route);
        }
    }

  private:
    enum class Binding { NoName, OneName, AnyName };
    enum Mode : std::size_t { Nothing, Bound, Open, Mixed };

    std::vector<Behaviour::Option> optionsOf(std::size_t transition, std::size_t mode) {
        const std::size_t to = behaviour.to(transition);
        const Chain& chain = behaviour.chainFrom(to);
        const bool leadsOn = to != Behaviour::kStart && std::ranges::any_of(chain.rests, [&](std::size_t stop) {
                                 const std::size_t state = chain.stops[stop].state;
                                 return state != Behaviour::kStart && state != behaviour.from(transition);
                             });
        const auto ways = behaviour.waysToTrigger(transition);
        const Catalogue& catalogue = machine.surroundings.catalogue;
        if ((!leadsOn && ways.empty()) ||
            !catalogue.promises(transitions[transition].event, kProcessName, AttributeKind::String)) {
            return {};
        }
        const Binding binding = bindingOf(transition);
        if (binding == Binding::NoName) {
            return {};
        }
        const std::size_t next = mode == Nothing ? (binding == Binding::OneName ? Bound : Open)
                                 : mode == Bound && binding == Binding::OneName ? Bound
                                                                                : Mixed;
        std::vector<Behaviour::Option> options;
        for (const Junction::Question& way : ways) {
            if (next == Mixed && behaviour.decide(behaviour.junctionOf(transition), way) == Verdict::Yes) {
                options.push_back({way, next, true});
            }
        }
        if (leadsOn) {
            options.push_back({behaviour.junctionOf(transition).toReach(behaviour.targetOf(transition)), next});
        }
        return options;
    }

    // Returns of what processes events can be that fire the transition.
    Binding bindingOf(std::size_t transition) {
        std::optional<Binding>& known = bindings[transition];
        if (!known) {
            known = findBinding(transition);
        }
        return *known;
    }

    Binding findBinding(std::size_t transition) {
        if (std::ranges::any_of(transitions[transition].filters, bindsName)) {
            return Binding::OneName;
        }
        const Junction& junction = behaviour.junctionOf(transition);
        const auto event = junction.eventFor(junction.toReach(behaviour.targetOf(transition)), behaviour.budget());
        if (!event) {
            return Binding::NoName;
        }
        const std::string name = nameIn(*event);
        if (name.empty() && std::ranges::none_of(transitions[transition].filters, looksAtName)) {
            return Binding::AnyName;
        }
        const FilterModel named = isNamed(name);
        const FilterModel* const further[] = {&named};
        std::vector<const TransitionModel*> listening;
        const Junction::Target target = behaviour.targetOf(transition);
        for (std::size_t index = 0; index <= target.transition; ++index) {
            listening.push_back(&junction.transition(index));
        }
        const Junction extended(listening, junction.event(), further, machine.surroundings);
        Junction::Question question = extended.toReach(target);
        question.clauses.push_back(&extended.furtherFails(0));
        question.clauses.push_back(&extended.present(AttributeKind::String, kProcessName));
        return behaviour.decide(extended, question) == Verdict::Yes ? Binding::AnyName
               : name.empty()                                       ? Binding::NoName
                                                                    : Binding::OneName;
    }

    // Returns the action that asks for a collection in that of the ways to trigger, which are in the order of the
    // table.
    static const ActionModel& actionOf(const TransitionModel& transition, std::ptrdiff_t way) {
        std::vector<const ActionModel*> asking;
        for (const KnownAction& known : kActions) {
            const auto action = std::ranges::find(transition.actions, known.name, &ActionModel::key);
            if (known.startsCollection && action != transition.actions.end()) {
                asking.push_back(&*action);
            }
        }
        return *asking[static_cast<std::size_t>(way)];
    }

    // Lets one of two events have another name than the other one.
    void report(const Route& route) {
        const auto isOpen = [&](const RouteStep& each) { return bindingOf(each.transition) == Binding::AnyName; };
        const std::size_t last = route.steps.size() - 1;
        const std::size_t open =
            last - static_cast<std::size_t>(std::find_if(route.steps.rbegin(), route.steps.rend(), isOpen) -
                                            route.steps.rbegin());
        const std::size_t other = open == last ? last - 1 : last;
        const auto ways = behaviour.waysToTrigger(route.steps.back().transition);
        const auto way = std::ranges::find(ways, route.steps.back().question) - ways.begin();
        const ActionModel& action = actionOf(transitions[route.steps.back().transition], way);
        const auto event = behaviour.junctionOf(route.steps[other].transition)
                               .eventFor(route.steps[other].question, behaviour.budget());
        const std::string name = event ? nameIn(*event) : "";
        const FilterModel named = isNamed(name.empty() ? "app" : name);
        const FilterModel plain = isNamed(name == "camera" ? "app" : "camera");
        const FilterModel* const further[] = {&named, &plain};
        Behaviour extended(machine.config, machine.surroundings, further);
        Route mixed{route.startStop, {}};
        for (std::size_t index = 0; index <= last; ++index) {
            RouteStep step = route.steps[index];
            const Junction& junction = extended.junctionOf(step.transition);
            step.question = index == last ? extended.waysToTrigger(step.transition)[static_cast<std::size_t>(way)]
                                          : junction.toReach(step.target);
            if (index == open || index == other) {
                step.question.clauses.push_back(&junction.present(AttributeKind::String, kProcessName));
                step.question.clauses.push_back(index == other ? &junction.furtherHolds(0) : &junction.furtherHolds(1));
                if (index == open && extended.decide(junction, step.question) != Verdict::Yes) {
                    step.question.clauses.back() = &junction.furtherFails(0);
                }
            }
            mixed.steps.push_back(std::move(step));
        }
        const auto plan = extended.planFor(mixed);
        machine.wasCut = machine.wasCut || extended.hasGaps();
        const auto isConfirmed = [&](const Witness& witness) {
            for (std::size_t index = 0; index <= last; ++index) {
                if (!witness.fires(route.steps[index].transition, index + 1)) {
                    return false;
                }
            }
            return std::ranges::count(witness.triggers, last + 1) > 0 &&
                   nameIn(witness.events[open]) != nameIn(witness.events[other]);
        };
        const auto witness =
            machine.evidence.show(machine.index, plan, "mixed-processes at " + action.place.path, isConfirmed);
        if (!witness && !machine.evidence.isUsedUp()) {
            machine.wasCut = true;
            return;
        }
        const auto shownStep = [&](std::size_t step) {
            return shownTransition(transitions[route.steps[step].transition]);
        };
        warn(found, "mixed-processes", action.place,
             "the events that lead to " + shownQuoted(action.name) +
                 " may come from different processes: " + shownStep(std::min(open, other)) + " fires for one, and " +
                 shownStep(std::max(open, other)) + " for another",
             "add the same filter on processName to both of them");
        found.back().witness = witness;
    }

    Judged& machine;
    Behaviour& behaviour;
    const std::vector<TransitionModel>& transitions;
    std::vector<Finding>& found;
    std::vector<std::optional<Binding>> bindings;
};

}  // namespace

void appendProcessWarnings(Judged& machine, std::vector<Finding>& found) {
    for (std::size_t index = 0; index < machine.config.transitions.size(); ++index) {
        if (!machine.shown.waysToTrigger(index).empty()) {
            ProcessSearch(machine, found).search();
            return;
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
