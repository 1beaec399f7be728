#include "tools/vig/fleet/FleetCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <thread>
#include <utility>

#include "tools/vig/document/Registry.h"
#include "tools/vig/events/EventInput.h"
#include "tools/vig/fleet/DeviceOrder.h"
#include "tools/vig/fleet/DeviceRunner.h"
#include "tools/vig/fleet/FleetSummary.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Runs the devices on several threads, this one included, and puts all that they do, and what is wrong with them, on
// the console in their order, whatever the number of threads. REQUIRES: PlatformServices exist.
class Fleet {
  public:
    Fleet(const FleetPlan& fleetPlan, const std::vector<std::string>& names, Output& target)
        : plan(fleetPlan),
          devices(names),
          output(target),
          summary(FleetSummary::of(plan.document)),
          order(target, [this](const DeviceResult& result) { account(result); }) {}

    FleetSummary run(std::size_t threads) {
        {
            std::vector<std::jthread> others;
            for (std::size_t i = 1; i < std::min(threads, devices.size()); ++i) {
                others.emplace_back([this] { work(); });
            }
            work();
        }
        summary.unfinished += devices.size() - accounted;
        return std::move(summary);
    }

  private:
    void work() {
        DeviceRunner runner(plan);
        // Who takes a device brings it to its end, because those that follow wait for that.
        while (!plan.interruption.requested() && !order.failed()) {
            const std::size_t device = next++;
            if (device >= devices.size()) {
                return;
            }
            Output text([this, device](std::string_view piece) { return order.write(device, piece); });
            if (plan.options.format == ReportFormat::Text) {
                text.write(fmt::format("\n== {}\n", printable(nameOfEvents(devices[device]))));
            }
            DeviceResult result = runner.run(devices[device], text);
            text.flush();
            order.end(device, std::move(result));
        }
    }

    // The devices come here one after the other.
    void account(const DeviceResult& result) {
        summary.add(result);
        ++accounted;
        if (!result.problem.empty()) {
            output.flush();
            plan.console.say(result.problem);
        }
    }

    const FleetPlan& plan;
    const std::vector<std::string>& devices;
    Output& output;
    std::atomic<std::size_t> next = 0;  // the device that no thread has taken
    FleetSummary summary;               // changed by one thread at a time, like `accounted`
    std::size_t accounted = 0;
    DeviceOrder order;
};

std::string summaryOf(const FleetSummary& summary, const FleetOptions& options) {
    switch (options.format) {
        case ReportFormat::Text:
            return (options.summaryOnly ? "" : "\n") + textOf(summary);
        case ReportFormat::Jsonl:
            return jsonOf(summary, R"("type":"fleet",)");
        case ReportFormat::Json:
            return jsonOf(summary, "");
        case ReportFormat::None:
            break;
    }
    return {};
}

}  // namespace

int fleet(const FleetOptions& options, const Console& console, const Interruption& interruption) {
    RunOptions ofDevice = options;
    ofDevice.format = options.summaryOnly ? ReportFormat::None : options.format;
    RuleRun rules(options, ofDevice.format, console, interruption);
    // The machines of the delivery stay idle: each device has its own.
    if (const auto status = rules.load(RuleSession::Changes::Ignore)) {
        return rules.abandon(*status);
    }
    RuleSession& session = rules.session();
    const FleetPlan plan{session.document(), libraryRegistry(), session.contextAttributes(),
                         ofDevice,           console,           interruption};
    const FleetSummary summary = Fleet(plan, options.devices, rules.output()).run(options.threads);
    rules.output().write(summaryOf(summary, options));
    const int status = summary.failed > 0 ? kExitUnusable : kExitDone;
    return rules.abandon(interruption.requested() ? kExitInterrupted : status);
}

}  // namespace Brenta::OS::VIG::Tool
