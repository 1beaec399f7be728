#pragma once

#include <optional>

#include "tools/vig/events/EventReader.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/io/Progress.h"
#include "tools/vig/run/RuleRun.h"

namespace Brenta::OS::VIG::Tool {

struct RunOptions;

// Recorded events on their way to the machines of a rule document, for the verbs that replay. The options must
// outlive it.
class Replay {
  public:
    Replay(const RunOptions& runOptions, const Console& streams, const Interruption& interruptedBy);

    // To be observed, and for what it reports.
    RuleRun& ruleRun() { return rules; }

    // Opens the records and starts the machines. If that fails, says why and returns the exit status.
    std::optional<int> begin();

    // Offers all records. If one is bad, says so and returns the exit status; not if it was interrupted.
    // REQUIRES: begin() has returned nothing.
    std::optional<int> offerAll();

    // Reports the end and returns the exit status.
    int finish();

  private:
    EventReader::Status offerEach(EventReader& reader, Progress& progress);

    const RunOptions& options;
    const Console& console;
    const Interruption& interruption;
    const Descriptor file;
    const int openError;
    RuleRun rules;
};

}  // namespace Brenta::OS::VIG::Tool
