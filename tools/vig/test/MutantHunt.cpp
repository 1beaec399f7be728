// A mutant costs no more than what differs: its machines share all filters and actions with those of the document, and
// only those tests are run in which a machine is offered an event of the type, in the state, whose transition has
// changed. What they do not notice is compared with the document, and then, if that can be seen, shown to the
// properties.

#include "tools/vig/test/MutantHunt.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <numeric>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "rulesengine/State.h"
#include "rulesengine/Transition.h"
#include "tools/vig/diff/MachineDiff.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/io/FileText.h"
#include "tools/vig/run/MachineGroup.h"
#include "tools/vig/run/PlatformServices.h"
#include "tools/vig/test/Expectation.h"
#include "tools/vig/test/Mutants.h"
#include "tools/vig/test/Property.h"
#include "tools/vig/test/TestRun.h"
#include "tools/vig/test/TestText.h"
#include "tools/vig/words/Text.h"
#include "vig/parsers/FilterParser.h"
#include "vig/parsers/VIGResponseParser.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using RulesEngine::Action;
using RulesEngine::EventType;
using RulesEngine::Filter;
using RulesEngine::FiniteStateMachine;
using RulesEngine::State;
using RulesEngine::Transition;

constexpr std::uint64_t kEffortOfMutant = 1'000'000;
constexpr double kDrawOfOthers = 0.5;
constexpr std::size_t kMostShownOfEvent = 300;
constexpr std::size_t kMostShownDoings = 3;

using Machines = MachineGroup::Configs;

// Learns in which states machines are offered events of a type, be it on the way to another one.
class Visits final : public Trace {
  public:
    struct Visit {
        std::size_t machine;
        std::string_view state;
        EventType type;

        auto operator<=>(const Visit&) const = default;  // NOLINT(modernize-use-nullptr): it takes it for a 0
    };

    void loaded(const DocumentModel& /*document*/) override {}

    // No step tells that a state was entered in which nothing listens for that.
    void step(const Step& step) override {
        all.insert({step.machine.index, step.state, step.type});
        if (step.fired()) {
            all.insert({step.machine.index, step.attempts.back().transition->to, EventType::EnteringState});
        }
    }

    std::set<Visit> all;
};

// Learns what is logged.
class LogLines final : public NoReport {
  public:
    struct Line {
        int priority;
        std::string message;
    };

    void log(const LogLine& line) override { lines.push_back({line.priority, std::string(line.message)}); }

    std::vector<Line> lines;
};

// Keeps all that can be seen of a run.
class Doings final : public NoReport {
  public:
    struct Doing {
        std::uint64_t event;
        std::string shown;
        std::string details;

        bool operator==(const Doing&) const = default;
    };

    std::vector<Doing> all;

    void trigger(const TriggerLine& line) override {
        all.push_back({line.event, "triggers " + shownQuoted(line.name),
                       fmt::format(" of {} with {}", inQuotes(line.processName.value_or("")),
                                   jsonArray(line.metadata, inQuotes))});
    }

    void log(const LogLine& line) override {
        all.push_back({line.event, "logs " + shownQuoted(line.message), fmt::format(" ({})", line.priority)});
    }

    std::string at(std::uint64_t event, bool inDetail) const {
        std::vector<std::string> shown;
        std::size_t more = 0;
        for (const Doing& each : all) {
            if (each.event == event && shown.size() < kMostShownDoings) {
                shown.push_back(each.shown + (inDetail ? each.details : ""));
            } else {
                more += each.event == event ? 1 : 0;
            }
        }
        return shown.empty()
                   ? "nothing"
                   : fmt::format("{}{}", fmt::join(shown, ", "), more > 0 ? fmt::format(" and {} more", more) : "");
    }
};

Machines parse(const DocumentModel& document, const VIGParserConfig& registry) {
    return std::move(*VIGResponseParser().parse(document.text.root(), registry).value);
}

