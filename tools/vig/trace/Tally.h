#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "rulesengine/EventType.h"
#include "tools/vig/trace/Trace.h"
#include "tools/vig/trace/WhyNot.h"

namespace Brenta::OS::VIG::Tool {

// It names a transition of a document by its place.
struct TransitionPlace {
    std::size_t machine;
    std::size_t index;  // among those of the configuration, in document order
};

// Counts over a whole run what became of all transitions.
class Tally final : public Trace {
  public:
    void loaded(const DocumentModel& document) override;
    void step(const Step& step) override;

    // Takes notice of where a step found and left the machine, and does not count it.
    void pass(const Step& step);

    // REQUIRES: a document with such a transition is loaded, and lives.
    WhyNot whyNot(const TransitionPlace& place) const;
    bool hasFired(const TransitionPlace& place) const {
        return machines[place.machine].transitions[place.index].fired > 0;
    }

  private:
    struct OfTransition {
        std::uint64_t tried = 0;
        std::uint64_t fired = 0;
        std::vector<WhyNot::Stops> stops;
    };

    using Counts = std::map<RulesEngine::EventType, std::uint64_t>;

    struct OfMachine {
        std::vector<OfTransition> transitions;
        std::map<std::string_view, std::vector<std::size_t>> leadingTo;  // transitions, by the state
        std::map<std::string, Counts, std::less<>> offered;              // events, by the state that they met
        std::map<std::string, Counts, std::less<>> raised;               // where a transition listens for them
        std::set<std::string, std::less<>> visited;                      // states
    };

    WhyNot countsOf(const TransitionPlace& place) const;
    std::vector<WhyNot> upstreamOf(const TransitionPlace& place) const;
    std::vector<const TransitionModel*> firedBefore(const TransitionPlace& place) const;

    const DocumentModel* document = nullptr;
    std::vector<OfMachine> machines;
};

}  // namespace Brenta::OS::VIG::Tool
