// Each property but those of states is a search for the shortest recording that refutes it. The modes of the search say
// what a recording has come to so far: with between_triggers, whether no event that fulfils the filters has come since
// the last trigger; with at_most, how many triggers are among the last events. A recording may take any trigger for the
// first one that counts, so that what was before needs no mode.

#include "tools/vig/test/Property.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "tools/vig/decide/Load.h"
#include "tools/vig/decide/Rehearsal.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using Option = Behaviour::Option;

constexpr std::size_t kMostShownEvents = 100;
constexpr std::size_t kMostShownNumbers = 10;

// What a search with modes looks at, so that a limit of millions does not take long.
constexpr std::size_t kMostLooks = 200'000;

// A longer recording is not made, let alone read by anybody.
constexpr std::size_t kMostSteps = 10'000;

// It refutes a property.
struct Counterexample {
    Witness witness;
    std::string what;                     // happens, of which machine
    std::vector<std::uint64_t> decisive;  // the numbers of the events to explain
};

const FilterModel* modelOf(const PropertyFilter& filter) {
    return &filter.model;
}

// Decides one property of one machine.
class MachineJudge {
  public:
    MachineJudge(const Property& property, Rehearsal& rehearsal, const ConfigModel& config, std::size_t index,
                 const Surroundings& surroundings)
        : property(property),
          rehearsal(rehearsal),
          index(index),
          config(config),
          further(modelsOf(property)),
          machine(config, surroundings, further) {}

    void judge() {
        switch (property.kind) {
            case Property::Kind::TriggerOnlyIf:
                return conclude(machine.search([this](std::size_t each, std::size_t) { return optionsOnlyIf(each); }));
            case Property::Kind::BetweenTriggers:
                return conclude(machine.search(
                    [this](std::size_t each, std::size_t mode) { return optionsBetween(each, mode == 0); }));
            case Property::Kind::AtMost:
                return judgeLimit();
            case Property::Kind::CanReach:
            case Property::Kind::CannotReach:
                break;
        }
        for (const ExpectedState& each : property.states) {
            if (each.config == config.id && isGoing()) {
                judgeState(each.state);
            }
        }
    }

    std::optional<Counterexample> counterexample;
    std::string failure;  // without one; says why the property is not true, or not decided
    std::string fault;

  private:
    static std::vector<const FilterModel*> modelsOf(const Property& property) {
        std::vector<const FilterModel*> models(property.filters.size());
        std::ranges::transform(property.filters, models.begin(), modelOf);
        return models;
    }

    bool isGoing() const { return !counterexample && failure.empty() && fault.empty(); }

    std::string name() const { return fmt::format("configs[{}] (id {})", index, config.id); }

    bool isOfType(const PropertyFilter& filter, RulesEngine::EventType type) const {
        return filter.event.value_or(type) == type;
    }

    // Adds to a question that the event does not fulfil all filters. Returns false if it can only fulfil them.
    bool addFailing(const Junction& junction, Junction::Question& question) {
        const auto isOther = [&](const PropertyFilter& each) { return !isOfType(each, junction.event()); };
        if (std::ranges::any_of(property.filters, isOther)) {
            return true;
        }
        const auto [place, isNew] = failing.try_emplace(&junction);
        for (std::size_t filter = 0; isNew && filter < further.size(); ++filter) {
            const Clause& fails = junction.furtherFails(filter);
            place->second.insert(place->second.end(), fails.begin(), fails.end());
        }
        question.clauses.push_back(&place->second);
        return !further.empty();
    }

    bool isPossible(std::size_t transition, const Junction::Question& question) {
        return machine.decide(machine.junctionOf(transition), question) == Verdict::Yes;
    }

    Junction::Question toFire(std::size_t transition) const {
        return machine.junctionOf(transition).toReach(machine.targetOf(transition));
    }

    // Returns what is decided once for each transition.
    const std::vector<Option>& known(std::map<std::size_t, std::vector<Option>>& options, std::size_t transition,
                                     const auto& decide) {
        const auto [place, isNew] = options.try_emplace(transition);
        if (isNew) {
            decide(place->second);
        }
        return place->second;
    }

