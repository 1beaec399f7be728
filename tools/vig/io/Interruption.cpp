#include "tools/vig/io/Interruption.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>

namespace Brenta::OS::VIG::Tool {

namespace {

std::atomic<Interruption*> interruptedBySignals = nullptr;

void handle(int number, void (*handler)(int)) {
    struct sigaction action = {};
    // There is no SA_RESTART, since whoever reads or writes is to notice.
    action.sa_handler = handler;
    sigaction(number, &action, nullptr);
}

void onSignal(int number) {
    const int savedErrno = errno;
    Interruption* const interruption = interruptedBySignals.load();
    if (interruption != nullptr && !interruption->requested()) {
        interruption->request();
    } else {
        handle(number, SIG_DFL);
        raise(number);
    }
    errno = savedErrno;
}

}  // namespace

Interruption::Interruption() : event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void Interruption::request() {
    flag.store(true, std::memory_order_relaxed);
    const std::uint64_t one = 1;
    // It can only fail when the counter is full, and then the descriptor is readable anyway.
    [[maybe_unused]] const ssize_t written = write(event.get(), &one, sizeof one);
}

InterruptOnSignals::InterruptOnSignals(Interruption& interruption) {
    interruptedBySignals = &interruption;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals[i], nullptr, &previous[i]);
        if (previous[i].sa_handler != SIG_IGN) {
            const bool isRequest = kSignals[i] == SIGINT || kSignals[i] == SIGTERM;
            handle(kSignals[i], isRequest ? onSignal : SIG_IGN);
        }
    }
}

InterruptOnSignals::~InterruptOnSignals() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals[i], &previous[i], nullptr);
    }
    interruptedBySignals = nullptr;
}

}  // namespace Brenta::OS::VIG::Tool
