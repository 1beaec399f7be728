#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/vig/document/RuleModel.h"
#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/run/MachineGroup.h"
#include "tools/vig/trace/Trace.h"
#include "tools/vig/trace/Tracer.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

// Explains what a machine of a document does with an event, afterwards: all that a machine knows is the state in which
// it is, so that another one in that state decides the same. That one is watched, and the first one costs nothing for
// it. Used on one thread.
class MachineExplainer final : private Trace {
  public:
    // The document and the context must outlive it. The machines draw from `draw`.
    MachineExplainer(const DocumentModel& document, const VIGParserConfig& registry,
                     const std::function<double()>& draw, const AttributeSet& context);
    MachineExplainer(const MachineExplainer&) = delete;
    MachineExplainer& operator=(const MachineExplainer&) = delete;

    // Returns what the machine at that place decides in a state on an event of that number, without a record when it
    // is started. What it does is seen by nobody. The steps refer to the document.
    std::vector<Step> explain(std::size_t machine, const std::string& state, std::uint64_t event,
                              const EventRecord* record);

  private:
    void loaded(const DocumentModel& /*document*/) override {}
    void step(const Step& step) override { steps.push_back(step); }

    std::vector<Step> steps;
    Tracer tracer;
    bool isMoving = true;  // transitions may fire
    MachineGroup::Configs machines;
};

}  // namespace Brenta::OS::VIG::Tool
