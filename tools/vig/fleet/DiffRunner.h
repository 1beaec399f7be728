#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/diff/MachinePairs.h"
#include "tools/vig/document/RuleModel.h"
#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/fleet/DiffSummary.h"
#include "tools/vig/fleet/Parting.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/io/Progress.h"
#include "tools/vig/run/Draws.h"
#include "tools/vig/run/ReportWriters.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

// All devices of a fleet have this in common. It is used by several threads at once, none of which changes anything but
// the progress.
struct DiffPlan {
    const Both<const DocumentModel*> documents;
    const std::vector<MachinePair> pairs;  // of them
    const VIGParserConfig registry;        // the library's own
    const AttributeSet& context;
    const Draws& draws;  // of the comparison
    ReportFormat format;
    const Console& console;
    const Interruption& interruption;
    Progress& progress;
};

// Gives both machines of a pair the same numbers: the k-th one that is drawn while an event is offered follows from
// the seed of the device, the id, the event and k, and from nothing that another machine or filter draws.
class PairDraws {
  public:
    explicit PairDraws(const Draws& draws) : draws(draws) {}

    void beginDevice(std::string_view name);

    // Lets the next draw be the first one of its machine and that event.
    void beginEvent(std::uint64_t number);

    double next(const MachinePair& pair);

  private:
    const Draws& draws;
    std::uint32_t seed = 0;
    std::uint64_t event = 0;
    const MachinePair* last = nullptr;  // that has drawn for the event
    std::size_t count = 0;              // so many numbers
};

// Runs devices one after the other through the machines of two documents, on the thread that made it. The records are
// read once. REQUIRES: PlatformServices exist.
class DiffRunner {
  public:
    explicit DiffRunner(const DiffPlan& plan);
    DiffRunner(const DiffRunner&) = delete;
    DiffRunner& operator=(const DiffRunner&) = delete;
    ~DiffRunner();

    // Offers each record of the device to the machines of both documents and compares what they do with it. If the
    // plan has a format for devices, tells in it of the first event by which they differ, if they do.
    DeviceDiff run(const std::string& device, Output& output);

  private:
    class Side;

    // Lets the machines of both sides do something by the event, and compares what they have done.
    void drive(std::uint64_t event, const EventRecord* record, const auto& act);
    void compare(std::uint64_t event, const EventRecord* record);
    void part(const std::vector<std::size_t>& differing, const EventRecord* record);

    // Returns true if what the devices do is told one by one.
    bool tells() const { return plan.format == ReportFormat::Text || plan.format == ReportFormat::Jsonl; }

    const DiffPlan& plan;
    PairDraws draws;
    std::vector<Both<Doings>> doings;  // of each pair, by the event that is being offered
    std::vector<std::size_t> active;   // the pairs of which they are not empty
    Both<std::unique_ptr<Side>> sides;
    DeviceDiff diff;  // of the device that runs
    std::optional<Parting> parting;
};

}  // namespace Brenta::OS::VIG::Tool