// Makes machines of mutants.
class MutantMachines {
  public:
    // Machines draw from `draw`. The library accepts the document, which must outlive it. REQUIRES: PlatformServices
    // exist.
    MutantMachines(const DocumentModel& document, const std::function<double()>& draw)
        : document(document), registry(withDraws(libraryRegistry(), draw)), parsed(parse(document, registry)) {
        for (std::size_t machine = 0; machine < parsed.size(); ++machine) {
            auto* const states = parsed[machine]->getConfigPayload()->getFiniteStateMachine();
            auto& ofMachine = transitions.emplace_back();
            std::map<std::string_view, std::size_t> taken;  // so many transitions of each state
            for (const TransitionModel& model : document.configs[machine].transitions) {
                const auto& all = states->getStateByName(model.from)->getTransitions();
                const Transition* const transition = all[taken[model.from]++].get();
                ofMachine.push_back(transition);
                for (std::size_t index = 0; index < model.filters.size(); ++index) {
                    filters.emplace(model.filters[index].json, transition->getFilters()[index]);
                }
                for (std::size_t index = 0; index < model.actions.size(); ++index) {
                    actions.emplace(model.actions[index].place.begin, transition->getActions()[index]);
                }
            }
        }
    }

    // Returns all machines of the document, one of them as the mutant has it if there is one.
    Machines make(const Mutant* mutant) const {
        Machines made;
        for (std::size_t index = 0; index < parsed.size(); ++index) {
            auto machine = std::make_unique<FiniteStateMachine>();
            fill(*machine, index, mutant != nullptr && mutant->machine == index ? mutant : nullptr);
            made.push_back(std::make_unique<VIGConfig>(
                parsed[index]->getConfigId(),
                std::make_unique<VIGConfigPayload>(parsed[index]->getConfigPayload()->getConfigPayloadId(),
                                                   std::move(machine))));
        }
        return made;
    }

    const VIGParserConfig& names() const { return registry; }

  private:
    void fill(FiniteStateMachine& machine, std::size_t index, const Mutant* mutant) const {
        const ConfigModel& config = document.configs[index];
        for (std::size_t each = 0; each < config.transitions.size(); ++each) {
            const Mutant::Change* const change = mutant != nullptr ? changeOf(*mutant, each) : nullptr;
            if (change == nullptr) {
                const Transition& own = *transitions[index][each];
                machine.addTransition(config.transitions[each].from, config.transitions[each].to, own.getEventType(),
                                      own.getFilters(), own.getActions());
            } else if (change->second) {
                add(machine, *change->second);
            }
        }
    }

    // A mutant has nothing that the library refuses.
    void add(FiniteStateMachine& machine, const TransitionModel& model) const {
        std::vector<std::shared_ptr<Filter>> itsFilters;
        for (const FilterModel& each : model.filters) {
            const auto known = filters.find(each.json);
            itsFilters.push_back(known != filters.end() ? known->second : _parseFilter(*each.json, registry));
        }
        std::vector<std::shared_ptr<Action>> itsActions;
        for (const ActionModel& each : model.actions) {
            itsActions.push_back(actions.at(each.place.begin));
        }
        machine.addTransition(model.from, model.to, model.event, std::move(itsFilters), std::move(itsActions));
    }

    const DocumentModel& document;
    const VIGParserConfig registry;
    const Machines parsed;
    std::vector<std::vector<const Transition*>> transitions;  // by machine and place in the document
    std::unordered_map<const Json::Value*, std::shared_ptr<Filter>> filters;
    std::unordered_map<std::size_t, std::shared_ptr<Action>> actions;  // by their place in the text
};

// It is one that no test has noticed, and that differs.
struct Survivor {
    Mutant mutant;
    Plan plan;
    AttributeSet context;
    std::optional<MutantScore::NewTest> test = {};  // that notices it, if there is one
};

class MutantHunt {
  public:
    MutantHunt(const DocumentModel& document, const std::string& name, const std::vector<const TestCase*>& tests,
               const std::vector<LogLines::Line>& parsing, const Interruption& interruption)
        : document(document),
          name(name),
          tests(shortestFirst(tests)),
          parsing(parsing),
          interruption(interruption),
          group(context, check, nullptr),
          services(std::in_place, group),
          machines(document, [this] { return draw(); }) {
        contexts.emplace_back();
        for (const TestCase* const each : tests) {
            if (std::ranges::find(contexts, each->context) == contexts.end()) {
                contexts.push_back(each->context);
            }
        }
        noteVisits();
    }