    std::vector<Option> optionsOnlyIf(std::size_t transition) {
        return known(first, transition, [&](std::vector<Option>& options) {
            for (Junction::Question& way : machine.waysToTrigger(transition)) {
                if (addFailing(machine.junctionOf(transition), way) && isPossible(transition, way)) {
                    options.push_back({std::move(way), 0, true});
                }
            }
            options.push_back({toFire(transition), 0});
        });
    }

    std::vector<Option> optionsBetween(std::size_t transition, bool isBefore) {
        return known(isBefore ? first : second, transition, [&](std::vector<Option>& options) {
            const auto& several = machine.triggersOf(transition);
            if (several.count > 1) {
                options.push_back({several.question, 0, true});
            }
            for (Junction::Question& way : machine.waysToTrigger(transition)) {
                if (isPossible(transition, way)) {
                    options.push_back({std::move(way), 1, !isBefore});
                }
            }
            Junction::Question question = toFire(transition);
            if (isBefore ||
                (addFailing(machine.junctionOf(transition), question) && isPossible(transition, question))) {
                options.push_back({std::move(question), isBefore ? std::size_t{0} : std::size_t{1}});
            }
        });
    }

    void judgeLimit() {
        const std::uint64_t most = property.triggers;
        const Load load = worstLoad(machine);
        const bool isFew = load.most && *load.most <= most;
        // Two triggers are so many events apart, so that many do not fit.
        const bool areFar =
            load.distance.value_or(0) > 0 && property.events && (*property.events - 1) / *load.distance < most;
        if (load.isDecided && (isFew || areFar)) {
            return;
        }
        // Triggers that follow each other the fastest do so within as many events as there are states.
        const std::uint64_t wide = machine.stateCount() + 1;
        const bool isEver = !property.events || *property.events / wide > most;
        // No search comes to an event beyond its last look.
        const std::uint64_t window = isEver ? 0 : std::min<std::uint64_t>(*property.events, kMostLooks + 1);
        std::size_t looks = 0;
        const auto route = machine.search([&](std::size_t transition, std::size_t mode) {
            // In mode 0 nothing counts yet. The others are numbers of triggers or, in a window, of triggers and of
            // events since the first one.
            std::vector<Option> options;
            const std::uint64_t count = isEver || mode == 0 ? mode : 1 + (mode - 1) / window;
            const std::uint64_t events = isEver || mode == 0 ? 0 : 1 + (mode - 1) % window;
            if (++looks > kMostLooks || (!isEver && events == window)) {
                return options;
            }
            const auto add = [&](std::size_t more, Junction::Question question) {
                const std::uint64_t sum = count + more;
                const std::uint64_t next = isEver || sum == 0 ? sum : 1 + (sum - 1) * window + events;
                options.push_back({std::move(question), static_cast<std::size_t>(next), sum > most});
            };
            const auto& triggers = machine.triggersOf(transition);
            if (triggers.count > 0) {
                add(triggers.count, triggers.question);
            }
            // Once events count, those that trigger are never worse.
            if (triggers.count == 0 || (count == 0 && !isEver)) {
                add(0, toFire(transition));
            }
            return options;
        });
        if (route ? route->steps.size() > kMostSteps : looks > kMostLooks) {
            failure =
                fmt::format("not decided for {}: a recording with so many triggers is too long to look for", name());
            return;
        }
        conclude(route);
    }

    void judgeState(const std::string& name) {
        const auto state = machine.stateNumber(name);
        if (!state) {
            failure = fmt::format("{} has no state {}", this->name(), shownName(name));
            return;
        }
        const Answer answer = machine.reaches(*state);
        reached = *state;
        if (answer == Answer::Undecided) {
            failUndecided();
        } else if (answer == Answer::Yes) {
            conclude(machine.routeTo(*state));
        } else if (property.kind == Property::Kind::CanReach) {
            failure = fmt::format(
                "{} comes to the state {} {}", this->name(), shownName(name),
                answer == Answer::No
                    ? "by no events"
                    : "only by events that no recording has: with an infinity, a NaN or a text that is no UTF-8");
        }
    }

    void failUndecided() {
        failure = fmt::format("not decided for {}: there is more to look at than is looked at at most", name());
    }

