#pragma once

#include <cstdint>
#include <vector>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/RunCommand.h"
#include "tools/vig/trace/Trace.h"

namespace Brenta::OS::VIG::Tool {

// Counts how often each transition was tried and how often it fired.
class TransitionCounts final : public Trace {
  public:
    struct Count {
        std::uint64_t tried = 0;  // an event came for which it listens, and no earlier transition fired
        std::uint64_t fired = 0;
    };

    // By the indices of the configuration and of the transition, both in document order.
    const std::vector<std::vector<Count>>& byConfig() const { return counts; }

    void loaded(const TracedDocument& document) override;
    void step(const Step& step) override;

  private:
    std::vector<std::vector<Count>> counts;
};

// Offers the records to the machines of the rules as `vig run` does, without a report, and counts. Returns the exit
// status that `vig run` would have, having said what is wrong; `format` is ignored.
int countTransitions(RunOptions options, const Console& console, const Interruption& interruption,
                     TransitionCounts& counts);

}  // namespace Brenta::OS::VIG::Tool
