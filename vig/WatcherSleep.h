#pragma once

#include <chrono>

namespace Brenta::OS::VIG {

// How the watcher waits between two checks. It stands alone so that a test can link another in its place.
void sleepBetweenChecks(std::chrono::seconds delay);

}  // namespace Brenta::OS::VIG