    // The route leads to what was looked for.
    void conclude(const std::optional<Route>& route) {
        const auto plan = route ? machine.planFor(*route) : std::nullopt;
        if (!plan) {
            if (route || machine.hasGaps()) {
                failUndecided();
            }
            return;
        }
        Counterexample shown{rehearsal.play(index, *plan), {}, {}};
        if (!confirm(shown)) {
            fault = fmt::format("{}: {} events that were found do not lead there in the library", name(),
                                shown.witness.events.size());
        } else if (property.kind != Property::Kind::CanReach) {
            counterexample = std::move(shown);
        }
    }

    // Tells whether the library does what was looked for, and describes it.
    bool confirm(Counterexample& shown) const {
        const std::vector<std::uint64_t>& triggers = shown.witness.triggers;
        const std::uint64_t last = shown.witness.events.size();
        if (property.kind == Property::Kind::CanReach || property.kind == Property::Kind::CannotReach) {
            shown.decisive = {last};
            shown.what = fmt::format("{} comes to the state {}{}", name(), shownName(machine.stateName(reached)),
                                     last == 0 ? " as it starts" : "");
            const auto comes = [&](const Witness::Trial& each) {
                return each.fired && each.event == last && machine.to(each.transition) == reached;
            };
            return (last == 0 && reached == Behaviour::kStart) || std::ranges::any_of(shown.witness.trials, comes);
        }
        if (triggers.empty() || triggers.back() != last) {
            return false;
        }
        if (property.kind == Property::Kind::TriggerOnlyIf) {
            const PropertyFilter* const failed = failedBy(shown.witness.events.back());
            shown.decisive = {last};
            shown.what = fmt::format("{} triggers on event {}", name(), last);
            if (failed != nullptr) {
                shown.what += fmt::format(", for which {} is not true", conditionOf(*failed));
            }
            return failed != nullptr;
        }
        if (property.kind == Property::Kind::AtMost) {
            const auto counts = std::ranges::find_if(
                triggers, [&](std::uint64_t each) { return !property.events || last - each < *property.events; });
            const std::vector<std::uint64_t> counted(counts, triggers.end());
            shown.decisive = {last};
            shown.what = fmt::format("{} triggers {} time{}{}", name(), counted.size(), counted.size() == 1 ? "" : "s",
                                     numbersOf(counted));
            return counted.size() > property.triggers;
        }
        if (triggers.size() < 2) {
            return false;
        }
        const std::uint64_t before = triggers[triggers.size() - 2];
        shown.decisive = {before};
        if (before != last) {
            shown.decisive.push_back(last);
        }
        shown.what = before == last
                         ? fmt::format("{} triggers twice on event {}", name(), last)
                         : fmt::format("{} triggers on event {}, and on event {} without such an event between them",
                                       name(), before, last);
        for (std::uint64_t each = before; each + 1 < last; ++each) {
            if (failedBy(shown.witness.events[each]) == nullptr) {
                return false;
            }
        }
        return true;
    }

    static std::string numbersOf(const std::vector<std::uint64_t>& events) {
        const std::size_t count = std::min(events.size(), kMostShownNumbers);
        return fmt::format(", on event{} {}{}", events.size() == 1 ? "" : "s",
                           fmt::join(events.begin(), events.begin() + static_cast<std::ptrdiff_t>(count), ", "),
                           events.size() > count ? " and others" : "");
    }

    static std::string conditionOf(const PropertyFilter& filter) {
        return shownCondition(filter.model) +
               (filter.event ? fmt::format(" of {}", nameOf(*filter.event)) : std::string());
    }

    // Returns the first filter that the event does not fulfil, as the library says, or null.
    const PropertyFilter* failedBy(const EventRecord& record) const {
        const RecordedContext context(property.context);
        const RecordedEvent event(record.attributes, record.type);
        const auto fails = [&](const PropertyFilter& each) {
            return !isOfType(each, record.type) || !(*each.filter)(context, event);
        };
        const auto found = std::ranges::find_if(property.filters, fails);
        return found == property.filters.end() ? nullptr : &*found;
    }

