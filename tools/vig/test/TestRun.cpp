#include "tools/vig/test/TestRun.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "tools/vig/trace/ExplainText.h"
#include "tools/vig/trace/Tally.h"
#include "tools/vig/words/Wrapped.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kIndent = 8;  // of what a failed test shows, and of an explanation there
constexpr std::size_t kMostAnswers = 3;
constexpr std::size_t kMostLines = 100;  // a cycle of EnteringState transitions makes a thousand steps

// Explains a divergence: what the machines decided on the event, or what kept those transitions from firing that
// would have done what is missing.
class Explainer final : public Trace {
  public:
    explicit Explainer(const Divergence& what) : divergence(what) {}

    void loaded(const DocumentModel& document) override {
        tally.loaded(document);
        for (std::size_t machine = 0; machine < document.configs.size(); ++machine) {
            const ConfigModel& config = document.configs[machine];
            for (std::size_t index = 0; index < config.transitions.size(); ++index) {
                const bool isAsked = divergence.config.value_or(config.id) == config.id;
                if (isAsked && asked.size() < kMostAnswers && isConcerned(config.transitions[index])) {
                    asked.push_back({machine, index});
                }
            }
        }
    }

    void step(const Step& step) override {
        const bool isAsked = divergence.kind == Divergence::Kind::Event && step.event == divergence.event &&
                             divergence.machine.value_or(step.machine.index) == step.machine.index;
        if (isAsked && !step.attempts.empty()) {
            add("event " + std::to_string(step.event) + ": ", text.linesOf(step));
        }
        tally.step(step);
    }

    // REQUIRES: the session still lives.
    std::vector<std::string> explanation() {
        for (const TransitionPlace& place : asked) {
            add("why not ", text.linesOf(tally.whyNot(place)));
        }
        if (linesLeftOut > 0) {
            lines.push_back("  and " + std::to_string(linesLeftOut) + " more lines, which vig run --explain=all has");
        }
        return std::move(lines);
    }

  private:
    bool isConcerned(const TransitionModel& transition) const {
        const auto has = [&](std::string_view action) {
            return std::ranges::any_of(transition.actions,
                                       [&](const ActionModel& each) { return each.name.starts_with(action); });
        };
        switch (divergence.kind) {
            case Divergence::Kind::MissingTrigger:
                return has("Trigger");
            case Divergence::Kind::MissingLog:
                return has("Log");
            case Divergence::Kind::State:
                return transition.to == divergence.state && transition.from != transition.to;
            case Divergence::Kind::Event:
                break;
        }
        return false;
    }

    void add(const std::string& what, const std::vector<std::string>& tree) {
        for (const std::string& line : tree) {
            if (lines.size() < kMostLines) {
                lines.push_back("  " + (&line == &tree.front() ? what : std::string()) + line);
            } else {
                ++linesLeftOut;
            }
        }
    }

    const Divergence& divergence;
    std::vector<TransitionPlace> asked;
    Tally tally;
    ExplainText text{kColumns - kIndent};
    std::vector<std::string> lines;
    std::size_t linesLeftOut = 0;
};

// Returns the place of the configuration with the id, of several of the first.
std::optional<std::size_t> machineOf(const DocumentModel& document, std::int64_t config) {
    const auto found = std::ranges::find(document.configs, config, &ConfigModel::id);
    return found == document.configs.end() ? std::nullopt
                                           : std::optional<std::size_t>(found - document.configs.begin());
}

}  // namespace

TestOutcome loadRules(const std::string& rules, const Interruption& interruption, std::string& text) {
    NoReport report;
    RuleSession session(rules, {}, {}, report, nullptr);
    const auto loading = session.load(RuleSession::Changes::Ignore, interruption);
    if (loading != RuleSession::Loading::Done) {
        text = loading == RuleSession::Loading::Refused ? session.refused()->source().text() : std::string();
        return {loading, session.problem(), {}};
    }
    text = session.document().text.source().text();
    return {loading, {}, {}};
}

RuleSession::Loading play(RuleSession& session, const TestCase& test, Report& report,
                          const Interruption& interruption) {
    const auto loading = session.load(RuleSession::Changes::Ignore, interruption);
    return loading == RuleSession::Loading::Done ? offer(session, test, report, interruption) : loading;
}

RuleSession::Loading offer(RuleSession& session, const TestCase& test, Report& report,
                           const Interruption& interruption) {
    session.start();
    for (const EventRecord& event : *test.events) {
        if (interruption.requested()) {
            return RuleSession::Loading::Interrupted;
        }
        session.machines().offer(event);
    }
    report.end(session.machines().summary());
    return RuleSession::Loading::Done;
}

std::vector<std::string> explain(const std::string& rules, const TestCase& test, const Divergence& divergence,
                                 const Interruption& interruption) {
    NoReport report;
    Explainer explainer(divergence);
    RuleSession session(rules, test.draws, test.context, report, &explainer);
    const auto loading = play(session, test, report, interruption);
    return loading == RuleSession::Loading::Done ? explainer.explanation() : std::vector<std::string>();
}

TestOutcome runTest(const std::string& rules, const TestCase& test, Trace& trace, const Interruption& interruption) {
    Observed observed(test.expect);
    TestOutcome outcome{};
    Mismatch mismatch;
    {
        RuleSession session(rules, test.draws, test.context, observed, &trace);
        outcome.loading = play(session, test, observed, interruption);
        if (outcome.loading != RuleSession::Loading::Done) {
            outcome.problem = session.problem();
            return outcome;
        }
        mismatch = compare(test.expect, observed);
        if (mismatch.first && mismatch.first->config && !mismatch.first->machine) {
            mismatch.first->machine = machineOf(session.document(), *mismatch.first->config);
        }
    }
    outcome.failure = std::move(mismatch.lines);
    if (mismatch.first) {
        outcome.event = mismatch.first->event;
        outcome.machine = mismatch.first->machine;
        for (std::string& line : explain(rules, test, *mismatch.first, interruption)) {
            outcome.failure.push_back(std::move(line));
        }
    }
    return outcome;
}

}  // namespace Brenta::OS::VIG::Tool
