#pragma once

#include <functional>
#include <string>

#include "tools/vig/events/EventRecord.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/io/Output.h"

namespace Brenta::OS::VIG::Tool {

// It has the recorded events of one device, for every verb that replays.
class Replay {
  public:
    // Opens the records: a file, or "-" for standard input.
    Replay(const std::string& recordedEvents, const Console& console, const Interruption& interruption);

    bool isOpen() const { return file.isOpen(); }

    // Returns the line that says why the records cannot be read, or not to their end; empty if nothing is wrong with
    // them.
    const std::string& problem() const { return reason; }

    // Gives the records, if they are open, to `take`, one after the other, until they end or are bad, or the run is
    // interrupted or nobody can read the output any more. Returns true if they ended. `terminal` shows how far it is;
    // -1 if nobody wants to know.
    bool play(const std::function<void(const EventRecord&)>& take, Output& output, int terminal);

  private:
    const std::string events;
    const Interruption& interruption;
    const Descriptor file;
    std::string reason;
};

}  // namespace Brenta::OS::VIG::Tool