    MutantScore hunt(const std::vector<const Property*>& properties, bool isToWrite) {
        forEachMutant(document, [this](const Mutant& mutant) {
            judge(mutant);
            return !interruption.requested();
        });
        // The properties bring the library's services along.
        services.reset();
        std::erase_if(survivors, [&](const Survivor& each) {
            const bool isNoticed = breaksAnyOf(properties, each.mutant);
            score.noticed += isNoticed ? 1 : 0;
            return isNoticed || interruption.requested();
        });
        services.emplace(group);
        score.survived = survivors.size();
        for (Survivor& each : survivors) {
            if (interruption.requested()) {
                break;
            }
            show(each, isToWrite);
        }
        if (isToWrite) {
            chooseTests();
        }
        return std::move(score);
    }

  private:
    static std::vector<const TestCase*> shortestFirst(std::vector<const TestCase*> tests) {
        std::ranges::stable_sort(tests, {}, [](const TestCase* each) { return each->events->size(); });
        return tests;
    }

    // Notes in which tests of the unchanged document a machine is offered which events in which states.
    void noteVisits() {
        Visits visits;
        Tracer tracer(visits);
        NoReport report;
        MachineGroup traced(context, report, &tracer);
        const PlatformServices::OnThread receiver(traced);
        const auto registry = tracer.registryFrom(machines.names());
        traced.adopt(tracer.watch(document.configs, parse(document, registry)));
        for (std::size_t index = 0; index < tests.size(); ++index) {
            visits.all.clear();
            for (std::size_t machine = 0; machine < document.configs.size(); ++machine) {
                visits.all.insert({machine, State::START_STATE, EventType::EnteringState});
            }
            context = tests[index]->context;
            draw = tests[index]->draws.source();
            traced.startAnew();
            for (const EventRecord& each : *tests[index]->events) {
                traced.offer(each);
            }
            for (const auto& [machine, state, type] : visits.all) {
                visitors[{machine, std::string(state), type}].insert(index);
            }
        }
    }

    void judge(const Mutant& mutant) {
        const std::set<std::size_t> concerned = concernedBy(mutant);
        if (!concerned.empty()) {
            group.adopt(machines.make(&mutant));
        }
        if (!std::ranges::all_of(concerned, [this](std::size_t test) { return passes(*tests[test]); })) {
            ++score.noticed;
            return;
        }
        compare(mutant);
    }

    // Returns the tests in which the transitions that have changed are tried, or would be.
    std::set<std::size_t> concernedBy(const Mutant& mutant) const {
        std::set<std::size_t> concerned;
        for (const auto& [index, changed] : mutant.changes) {
            const TransitionModel& own = document.configs[mutant.machine].transitions[index];
            for (const EventType type : {own.event, changed ? changed->event : own.event}) {
                if (const auto found = visitors.find({mutant.machine, own.from, type}); found != visitors.end()) {
                    concerned.insert(found->second.begin(), found->second.end());
                }
            }
        }
        return concerned;
    }

    // Tells whether the machines of the group pass a test.
    bool passes(const TestCase& test) {
        check.begin(test.expect);
        for (const LogLines::Line& each : parsing) {
            check.log({0, each.priority, {}, each.message});
        }
        context = test.context;
        draw = test.draws.source();
        group.startAnew();
        for (const EventRecord& each : *test.events) {
            if (check.failed() || interruption.requested()) {
                return false;
            }
            group.offer(each);
        }
        check.end(group.summary());
        return !check.failed();
    }

    void compare(const Mutant& mutant) {
        const ConfigModel config = configOf(mutant);
        bool isUndecided = false;
        bool isUnrecordable = false;
        for (std::size_t each = 0; each < contexts.size(); ++each) {
            MachineDiff diff = differ(mutant.machine, each).to(config);
            if (diff.verdict == MachineDiff::Verdict::Different) {
                survivors.push_back({mutant, std::move(diff.plan), contexts[each]});
                return;
            }
            isUndecided |= diff.verdict == MachineDiff::Verdict::Undecided;
            isUnrecordable |= diff.verdict == MachineDiff::Verdict::Unrecordable;
        }
        ++(isUndecided ? score.undecided : isUnrecordable ? score.unrecordable : score.equivalent);
    }

