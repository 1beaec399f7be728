#include "tools/vig/fleet/Fleet.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <utility>

#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/events/EventReader.h"
#include "tools/vig/fleet/DeviceOrder.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {
constexpr unsigned kMostThreads = 256;
}

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
                    console.say(ended.problem);
                }
            });
        }
    };
    {
        std::vector<std::jthread> others;
        for (std::size_t i = 1; i < std::min<std::size_t>(threads, devices.size()); ++i) {
            others.emplace_back(work);
        }
        work();
    }
    return devices.size() - accounted;
}

std::string headingOf(const std::string& device) {
    return fmt::format("== {}\n", printable(nameOfEvents(device)));
}

void addJobs(Verb& verb, unsigned& threads) {
    threads = std::max(std::thread::hardware_concurrency(), 1u);
    verb.wholeNumber("-j,--jobs", threads, 1, kMostThreads,
                     "How many devices run at once (default: as many as there are cores)");
}

}  // namespace Brenta::OS::VIG::Tool
