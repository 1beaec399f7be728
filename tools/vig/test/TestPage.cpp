#include "tools/vig/test/TestPage.h"

#include <fmt/format.h>

#include "tools/vig/page/Recorder.h"
#include "tools/vig/run/RuleSession.h"

namespace Brenta::OS::VIG::Tool {

void TestPage::add(const std::string& rules, const std::string& name, const TestCase* test,
                   const TestOutcome& outcome) {
    const TestCase* const played = test != nullptr ? test : outcome.refutation ? &*outcome.refutation : nullptr;
    if (played == nullptr) {
        return;
    }
    if (bytes > mostBytes) {
        ++leftOut;
        return;
    }
    RecordedRun recording(mostBytes);
    Recorder recorder(recording, nullptr);
    RuleSession session(rules, played->draws, played->context, recorder, &recorder);
    if (session.load(RuleSession::Changes::Ignore, interruption) != RuleSession::Loading::Done) {
        return;
    }
    const auto [drawn, isNew] = drawings.try_emplace(rules);
    auto& [graphs, picture] = drawn->second;
    if (isNew) {
        graphs = checkedGraphsOf(session.document(), {}, interruption);
        picture = pagePictureOf(graphs, console, interruption);
    }
    if (interruption.requested()) {
        return;
    }
    recorder.followAll(graphs, played->context);
    if (offer(session, *played, recorder, interruption) != RuleSession::Loading::Done) {
        return;
    }
    recorder.finish();
    std::vector<std::string> facts = outcome.failure;
    if (recording.eventCount() - 1 < played->events->size()) {
        facts.push_back(fmt::format("The page has {} of {} events: it cannot hold more.", recording.eventCount() - 1,
                                    played->events->size()));
    }
    recordings.push_back(
        {name, std::move(facts), outcome.event, outcome.machine.value_or(0), false, recording.encoded(picture)});
    bytes += recordings.back().content.size();
}

std::string TestPage::html(std::string_view title, const std::string& report) const {
    const std::string more = leftOut == 0 ? ""
                                          : fmt::format("The page has no room for {} more test{} that failed.\n",
                                                        leftOut, leftOut == 1 ? "" : "s");
    const std::string lines = report.substr(0, report.find_last_not_of('\n') + 1);
    return replayPage(title, {lines.substr(lines.rfind('\n') + 1), report + more}, recordings);
}

}  // namespace Brenta::OS::VIG::Tool