    Differ& differ(std::size_t machine, std::size_t contextIndex) {
        effort = {kEffortOfMutant, &interruption};
        auto& place = differs[{machine, contextIndex}];
        if (!place) {
            const Surroundings& ofContext =
                surroundings.emplace_back(Surroundings{machines.names(), catalogue, contexts[contextIndex], effort});
            place = std::make_unique<Differ>(document.configs[machine], ofContext, Differ::States::Ignored,
                                             Differ::Words::None);
        }
        return *place;
    }

    bool breaksAnyOf(const std::vector<const Property*>& properties, const Mutant& mutant) {
        if (properties.empty()) {
            return false;
        }
        std::string problem;
        const auto rules = fileInMemory(textOf(mutant, document), problem);
        return rules && std::ranges::any_of(properties, [&](const Property* each) {
                   return !checkProperty(pathOf(*rules), *each, interruption).failure.empty();
               });
    }

    // Has machines do what the recording says, with everything that they do in the report.
    void replay(Machines made, const std::vector<EventRecord>& events, const AttributeSet& itsContext, Report& report,
                const std::function<double(std::size_t machine, std::size_t event)>& source) {
        MachineGroup replaying(itsContext, report, nullptr);
        const PlatformServices::OnThread receiver(replaying);
        replaying.adopt(std::move(made));
        draw = [&] { return source(replaying.drivenIndex(), replaying.eventCount()); };
        replaying.start();
        for (const EventRecord& each : events) {
            replaying.offer(each);
        }
        report.end(replaying.summary());
    }

    // Replays the plan, of which the other machines draw numbers of their own. Returns all draws, as one list.
    std::vector<double> replay(const Survivor& survivor, const Mutant* mutant, Report& report) {
        std::vector<double> draws;
        std::size_t drawn = 0;
        std::size_t current = 0;
        replay(machines.make(mutant), survivor.plan.events, survivor.context, report,
               [&](std::size_t machine, std::size_t event) {
                   drawn = std::exchange(current, event) == event ? drawn : 0;
                   const std::vector<double>& planned = survivor.plan.draws[event];
                   const bool isPlanned = machine == survivor.mutant.machine && drawn < planned.size();
                   return draws.emplace_back(isPlanned ? planned[drawn++] : kDrawOfOthers);
               });
        while (draws.size() > 1 && draws[draws.size() - 1] == draws[draws.size() - 2]) {
            draws.pop_back();
        }
        return draws;
    }

    // Returns what a test of the recording expects if it is written for these machines.
    std::vector<std::string> expectationOf(const TestCase& test, const Mutant* mutant) {
        ExpectationWriter expected;
        for (const LogLines::Line& each : parsing) {
            expected.log({0, each.priority, {}, each.message});
        }
        const auto source = test.draws.source();
        replay(machines.make(mutant), *test.events, test.context, expected,
               [&](std::size_t, std::size_t) { return source(); });
        return expected.lines();
    }

    void show(Survivor& survivor, bool isToWrite) {
        const Mutant& mutant = survivor.mutant;
        const auto position = document.text.source().positionOf(mutant.place.begin);
        const std::string place = fmt::format("{}:{}:{}", printable(name), position.line, position.column);
        Doings before;
        Doings after;
        const auto draws = std::to_array({replay(survivor, nullptr, before), replay(survivor, &mutant, after)});
        const auto [first, other] = std::ranges::mismatch(before.all, after.all);
        if (first == before.all.end() && other == after.all.end()) {
            score.fault = fmt::format("the library does not show by {} events that {} [{}]",
                                      survivor.plan.events.size(), mutant.what, mutant.place.path);
            return;
        }
        score.lines.push_back(
            fmt::format("{}: survived: {} [{}]", place, printable(mutant.what), printable(mutant.place.path)));
        std::uint64_t event = first != before.all.end() ? first->event : other->event;
        if (first != before.all.end() && other != after.all.end()) {
            event = std::min(event, other->event);
        }
        const bool isDrawn = !draws[0].empty() || !draws[1].empty();
        if (isToWrite || isDrawn) {
            makeTest(survivor, draws);
        }
        describe(survivor, event, before, after);
        if (isDrawn && !survivor.test) {
            score.lines.push_back("    no test can notice it, since the draws of a test are one list");
        }
    }

