#include "tools/vig/Interruption.h"

#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <initializer_list>

namespace tool {

namespace {

std::atomic<Interruption*> interruptedBySignals = nullptr;

void onSignal(int /*number*/) {
    const int savedErrno = errno;
    if (Interruption* const interruption = interruptedBySignals.load()) {
        interruption->request();
    }
    errno = savedErrno;
}

void handle(int number, void (*handler)(int), int flags) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigaction(number, &action, nullptr);
}

constexpr std::initializer_list<int> kSignals = {SIGINT, SIGTERM};

}  // namespace

Interruption::Interruption() : event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

Interruption::~Interruption() {
    close(event);
}

void Interruption::request() {
    flag.store(true, std::memory_order_relaxed);
    const std::uint64_t one = 1;
    // It can only fail when the counter is full, and then the descriptor is readable anyway.
    [[maybe_unused]] const ssize_t written = write(event, &one, sizeof one);
}

InterruptOnSignals::InterruptOnSignals(Interruption& interruption) {
    interruptedBySignals = &interruption;
    for (const int number : kSignals) {
        // Not SA_RESTART: whoever reads or writes is to notice.
        handle(number, onSignal, static_cast<int>(SA_RESETHAND));
    }
    handle(SIGPIPE, SIG_IGN, 0);
}

InterruptOnSignals::~InterruptOnSignals() {
    for (const int number : kSignals) {
        handle(number, SIG_DFL, 0);
    }
    handle(SIGPIPE, SIG_DFL, 0);
    interruptedBySignals = nullptr;
}

}  // namespace tool
