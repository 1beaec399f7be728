#include "tools/vig/fleet/DeviceOrder.h"

#include <utility>

namespace Brenta::OS::VIG::Tool {

namespace {
constexpr std::size_t kMostText = std::size_t{1} << 18;  // of a device before its turn
constexpr std::size_t kMostEnded = 64;                   // devices before their turn
}  // namespace

int DeviceOrder::write(std::size_t device, std::string_view text) {
    std::unique_lock lock(mutex);
    std::string& kept = waiting[device].text;
    moved.wait(lock, [&] { return turn == device || kept.size() + text.size() <= kMostText; });
    kept += text;
    if (turn == device) {
        passOn();
    }
    return output.failure();
}

void DeviceOrder::end(std::size_t device, std::function<void()> account) {
    std::unique_lock lock(mutex);
    moved.wait(lock, [&] { return turn == device || endedEarly < kMostEnded; });
    waiting[device].account = std::move(account);
    ++endedEarly;
    if (turn == device) {
        passOn();
        moved.notify_all();
    }
}

bool DeviceOrder::failed() const {
    const std::lock_guard lock(mutex);
    return output.failed();
}

// Writes what waits of the device whose turn it is, and of those that follow if it has ended.
void DeviceOrder::passOn() {
    for (auto next = waiting.find(turn); next != waiting.end(); next = waiting.find(turn)) {
        output.write(std::exchange(next->second.text, {}));
        if (!next->second.account) {
            return;
        }
        next->second.account();
        waiting.erase(next);
        --endedEarly;
        ++turn;
    }
}

}  // namespace Brenta::OS::VIG::Tool
