#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/vig/events/EventReader.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/io/Progress.h"

namespace Brenta::OS::VIG::Tool {

// Returns the size in bytes of all files of event records together, or 0 if it is not known before their end.
std::uint64_t sizeOfEvents(const std::vector<std::string>& files, const Console& console);

// It has recorded events, for every verb that replays.
class Replay {
  public:
    // Opens the records: a file, or "-" for standard input.
    Replay(const std::string& recordedEvents, EventReader::Devices devices, const Console& console,
           const Interruption& interruption);

    bool isOpen() const { return file.isOpen(); }

    // Returns the line that says why the records cannot be read, or not to their end; empty if nothing is wrong with
    // them.
    const std::string& problem() const { return reason; }

    // Gives the records, if they are open, to `take`, one after the other, until they end or are bad, it stops, or the
    // run is interrupted, or nobody can read the output any more. Returns true if they ended.
    bool play(const std::function<void(const EventRecord&)>& take, Output& output, Progress& progress);

    // To be called by `take`, for which there are enough records.
    void stop() { isStopped = true; }

  private:
    const std::string events;
    const EventReader::Devices devices;
    const Interruption& interruption;
    const Descriptor file;
    std::string reason;
    bool isStopped = false;
};

}  // namespace Brenta::OS::VIG::Tool
