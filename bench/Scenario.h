#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace bench {

// It is one thing that is measured. `prepare` makes what it is done with; what it returns does it a number of times and
// returns how long that took, in seconds.
struct Scenario {
    using Loop = std::function<double(std::size_t times)>;

    std::string name;
    std::size_t batch;  // as many times as make the reading of the clock negligible
    std::function<Loop()> prepare;
};

void addEngine(std::vector<Scenario>& scenarios);
void addScripts(std::vector<Scenario>& scenarios);
void addParsing(std::vector<Scenario>& scenarios);
void addActions(std::vector<Scenario>& scenarios);
void addRandom(std::vector<Scenario>& scenarios);
void addTool(std::vector<Scenario>& scenarios);

// Returns the processor time that this thread has taken, in seconds.
double threadTime();

// Returns how much of it the body takes when it is done so often.
double timed(std::size_t times, const auto& body) {
    const double begin = threadTime();
    for (std::size_t i = 0; i < times; ++i) {
        body();
    }
    return threadTime() - begin;
}

}  // namespace bench