    const Property& property;
    Rehearsal& rehearsal;
    const std::size_t index;
    const ConfigModel& config;
    const std::vector<const FilterModel*> further;
    Behaviour machine;
    std::size_t reached = 0;
    std::map<const Junction*, Clause> failing;          // that an event fails one of the filters
    std::map<std::size_t, std::vector<Option>> first;   // by transition: in mode 0
    std::map<std::size_t, std::vector<Option>> second;  // in mode 1
};

// Returns the machines of which the property speaks. If there are none, says why in `failure`.
std::vector<std::size_t> machinesOf(const Property& property, const std::vector<ConfigModel>& configs,
                                    std::string& failure) {
    std::vector<std::size_t> machines;
    const auto add = [&](std::int64_t id) {
        const auto found = std::ranges::find(configs, id, &ConfigModel::id);
        if (found == configs.end()) {
            failure = fmt::format("there is no configuration {}", id);
            return;
        }
        const auto index = static_cast<std::size_t>(found - configs.begin());
        if (std::ranges::find(machines, index) == machines.end()) {
            machines.push_back(index);
        }
    };
    if (property.config) {
        add(*property.config);
    } else if (!property.states.empty()) {
        for (const ExpectedState& each : property.states) {
            add(each.config);
        }
    } else {
        for (std::size_t index = 0; index < configs.size(); ++index) {
            machines.push_back(index);
        }
    }
    return machines;
}

// Shows the counterexample as a failed test shows what happened.
std::vector<std::string> linesOf(const Counterexample& shown) {
    std::vector<std::string> lines = {"  " + printable(shown.what) + (shown.witness.events.empty() ? "" : ":")};
    const std::size_t count = shown.witness.events.size();
    for (std::size_t index = 0; index < std::min(count, kMostShownEvents); ++index) {
        lines.push_back("    " + jsonOf(shown.witness.events[index]));
    }
    if (count > kMostShownEvents) {
        lines.push_back(fmt::format("    and {} more events", count - kMostShownEvents));
    }
    if (!shown.witness.draws.empty()) {
        lines.push_back(fmt::format("  draws {}", fmt::join(shown.witness.draws, ", ")));
    }
    return lines;
}

}  // namespace

TestOutcome checkProperty(const std::string& rules, const Property& property, const Interruption& interruption) {
    std::string text;
    TestOutcome outcome = loadRules(rules, interruption, text);
    if (outcome.loading != RuleSession::Loading::Done) {
        return outcome;
    }
    std::optional<Counterexample> counterexample;
    std::size_t machine = 0;
    {
        const VIGParserConfig registry = libraryRegistry();
        const Catalogue& catalogue = Catalogue::builtIn();
        Effort effort{.interruption = &interruption};
        const DocumentModel document({}, std::move(text));
        Rehearsal rehearsal(document.configs, property.context);
        const Surroundings surroundings{registry, catalogue, property.context, effort};
        std::string failure;
        for (const std::size_t index : machinesOf(property, document.configs, failure)) {
            MachineJudge judge(property, rehearsal, document.configs[index], index, surroundings);
            judge.judge();
            if (!judge.fault.empty()) {
                outcome.fault = std::move(judge.fault);
                return outcome;
            }
            if (judge.counterexample) {
                machine = index;
                counterexample = std::move(judge.counterexample);
                break;
            }
            failure = failure.empty() ? judge.failure : failure;
        }
        if (!counterexample) {
            if (!failure.empty()) {
                outcome.failure = {"  " + printable(failure)};
            }
            return outcome;
        }
    }
    // What is explained has a session of its own.
    outcome.failure = linesOf(*counterexample);
    TestCase replayed;
    replayed.events = std::make_shared<std::vector<EventRecord>>(counterexample->witness.events);
    replayed.draws.numbers = counterexample->witness.draws;
    replayed.context = property.context;
    for (const std::uint64_t event : counterexample->decisive) {
        const Divergence divergence{.kind = Divergence::Kind::Event, .event = event, .machine = machine};
        for (std::string& line : explain(rules, replayed, divergence, interruption)) {
            outcome.failure.push_back(std::move(line));
        }
    }
    outcome.event = counterexample->decisive.back();
    outcome.machine = machine;
    outcome.refutation = std::move(replayed);
    return outcome;
}

}  // namespace Brenta::OS::VIG::Tool
