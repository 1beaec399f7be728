#include "vig/DeliveryGate.h"

#include <cassert>

namespace Brenta::OS::VIG {

DeliveryGate::Passage::Passage(DeliveryGate& entered) : gate(entered) {
    std::unique_lock lock(gate.mutex);
    if (!gate.closed && gate.inside != std::this_thread::get_id()) {
        const std::uint64_t ticket = gate.nextTicket++;
        gate.moved.wait(lock, [&] { return gate.served == ticket; });
        gate.inside = std::this_thread::get_id();
        admitted = true;
    }
    open = !gate.closed;
}

DeliveryGate::Passage::~Passage() {
    if (admitted) {
        const std::lock_guard lock(gate.mutex);
        gate.inside = std::thread::id();
        ++gate.served;
        gate.moved.notify_all();
    }
}

void DeliveryGate::close() {
    std::unique_lock lock(mutex);
    assert(inside != std::this_thread::get_id());
    closed = true;
    moved.wait(lock, [this] { return served == nextTicket; });
}

}  // namespace Brenta::OS::VIG
