// For each thing that coverage counts, the shortest recording that reaches it is a candidate. The longest ones are
// taken first, since they reach much on their way, and what those that were taken have reached needs no other. What a
// test expects is what the library does with its recording.

#include "tools/vig/test/Generate.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/decide/Rehearsal.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/findings/FindingWriters.h"
#include "tools/vig/io/FileText.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/test/Coverage.h"
#include "tools/vig/test/TestRun.h"
#include "tools/vig/test/TestText.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

constexpr std::size_t kMostEvents = 100'000;  // in all recordings together

const std::string kFault = "a fault of vig: the library does otherwise than was decided: ";

// It is one thing to reach.
struct Goal {
    Coverage::Target target;
    std::string name;  // of a test for it
    Answer answer;
    std::optional<std::size_t> events = {};  // of its recording, if one that another goal needs does not lead here, too
    std::optional<Witness> witness = {};     // unless that of another goal has reached it
    bool isLeftOut = false;                  // since its recording would be too long
    std::vector<std::size_t> reached = {};   // the goals that this witness was the first to reach
};

// Decides what can be reached, and how. It stands in for the platform as long as it lives.
class GoalFinder {
  public:
    GoalFinder(std::string text, const Interruption& interruption)
        : effort{.interruption = &interruption}, document({}, std::move(text)), rehearsal(document.configs, context) {
        for (const ConfigModel& config : document.configs) {
            Behaviour& machine = machines.emplace_back(config, surroundings);
            auto& firsts = firstGoals.emplace_back();
            for (std::size_t index = 0; index < config.transitions.size(); ++index) {
                firsts.push_back(goals.size());
                addGoalsOf(machine, index);
            }
        }
        isReached.resize(goals.size());
        std::vector<Goal*> byLength;
        for (Goal& each : goals) {
            if (each.events) {
                byLength.push_back(&each);
            }
        }
        // Of two as long, what a machine does after the event is on the way of more.
        std::ranges::stable_sort(byLength, std::greater<>(), [this](const Goal* each) {
            const ConfigModel& config = machines[each->target.machine].config();
            const bool isAfter = config.transitions[each->target.transition].event == EventType::EnteringState;
            return std::pair(*each->events, isAfter);
        });
        std::size_t rest = kMostEvents;
        for (Goal* const each : byLength) {
            const auto number = static_cast<std::size_t>(each - goals.data());
            if (isReached[number] || interruption.requested()) {
                continue;
            }
            each->isLeftOut = *each->events > rest;
            if (each->isLeftOut) {
                continue;
            }
            rest -= *each->events;
            rehearse(*each);
            if (each->witness) {
                rehearsed.push_back(number);
            }
            if (each->answer == Answer::Yes && !isReached[number]) {
                fault = each->name;
            }
        }
    }

    std::vector<Goal> goals;             // in the order of coverage
    std::vector<std::size_t> rehearsed;  // those with a witness, in the order in which tests of them are to be made
    std::string fault;                   // names the test that does not go as was decided; empty if there is none

  private:
    void addGoalsOf(Behaviour& machine, std::size_t index) {
        const TransitionModel& transition = machine.config().transitions[index];
        const std::string way = fmt::format("{} -> {} on {}", shownName(transition.from), shownName(transition.to),
                                            nameOf(transition.event));
        const auto add = [&](std::optional<std::size_t> filter, bool outcome, const std::string& name, Answer answer) {
            goals.push_back({{machines.size() - 1, index, filter, outcome}, name, answer});
        };
        const Answer fires = machine.fires(index);
        add(std::nullopt, true, nameOfTest({way + " fires", way + " fires in " + transition.place.path}), fires);
        if (fires == Answer::Yes) {
            goals.back().events = machine.eventsUntilTried(index);
        }
        for (std::size_t filter = 0; filter < transition.filters.size(); ++filter) {
            const FilterModel& model = transition.filters[filter];
            for (const bool outcome : {true, false}) {
                const std::string condition = shownCondition(model);
                const std::string name =
                    nameOfTest({fmt::format("`{}` is {}", condition, outcome),
                                fmt::format("`{}` of {} is {}", condition, way, outcome),
                                fmt::format("`{}` is {} in {}", condition, outcome, model.place.path)});
                // Where the transition fires, all its filters are true.
                if (outcome && fires == Answer::Yes) {
                    add(filter, outcome, name, fires);
                    continue;
                }
                add(filter, outcome, name, machine.sees(index, filter, outcome));
                if (goals.back().answer == Answer::Yes) {
                    goals.back().events = machine.eventsUntilTried(index);
                }
            }
        }
    }

