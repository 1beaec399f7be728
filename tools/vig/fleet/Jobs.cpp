#include "tools/vig/fleet/Jobs.h"

#include <algorithm>
#include <thread>
#include <vector>

#include "tools/vig/commandline/CommandLine.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr unsigned kMostThreads = 256;

}  // namespace

void addJobs(Verb& verb, unsigned& jobs) {
    jobs = std::max(std::thread::hardware_concurrency(), 1u);
    verb.wholeNumber("-j,--jobs", jobs, 1, kMostThreads,
                     "How many devices run at once (default: as many as there are cores)");
}

void onThreads(std::size_t threads, const std::function<void()>& work) {
    std::vector<std::jthread> others;
    for (std::size_t i = 1; i < threads; ++i) {
        others.emplace_back(work);
    }
    work();
}

}  // namespace Brenta::OS::VIG::Tool
