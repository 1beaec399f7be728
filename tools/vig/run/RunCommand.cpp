#include "tools/vig/run/RunCommand.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "tools/vig/io/FileText.h"
#include "tools/vig/run/Replay.h"
#include "tools/vig/trace/Highlights.h"
#include "tools/vig/trace/Report.h"
#include "tools/vig/trace/Tally.h"
#include "tools/vig/trace/Trace.h"
#include "tools/vig/trace/TransitionNames.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Reports what the machines decide, as far as the options ask for it.
class Explanations final : public Trace {
  public:
    Explanations(const RunOptions& options, Selection& selection, Report& report)
        : options(options), selection(selection), report(report) {}

    // Says what is wrong with the names that the options use, in lines; nothing if they are right.
    const std::vector<std::string>& problem() const { return unknown; }

    void loaded(const DocumentModel& loaded) override {
        document = &loaded;
        tally.loaded(loaded);
        unknown = selection.loaded(loaded);
        if (unknown.empty() && options.whyNot && !options.whyNot->empty()) {
            asked = transitionsCalled(*options.whyNot, loaded, selection.machine());
            if (asked.empty()) {
                unknown = unknownTransition(*options.whyNot, loaded, selection.machine());
            }
        }
    }

    void step(const Step& step) override {
        // The one needs all steps, and so does the other, but only if they are asked for.
        const bool isHighlight = options.explain == Explain::Highlights && highlights.has(step);
        const bool isSelected = selection.has(step.machine.index);
        if (options.whyNot && isSelected) {
            tally.step(step);
        } else if (options.whyNot) {
            tally.pass(step);
        }
        if (!isSelected) {
            return;
        }
        const bool tellsAll = options.explain == Explain::All || options.format != ReportFormat::Text;
        if (options.explain != Explain::Nothing && (isHighlight || tellsAll)) {
            report.explain(step);
            explainedEvents += step.event != latestExplained ? 1 : 0;
            latestExplained = step.event;
        }
    }

    void end() {
        if (options.explain == Explain::Highlights) {
            report.explained(explainedEvents, selection.count());
        }
        if (!options.whyNot) {
            return;
        }
        if (options.whyNot->empty()) {
            asked = allTransitions(*document, selection.machine());
            std::erase_if(asked, [this](const TransitionPlace& place) { return tally.hasFired(place); });
        }
        for (const TransitionPlace& place : asked) {
            report.whyNot(tally.whyNot(place));
        }
    }

  private:
    const RunOptions& options;
    Selection& selection;
    Report& report;
    const DocumentModel* document = nullptr;
    std::vector<std::string> unknown;
    std::vector<TransitionPlace> asked;
    Tally tally;
    Highlights highlights;
    std::uint64_t explainedEvents = 0;  // but for the start
    std::uint64_t latestExplained = 0;
};

}  // namespace

int run(const RunOptions& options, const Console& console, const Interruption& interruption) {
    Selection selection(options.selection);
    Progress progress(console.err, {0, sizeOfEvents({options.events}, console)});
    RuleRun rules(options, {options.format, console.wantsColours(), "", options.verbose, &selection}, console,
                  interruption);
    Explanations explanations(options, selection, rules.reporter());
    const bool isAsked = options.explain != Explain::Nothing || options.whyNot || options.selection.isAny();
    if (isAsked) {
        rules.observe(explanations);
    }
    Replay replay(options.events, EventReader::Devices::One, console, interruption);
    if (!replay.problem().empty()) {
        console.say(replay.problem());
        return kExitUnusable;
    }
    if (const auto status = rules.load(RuleSession::Changes::Ignore)) {
        return rules.abandon(*status);
    }
    if (!explanations.problem().empty()) {
        rules.complainAfterOutput(nameOfInput(options.rules) + ": error: " + explanations.problem().front());
        for (std::size_t i = 1; i < explanations.problem().size(); ++i) {
            console.say(explanations.problem()[i]);
        }
        return kExitUnusable;
    }
    rules.output().beforeWriting([&progress] { progress.clear(); });
    rules.session().start();
    replay.play(
        [&machines = rules.session().machines(), &selection, isAsked](const EventRecord& record) {
            if (isAsked) {
                selection.next(record);
            }
            machines.offer(record);
        },
        rules.output(), progress);
    progress.clear();
    if (!replay.problem().empty()) {
        rules.complainAfterOutput(replay.problem());
        return kExitUnusable;
    }
    explanations.end();
    if (const std::string note = selection.note(); !note.empty()) {
        rules.complainAfterOutput("vig: note: " + note);
    }
    return rules.finish(interruption.requested() ? kExitInterrupted : kExitDone, std::nullopt);
}

}  // namespace Brenta::OS::VIG::Tool
