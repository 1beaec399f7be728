#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "rulesengine/EventType.h"
#include "tools/vig/document/DocumentText.h"
#include "tools/vig/document/RuleModel.h"
#include "tools/vig/trace/Report.h"

namespace Brenta::OS::VIG::Tool {

struct EventRecord;

// It is one side of a filter, as it was when it was compared.
struct ComparedValue {
    // It holds nothing for a number that is in neither the event nor the context, which makes the filter false.
    std::variant<std::monostate, std::int64_t, double, std::string> value;
    bool missing = false;  // the attribute; `value` is then what was compared in its place
};

struct Comparison {
    const FilterModel* filter;
    ComparedValue left;  // as the document writes them: a constant may stand on the left
    ComparedValue right;
    bool verdict;
};

// It tells how far a transition that listens for the event came.
struct Attempt {
    std::size_t index;  // among those of the configuration, in document order
    const TransitionModel* transition;
    std::vector<Comparison> comparisons;  // up to the first that is false
    bool fired;
};

// It tells what a machine in one state did with one event: with the event that was offered to it, or with the
// EnteringState event that the machine raised when it came there.
struct Step {
    std::uint64_t event;                 // the number of the event in the report
    std::optional<std::int64_t> timeMs;  // of its record
    MachineName machine;
    std::string_view state;
    RulesEngine::EventType type;
    bool raised;                    // by the machine itself
    std::vector<Attempt> attempts;  // only the last one can have fired

    bool fired() const { return !attempts.empty() && attempts.back().fired; }
};

// Is told everything that the machines of a session decide, on the thread that drives them. What it is given refers
// to the document, which lives until another one is loaded or the session ends.
class Trace {
  public:
    virtual ~Trace() = default;

    // Is called before the machines of that document are started.
    virtual void loaded(const DocumentModel& document) = 0;

    // Is called before an event is offered to the machines, of whose steps the next ones are.
    virtual void offered(const EventRecord& /*record*/) {}

    // If a transition fires, its actions run after this call. The events that a machine raises make no step in a
    // state that does not listen for them.
    virtual void step(const Step& step) = 0;
};

}  // namespace Brenta::OS::VIG::Tool
