#include "tools/vig/fleet/FleetRun.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <utility>

#include "tools/vig/events/EventReader.h"
#include "tools/vig/fleet/DeviceOrder.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// One run over all devices.
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
            if (plan.format == ReportFormat::Text) {
                text.write(fmt::format("\n== {}\n", printable(nameOfEvents(devices[device]))));
            }
            DeviceResult result = runner.run(devices[device], text);
            text.flush();
            order.end(device, std::move(result));
        }
    }

    // Of one device after the other.
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
    FleetSummary summary;               // by one thread at a time, like `accounted`
    std::size_t accounted = 0;
    DeviceOrder order;
};

}  // namespace

FleetSummary runFleet(const FleetPlan& plan, const std::vector<std::string>& devices, std::size_t threads,
                      Output& output) {
    return Fleet(plan, devices, output).run(threads);
}

}  // namespace Brenta::OS::VIG::Tool
