#include "vig/WatcherSleep.h"

namespace Brenta::OS::VIG {

void sleepBetweenChecks(std::unique_lock<std::mutex>& lock, std::condition_variable& woken, std::chrono::seconds delay,
                        const std::function<bool()>& isRequested) {
    woken.wait_for(lock, delay, isRequested);
}

}  // namespace Brenta::OS::VIG
