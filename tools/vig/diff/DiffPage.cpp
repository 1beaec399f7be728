#include "tools/vig/diff/DiffPage.h"

#include <fmt/format.h>

#include <cstddef>
#include <deque>
#include <vector>

#include "tools/vig/decide/Rehearsal.h"
#include "tools/vig/diff/DiffWriters.h"
#include "tools/vig/diff/MachinePairs.h"
#include "tools/vig/graph/RuleGraph.h"
#include "tools/vig/page/RecordedRun.h"
#include "tools/vig/page/Recorder.h"
#include "tools/vig/page/ReplayPage.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// It is one recording in the making.
struct Compared {
    const ConfigDiff& config;
    RecordedRun recording = RecordedRun();
    std::vector<RuleGraph> graphs = {};  // of the machines that it has
};

// Records what the machines of one of the documents do.
void record(std::size_t side, const DocumentModel& document, const AttributeSet& context,
            const Interruption& interruption, std::deque<Compared>& all) {
    const std::vector<RuleGraph> graphs = checkedGraphsOf(document, {}, interruption);
    Rehearsal rehearsal(document.configs, context);
    for (Compared& each : all) {
        if (!each.config.indices[side]) {
            continue;
        }
        const std::size_t machine = *each.config.indices[side];
        Recorder recorder(each.recording, nullptr);
        recorder.loaded(document);
        recorder.follow(machine, {fmt::format("{} {}", kSides[side], labelOf(each.config)), each.graphs.size()},
                        graphs[machine], context);
        each.graphs.push_back(graphs[machine]);
        each.graphs.back().side = kSides[side];
        rehearsal.show(machine, each.config.diff.plan, recorder, recorder);
        recorder.finish();
    }
}

}  // namespace

std::string pageOf(const DocumentDiff& diff, const Both<const DocumentModel*>& documents, const AttributeSet& context,
                   const std::string& text, const Console& console, const Interruption& interruption) {
    std::deque<Compared> all;
    for (const ConfigDiff& each : diff.configs) {
        if (each.diff.verdict == MachineDiff::Verdict::Different) {
            all.push_back({each});
        }
    }
    for (std::size_t side = 0; side < documents.size() && !all.empty() && !interruption.requested(); ++side) {
        record(side, *documents[side], context, interruption, all);
    }
    std::vector<PageRecording> recordings;
    for (Compared& each : all) {
        const PagePicture picture = pagePictureOf(each.graphs, console, interruption);
        if (interruption.requested()) {
            return {};
        }
        recordings.push_back({labelOf(each.config), summaryOf(each.config), each.config.diff.events, 0, true,
                              each.recording.encoded(picture)});
    }
    return replayPage(documents[0]->text.source().name() + " -> " + documents[1]->text.source().name(),
                      {text.substr(0, text.find('\n')), text}, recordings);
}

}  // namespace Brenta::OS::VIG::Tool
