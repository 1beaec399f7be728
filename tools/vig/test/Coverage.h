#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/vig/trace/Trace.h"

namespace Brenta::OS::VIG::Tool {

// Learns what of a rule document any run has reached: each transition is to fire, each filter to be true once and false
// once. All runs have to be of the same document.
class Coverage final : public Trace {
  public:
    struct Share {
        std::size_t reached = 0;
        std::size_t all = 0;
    };

    // Messages call the document `rulesName`.
    explicit Coverage(std::string rulesName) : name(std::move(rulesName)) {}

    // Returns false if no run has got so far that there are machines.
    bool hasRun() const { return wasLoaded; }

    Share transitions() const { return share(true); }

    // Each filter counts twice.
    Share filterOutcomes() const { return share(false); }

    // Counts both together, in percent; 100 if there is nothing to reach.
    double percent() const;

    // It is one thing to reach: that the transition fires or, with a filter, that this has the outcome.
    struct Target {
        std::size_t machine;
        std::size_t transition;
        std::optional<std::size_t> filter;
        bool outcome;
    };

    // REQUIRES: a run has got so far that there are machines.
    bool reaches(const Target& target) const { return goalOf(target).isReached; }
    const std::string& gapOf(const Target& target) const { return goalOf(target).gap; }

    // Returns "rules.json:12:9: never fired: start -> end on Test [configs[0]…]", in document order.
    std::vector<std::string> gaps() const;

    void loaded(const DocumentModel& document) override;
    void step(const Step& step) override;

  private:
    struct Goal {
        std::string gap;
        bool ofTransition;
        bool isReached = false;
    };

    const Goal& goalOf(const Target& target) const;
    Share share(bool ofTransitions) const;
    void add(const DocumentModel& document, const Place& place, std::string_view what, const std::string& which,
             bool ofTransition);

    const std::string name;
    bool wasLoaded = false;
    std::vector<Goal>
        goals;  // for each transition: that it fires, and of each filter that it is true, that it is false
    std::vector<std::vector<std::size_t>> firstGoals;  // the first one's index by machine and transition
};

}  // namespace Brenta::OS::VIG::Tool
