#include "tools/vig/fleet/Fleet.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <utility>

#include "tools/vig/fleet/DeviceOrder.h"
#include "tools/vig/fleet/Jobs.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

std::uint64_t Fleet::run(unsigned threads, const std::function<Runner()>& makeRunner) {
    DeviceOrder order(output);
    std::atomic<std::size_t> next = 0;  // the device that no thread has taken
    std::uint64_t accounted = 0;        // changed by one thread at a time
    const auto work = [&] {
        const Runner runner = makeRunner();
        // Who takes a device brings it to its end, because those that follow wait for that.
        while (!interruption.requested() && !order.failed()) {
            const std::size_t device = next++;
            if (device >= devices.size()) {
                return;
            }
            Output text([&order, device](std::string_view piece) { return order.write(device, piece); });
            Ended ended = runner(devices[device], text);
            text.flush();
            order.end(device, [this, &accounted, ended = std::move(ended)] {
                ended.account();
                ++accounted;
                if (!ended.problem.empty()) {
                    output.flush();
                    progress.aside([&] { console.say(ended.problem); });
                }
            });
        }
    };
    onThreads(std::min<std::size_t>(threads, devices.size()), work);
    progress.clear();
    return devices.size() - accounted;
}

int terminalFor(ReportFormat ofDevices, const Console& console) {
    const bool tellsDevices = ofDevices == ReportFormat::Text || ofDevices == ReportFormat::Jsonl;
    return tellsDevices && isatty(console.out) == 1 ? -1 : console.err;
}

std::string headingOf(const std::string& name) {
    return fmt::format("== {}\n", printable(name));
}

}  // namespace Brenta::OS::VIG::Tool
