#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace Brenta::OS::VIG {

// Lets the watcher wait between two checks: `delay` long, or until it is woken and `isRequested`, which is called with
// the lock held. It stands alone so that a test can link another in its place.
void sleepBetweenChecks(std::unique_lock<std::mutex>& lock, std::condition_variable& woken, std::chrono::seconds delay,
                        const std::function<bool()>& isRequested);

}  // namespace Brenta::OS::VIG