    void describe(const Survivor& survivor, std::uint64_t event, const Doings& before, const Doings& after) {
        const std::vector<EventRecord>& events = survivor.plan.events;
        std::string when = "  it shows as the machine starts";
        if (event > 0) {
            when = fmt::format("  it shows by {} {}",
                               event == 1 ? "1 event," : fmt::format("{} events, the last one", event),
                               shortened(printable(jsonOf(events[event - 1])), kMostShownOfEvent));
        }
        if (survivor.test && !survivor.test->test.draws.numbers.empty()) {
            when += fmt::format(", with the draws {}", fmt::join(survivor.test->test.draws.numbers, ", "));
        }
        if (survivor.context != AttributeSet()) {
            when += ", in the context " + printable(jsonOf(survivor.context));
        }
        const bool inDetail = before.at(event, false) == after.at(event, false);
        score.lines.push_back(std::move(when));
        score.lines.push_back("    unchanged: " + printable(before.at(event, inDetail)));
        score.lines.push_back("    changed:   " + printable(after.at(event, inDetail)));
    }

    // A test has one list of draws for all machines and events. Where one of the two machines draws more than the
    // other, no list may be left that shows the difference.
    void makeTest(Survivor& survivor, std::span<const std::vector<double>> lists) {
        TestCase test;
        test.name = "notices that " + printable(survivor.mutant.what);
        test.events = std::make_shared<std::vector<EventRecord>>(survivor.plan.events);
        test.context = survivor.context;
        for (const std::vector<double>& each : lists) {
            test.draws.numbers = each;
            std::vector<std::string> expected = expectationOf(test, nullptr);
            if (expected != expectationOf(test, &survivor.mutant)) {
                survivor.test = MutantScore::NewTest{std::move(test), std::move(expected)};
                return;
            }
        }
    }

    // Takes the tests with the longest recordings first, which notice much on their way.
    void chooseTests() {
        std::vector<std::size_t> order(survivors.size());
        std::iota(order.begin(), order.end(), 0);
        std::ranges::stable_sort(order, std::greater<>(),
                                 [this](std::size_t each) { return survivors[each].plan.events.size(); });
        std::set<std::size_t> chosen;
        for (const std::size_t each : order) {
            const Survivor& survivor = survivors[each];
            const auto notices = [&](std::size_t index) {
                const MutantScore::NewTest& test = *survivors[index].test;
                return expectationOf(test.test, &survivor.mutant) != test.expected;
            };
            if (survivor.test && !interruption.requested() && std::ranges::none_of(chosen, notices)) {
                chosen.insert(each);
            }
        }
        for (std::size_t index = 0; index < survivors.size(); ++index) {
            if (chosen.contains(index)) {
                score.tests.push_back(std::move(*survivors[index].test));
            }
        }
    }

    const DocumentModel& document;
    const std::string& name;
    const std::vector<const TestCase*> tests;    // the shortest ones first, as most mutants are noticed by several
    const std::vector<LogLines::Line>& parsing;  // what is logged before the machines start
    const Interruption& interruption;
    MutantScore score;
    std::vector<Survivor> survivors;
    // The tests, by machine, state and the type of an event that is offered there.
    std::map<std::tuple<std::size_t, std::string, EventType>, std::set<std::size_t>> visitors;

    AttributeSet context;  // of the test that runs
    std::function<double()> draw;
    ExpectationCheck check;
    MachineGroup group;
    std::optional<PlatformServices> services;
    MutantMachines machines;

    std::vector<AttributeSet> contexts;  // the empty one, and those of the tests
    const Catalogue& catalogue = Catalogue::builtIn();
    Effort effort;
    std::deque<Surroundings> surroundings;
    std::map<std::pair<std::size_t, std::size_t>, std::unique_ptr<Differ>> differs;  // by machine and context
};

}  // namespace

MutantScore huntMutants(const std::string& rules, const std::string& name, const std::vector<const TestCase*>& tests,
                        const std::vector<const Property*>& properties, bool isToWrite,
                        const Interruption& interruption) {
    LogLines parsing;
    std::string text;
    {
        RuleSession session(rules, {}, {}, parsing, nullptr);
        if (session.load(RuleSession::Changes::Ignore, interruption) != RuleSession::Loading::Done) {
            return {};
        }
        text = session.document().text.source().text();
    }
    const DocumentModel document(name, std::move(text));
    return MutantHunt(document, name, tests, parsing.lines, interruption).hunt(properties, isToWrite);
}

}  // namespace Brenta::OS::VIG::Tool
