#include "tools/vig/page/RunPage.h"

#include <fmt/format.h>

#include <vector>

#include "tools/vig/graph/RuleGraph.h"
#include "tools/vig/io/FileText.h"
#include "tools/vig/page/RecordedRun.h"
#include "tools/vig/page/Recorder.h"
#include "tools/vig/page/ReplayPage.h"
#include "tools/vig/run/Replay.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

std::string fileNameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

void complain(const std::string& rules, const std::vector<std::string>& problem, const Console& console) {
    console.say(nameOfInput(rules) + ": error: " + problem.front());
    for (std::size_t i = 1; i < problem.size(); ++i) {
        console.say(problem[i]);
    }
}

}  // namespace

int runToPage(const RunOptions& options, const Console& console, const Interruption& interruption) {
    Selection selection(options.selection);
    Progress progress(console.err, {0, sizeOfEvents({options.events}, console)});
    RecordedRun recording;
    Recorder recorder(recording, &selection);
    if (options.verbose) {
        recorder.recordOwnLog();
    }
    RuleRun rules(options, recorder, console, interruption);
    rules.observe(recorder);
    Replay replay(options.events, EventReader::Devices::One, console, interruption);
    if (!replay.problem().empty()) {
        console.say(replay.problem());
        return kExitUnusable;
    }
    if (const auto status = rules.load(RuleSession::Changes::Ignore)) {
        return rules.abandon(*status);
    }
    const DocumentModel& document = rules.session().document();
    if (const auto problem = selection.loaded(document); !problem.empty()) {
        complain(options.rules, problem, console);
        return kExitUnusable;
    }
    const std::vector<RuleGraph> graphs = checkedGraphsOf(document, {}, interruption);
    if (interruption.requested()) {
        return kExitInterrupted;
    }
    recorder.followAll(graphs, rules.session().contextAttributes());
    rules.session().start();
    replay.play(
        [&](const EventRecord& record) {
            selection.next(record);
            rules.session().machines().offer(record);
            if (recording.isTooLarge()) {
                replay.stop();
            }
        },
        rules.output(), progress);
    progress.clear();
    if (interruption.requested()) {
        return kExitInterrupted;
    }
    if (recording.isTooLarge()) {
        console.complain(
            fmt::format("{}: a page cannot hold all that happens: choose some of it by --from, --to, "
                        "--where or --machine",
                        nameOfEvents(options.events)));
        return kExitUnusable;
    }
    if (const std::string note = selection.note(); !note.empty()) {
        console.say("vig: note: " + note);
    }
    recorder.finish();
    const PagePicture picture = pagePictureOf(graphs, console, interruption);
    if (interruption.requested()) {
        return kExitInterrupted;
    }
    // What the records tell before one that is bad is on the page, as it is in the text.
    const std::string& problem = replay.problem();
    const std::string title = fileNameOf(nameOfInput(options.rules)) + ", " + fileNameOf(nameOfEvents(options.events));
    rules.output().write(replayPage(title, {printable(problem), printable(problem)},
                                    {{"", {}, std::nullopt, 0, false, recording.encoded(picture)}}));
    if (!problem.empty()) {
        rules.complainAfterOutput(problem);
    }
    return rules.abandon(problem.empty() ? kExitDone : kExitUnusable);
}

}  // namespace Brenta::OS::VIG::Tool
