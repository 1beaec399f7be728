#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/io/Progress.h"
#include "tools/vig/run/ReportWriters.h"

namespace Brenta::OS::VIG::Tool {

// Lets several threads take devices one after the other, and puts all that comes of them, and what is wrong with them,
// on the console in their order, whatever the number of threads.
class Fleet {
  public:
    struct Ended {
        std::string problem;            // empty if nothing was wrong with the device
        std::function<void()> account;  // is called in the order of the devices, by one thread at a time
    };

    // Takes a device to its end, on one thread, and writes to the output what it has to say of it.
    using Runner = std::function<Ended(const std::string& device, Output& text)>;

    // All must outlive it. The devices are files of event records, or "-" for standard input; one that has several
    // devices counts as one here.
    Fleet(const std::vector<std::string>& devices, const Console& console, const Interruption& interruption,
          Output& output, Progress& progress)
        : devices(devices), console(console), interruption(interruption), output(output), progress(progress) {}

    // Each thread, this one included, makes a runner of its own. Returns the number of devices that no thread came to.
    std::uint64_t run(unsigned threads, const std::function<Runner()>& makeRunner);

  private:
    const std::vector<std::string>& devices;
    const Console& console;
    const Interruption& interruption;
    Output& output;
    Progress& progress;
};

// Returns the terminal that shows the progress of a fleet, or -1: what devices do, if that is told, is not to be mixed
// with it.
int terminalFor(ReportFormat ofDevices, const Console& console);

// Returns the summary of a fleet as the format has it; `type` tells it from other lines.
std::string summaryIn(ReportFormat format, const auto& summary, const std::string& type) {
    switch (format) {
        case ReportFormat::Text:
            return textOf(summary);
        case ReportFormat::Jsonl:
            return jsonOf(summary, "\"type\":\"" + type + "\",");
        case ReportFormat::Json:
            return jsonOf(summary, "");
        case ReportFormat::Html:
        case ReportFormat::None:
            break;
    }
    return {};
}

// Returns what stands above the text of a device.
std::string headingOf(const std::string& name);

}  // namespace Brenta::OS::VIG::Tool
