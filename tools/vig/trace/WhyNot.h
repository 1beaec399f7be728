#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/vig/trace/Trace.h"

namespace Brenta::OS::VIG::Tool {

// Counts over a whole run what became of one transition, and what kept it from firing.
class WhyNot final : public Trace {
  public:
    // It is the comparison of numbers that came nearest to being true.
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

    // Says what is wrong if the document that was loaded has no such transition, with those that it has; else empty.
    const std::string& problem() const { return unknown; }

    void loaded(const DocumentModel& document) override;
    void step(const Step& step) override;

    // These are the answer, once a document was loaded and if there is no problem.
    const TransitionModel* transition = nullptr;
    const ConfigModel* config = nullptr;
    std::size_t machine = 0;
    std::uint64_t events = 0;      // offered to the machine, and raised by it where the transition listens for them
    std::uint64_t otherTypes = 0;  // for which the transition does not listen
    std::map<std::string, std::uint64_t> otherStates;  // in which an event of its type met the machine
    std::uint64_t earlierFired = 0;                    // before it was tried
    std::uint64_t tried = 0;
    std::vector<Stops> stops;  // by the index of the filter
    std::uint64_t fired = 0;

  private:
    void count(const Step& step, const Attempt& attempt);

    const std::string path;
    std::string unknown;
    std::size_t index = 0;  // of the transition
};

}  // namespace Brenta::OS::VIG::Tool