    // Returns the first that no other test has. The last one is unique.
    std::string nameOfTest(const std::vector<std::string>& possible) {
        std::string name;
        for (const std::string& each : possible) {
            name = printable(each);
            if (names.insert(name).second) {
                break;
            }
        }
        return name;
    }

    // Adds to the route that each event has what the actions need, as far as it can. A test of what they do without
    // tells less.
    static void enrich(Behaviour& machine, Route& route) {
        for (RouteStep& each : route.steps) {
            const auto& triggers = machine.triggersOf(each.transition);
            if (!each.target.filter && triggers.count > 0) {
                each.question = triggers.question;
            }
        }
    }

    // Does the same for attributes that no filter reads.
    static void enrich(const ConfigModel& config, const Route& route, Plan& plan) {
        for (std::size_t index = 0; index < plan.events.size(); ++index) {
            AttributeSet& attributes = plan.events[index].attributes;
            for (const ActionModel& action : config.transitions[route.steps[index].transition].actions) {
                const KnownAction* const known = findAction(action.key);
                for (const ActionNeed& need : known != nullptr ? known->needs : std::span<const ActionNeed>()) {
                    if (need.kind == AttributeKind::Uint64 && !attributes.find<std::uint64_t>(need.attribute)) {
                        attributes.add<std::uint64_t>(need.attribute, 1);
                        attributes.sort<std::uint64_t>();
                    }
                }
            }
        }
    }

    void rehearse(Goal& goal) {
        const auto& [index, transition, filter, outcome] = goal.target;
        Behaviour& machine = machines[index];
        auto route = filter ? machine.routeToOutcome(transition, filter, outcome) : machine.routeToFire(transition);
        if (route) {
            enrich(machine, *route);
        }
        auto plan = route ? machine.planFor(*route) : std::nullopt;
        if (!plan) {
            goal.answer = Answer::Undecided;
            return;
        }
        enrich(machine.config(), *route, *plan);
        goal.witness = rehearsal.play(index, *plan);
        for (const Witness::Trial& each : goal.witness->trials) {
            std::size_t number = firstGoals[index][each.transition];
            if (each.fired) {
                note(goal, number);
            }
            for (const bool verdict : each.verdicts) {
                note(goal, number + (verdict ? 1 : 2));
                number += 2;
            }
        }
        goal.witness->trials = std::vector<Witness::Trial>();  // long recordings have many
    }

    void note(Goal& goal, std::size_t reached) {
        if (!isReached[reached]) {
            isReached[reached] = true;
            goal.reached.push_back(reached);
        }
    }

    const AttributeSet context;
    const VIGParserConfig registry = libraryRegistry();
    const Catalogue& catalogue = Catalogue::builtIn();
    Effort effort;
    const Surroundings surroundings{registry, catalogue, context, effort};
    const DocumentModel document;
    Rehearsal rehearsal;
    std::deque<Behaviour> machines;
    std::set<std::string> names;
    std::vector<std::vector<std::size_t>> firstGoals;  // the first one's number by machine and transition
    std::vector<bool> isReached;                       // of each goal
};

class TestWriter {
  public:
    TestWriter(const std::string& path, const Console& console, const Interruption& interruption)
        : path(path), console(console), interruption(interruption), coverage(path) {}

