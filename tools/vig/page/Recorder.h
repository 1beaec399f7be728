#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/vig/graph/RuleGraph.h"
#include "tools/vig/page/RecordedRun.h"
#include "tools/vig/run/Selection.h"
#include "tools/vig/trace/Report.h"
#include "tools/vig/trace/Tally.h"
#include "tools/vig/trace/Trace.h"

namespace Brenta::OS::VIG::Tool {

// Records for a page what the machines of one document do in a run: it is to be told as the trace and as the report of
// it. Two of them can record one after the other what two documents do with the same events. What it is given must
// outlive it; so must the document, until finish() was called.
class Recorder final : public Trace, public NoReport {
  public:
    // Of the selection, which may be null for all events, next() has to be called before the event is offered.
    Recorder(RecordedRun& recording, const Selection* selection);

    // Also records what the library logs by itself.
    void recordOwnLog() { hasOwnLog = true; }

    // Records that machine of the document, with that title. REQUIRES: a document is loaded, and not started.
    void follow(std::size_t machine, RecordedRun::MachineTitle title, const RuleGraph& graph,
                const AttributeSet& context);

    // Records all machines of the document, as reports call them, if none is selected, or else that one.
    void followAll(const std::vector<RuleGraph>& graphs, const AttributeSet& context);

    // Records what became of the transitions. REQUIRES: nothing has happened any more.
    void finish();

    void loaded(const DocumentModel& loaded) override;
    void offered(const EventRecord& record) override;
    void step(const Step& step) override;
    void trigger(const TriggerLine& line) override;
    void log(const LogLine& line) override;

  private:
    bool isChosen() const;
    void recordStart();
    // Returns its place, if what it does now is recorded.
    std::optional<std::size_t> placeOf(std::size_t machine) const;

    RecordedRun& recording;
    const Selection* const selection;
    bool hasOwnLog = false;
    bool isOn;  // the latest event is recorded
    const DocumentModel* document = nullptr;
    std::vector<std::optional<std::size_t>> places;  // in the recording, by the machine of the document
    std::uint32_t number = 0;                        // of the latest event
    std::size_t positions = 0;                       // so many events were recorded
    Tally tally;
};

}  // namespace Brenta::OS::VIG::Tool
