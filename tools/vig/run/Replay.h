#pragma once

#include <string>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/run/MachineGroup.h"

namespace Brenta::OS::VIG::Tool {

// It brings the recorded events of one device to machines, for every verb that replays.
class Replay {
  public:
    // Opens the records: a file, or "-" for standard input.
    Replay(const std::string& recordedEvents, const Console& console, const Interruption& interruption);

    bool isOpen() const { return file.isOpen(); }

    // Returns the line that says why the records cannot be read, or not to their end; empty if nothing is wrong with
    // them.
    const std::string& problem() const { return reason; }

    // Replays the records, if they are open, until they end or are bad, or the run is interrupted or nobody can read
    // the output any more. Returns true if they ended. `terminal` shows how far it is; -1 if nobody wants to know.
    bool offerTo(MachineGroup& machines, Output& output, int terminal);

  private:
    const std::string events;
    const Interruption& interruption;
    const Descriptor file;
    std::string reason;
};

}  // namespace Brenta::OS::VIG::Tool
