#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/vig/trace/Trace.h"

namespace Brenta::OS::VIG::Tool {

// Counts over a whole run what became of one transition, and what kept it from firing.
class WhyNot final : public Trace {
  public:
    // The comparison of numbers that was nearest to being true.
    struct NearestMiss {
        double distance;  // by which one side would have to change; 0 if the sides are equal doubles and may not be
        ComparedValue left;
        ComparedValue right;
        std::uint64_t event;
        std::optional<std::int64_t> timeMs;
    };

    struct Stops {
        std::uint64_t count = 0;  // how often the filter was the one that did not hold
        std::optional<NearestMiss> nearest;
    };

    // `transitionPath` is a JSON path such as "configs[0].payload.data.transitions[1]".
    explicit WhyNot(std::string transitionPath) : path(std::move(transitionPath)) {}

    // What is wrong if the document that was loaded has no such transition, with those that it has; else empty.
    const std::string& problem() const { return unknown; }

    // REQUIRES, as do the following: a document was loaded and there is no problem.
    const TransitionModel& transition() const { return *model; }
    const ConfigModel& config() const { return *owner; }
    std::size_t machine() const { return machineIndex; }

    // That came to its machine, and the EnteringState events that this raised where the transition listens for them.
    std::uint64_t events() const { return offered; }
    std::uint64_t otherTypes() const { return unheard; }      // of a type for which it does not listen
    std::uint64_t earlierFired() const { return overtaken; }  // before it was tried
    std::uint64_t tried() const { return attempts; }
    std::uint64_t fired() const { return moves; }

    // How often an event for which it listens met the machine in another state.
    const std::map<std::string, std::uint64_t, std::less<>>& otherStates() const { return elsewhere; }

    // By the index of the filter.
    const std::vector<Stops>& stops() const { return stopsByFilter; }

    void loaded(const TracedDocument& document) override;
    void step(const Step& step) override;

  private:
    void count(const Step& step, const Attempt& attempt);

    const std::string path;
    std::string unknown;
    std::size_t machineIndex = 0;
    std::size_t index = 0;
    const ConfigModel* owner = nullptr;
    const TransitionModel* model = nullptr;
    std::uint64_t offered = 0;
    std::uint64_t unheard = 0;
    std::uint64_t overtaken = 0;
    std::uint64_t attempts = 0;
    std::uint64_t moves = 0;
    std::map<std::string, std::uint64_t, std::less<>> elsewhere;
    std::vector<Stops> stopsByFilter;
};

}  // namespace Brenta::OS::VIG::Tool
