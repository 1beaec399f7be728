#include "vig/DeliveryGate.h"

#include <cassert>

namespace Brenta::OS::VIG {

DeliveryGate::Passage::Passage(DeliveryGate& entered, std::uint64_t registration) : gate(entered) {
    std::unique_lock lock(gate.mutex);
    const auto isOver = [&] { return gate.closed || gate.latest != registration; };
    if (gate.inside != std::this_thread::get_id()) {
        gate.changed.wait(lock, [&] { return isOver() || gate.inside == std::thread::id(); });
        admitted = !isOver();
        if (admitted) {
            gate.inside = std::this_thread::get_id();
        }
    }
    open = !isOver();
}

DeliveryGate::Passage::~Passage() {
    if (admitted) {
        const std::lock_guard lock(gate.mutex);
        gate.inside = std::thread::id();
        gate.changed.notify_all();
    }
}

std::uint64_t DeliveryGate::beginRegistration() {
    const std::lock_guard lock(mutex);
    changed.notify_all();
    return ++latest;
}

std::uint64_t DeliveryGate::latestRegistration() const {
    const std::lock_guard lock(mutex);
    return latest;
}

bool DeliveryGate::isInside() const {
    const std::lock_guard lock(mutex);
    return inside == std::this_thread::get_id();
}

void DeliveryGate::close() {
    std::unique_lock lock(mutex);
    assert(inside != std::this_thread::get_id());
    closed = true;
    changed.notify_all();
    changed.wait(lock, [this] { return inside == std::thread::id(); });
}

}  // namespace Brenta::OS::VIG
