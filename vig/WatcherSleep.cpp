#include "vig/WatcherSleep.h"

#include <thread>

namespace Brenta::OS::VIG {

void sleepBetweenChecks(std::chrono::seconds delay) {
    std::this_thread::sleep_for(delay);
}

}  // namespace Brenta::OS::VIG