    int run() {
        std::string problem;
        const auto copy = copyInMemory(path, interruption, problem);
        if (!copy) {
            return interruption.requested() ? kExitInterrupted : fail(problem);
        }
        rules = pathOf(*copy);
        std::string text;
        const TestOutcome loaded = loadRules(rules, interruption, text);
        if (loaded.loading == RuleSession::Loading::Interrupted) {
            return kExitInterrupted;
        }
        if (loaded.loading == RuleSession::Loading::Unreadable) {
            return fail(loaded.problem);
        }
        if (loaded.loading == RuleSession::Loading::Refused) {
            console.sayText(refusalText(DocumentText(path, std::move(text))));
            return kExitUnusable;
        }
        if (!find(std::move(text))) {
            return kExitUnusable;
        }
        if (interruption.requested() || !write()) {
            return kExitInterrupted;
        }
        Output out(console.out);
        std::vector<std::string> texts;
        for (auto& [goal, test] : tests) {
            texts.push_back(std::move(test));
        }
        out.write(testFileOf(path, texts));
        return console.finish(out, sayGaps());
    }

  private:
    int fail(const std::string& problem) const {
        console.complain(path + ": " + problem);
        return kExitUnusable;
    }

    bool find(std::string text) {
        GoalFinder finder(std::move(text), interruption);
        goals = std::move(finder.goals);
        rehearsed = std::move(finder.rehearsed);
        if (!finder.fault.empty()) {
            fail(kFault + finder.fault);
        }
        return finder.fault.empty();
    }

    // Returns false if it was interrupted.
    bool write() {
        for (const std::size_t each : rehearsed) {
            // The machines of the document run together, so that a test of one may have done it for another.
            const auto isCovered = [&](std::size_t goal) {
                return coverage.hasRun() && coverage.reaches(goals[goal].target);
            };
            if (!std::ranges::all_of(goals[each].reached, isCovered) &&
                !add(each, goals[each].name, *goals[each].witness)) {
                return false;
            }
        }
        // A file of tests has one at least.
        return !tests.empty() || add(0, "it starts", {});
    }

    bool add(std::size_t place, const std::string& name, const Witness& witness) {
        TestCase test;
        test.name = name;
        test.events = std::make_shared<std::vector<EventRecord>>(witness.events);
        test.draws.numbers = witness.draws;
        ExpectationWriter expected;
        RuleSession session(rules, test.draws, test.context, expected, &coverage);
        if (play(session, test, expected, interruption) != RuleSession::Loading::Done) {
            return false;
        }
        tests[place] = textOf(test, expected.lines());
        return true;
    }

    // Returns the exit status.
    int sayGaps() const {
        int status = kExitDone;
        for (const Goal& each : goals) {
            if (coverage.reaches(each.target)) {
                continue;
            }
            if (each.answer == Answer::Yes && !each.isLeftOut) {
                return fail(kFault + each.name);
            }
            const bool isUndecided = each.answer == Answer::Undecided;
            status = isUndecided || each.isLeftOut ? kExitRefused : status;
            const std::string_view why = each.isLeftOut ? "left out, since all recordings would be too long"
                                         : isUndecided  ? "not decided"
                                         : each.answer == Answer::Unrecordable
                                             ? "only an infinity, a NaN or a text that is no UTF-8 does it"
                                             : "no events do it";
            console.say(fmt::format("{}: {}", coverage.gapOf(each.target), why));
        }
        return status;
    }

    const std::string& path;
    const Console& console;
    const Interruption& interruption;
    std::string rules;  // the path of the copy
    Coverage coverage;
    std::vector<Goal> goals;
    std::vector<std::size_t> rehearsed;
    std::map<std::size_t, std::string> tests;  // by the goal
};

}  // namespace

int generateTests(const std::string& rules, const Console& console, const Interruption& interruption) {
    return TestWriter(rules, console, interruption).run();
}

}  // namespace Brenta::OS::VIG::Tool
