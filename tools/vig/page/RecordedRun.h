#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tools/vig/document/RuleModel.h"
#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/graph/RuleGraph.h"
#include "tools/vig/page/Columns.h"
#include "tools/vig/trace/Report.h"
#include "tools/vig/trace/Trace.h"
#include "tools/vig/trace/WhyNot.h"

namespace Brenta::OS::VIG::Tool {

// It is the picture that a page has of the machines, as SVG, or why it has none.
struct PagePicture {
    std::string svg = {};
    std::string whyNone = {};
};

// It is what machines did with events, for the replay page: all that explanations of all events tell. It is kept by
// columns, since a page is to hold millions of steps: what a machine does with an event has one of few shapes, which
// are numbered, and the values that were compared are those of the event, of the document or of the context, but for
// the results of functions. An event is named by its position among those of the recording. tools/vig/page/data.js
// reads it.
class RecordedRun {
  public:
    // More than so many bytes are too many for a browser.
    static constexpr std::size_t kMostBytes = 256U << 20;

    explicit RecordedRun(std::size_t mostBytes = kMostBytes) : mostBytes(mostBytes) {}

    // It is a machine as the page calls it.
    struct MachineTitle {
        std::string label;
        std::size_t number;  // by which links and the picture name it
    };

    // Adds a machine of the configuration, of which the graph was made. Returns its index. The configuration must
    // outlive the recording; the context is that of the machine.
    std::size_t addMachine(MachineTitle title, const ConfigModel& config, const RuleGraph& graph,
                           const AttributeSet& context);

    // Adds an event at the end, of the number that reports give it: 0 is the start of the machines, of which also what
    // is logged then may be all that is told.
    void addStart(bool isWhole) {
        events.addStart();
        hasWholeStart = isWhole;
    }
    void addEvent(std::uint32_t number, const EventRecord& record) { events.add(number, record); }

    std::size_t eventCount() const { return events.count(); }

    // They are to be told in the order of the positions, machine by machine.
    void addStep(std::size_t machine, std::size_t position, const Step& step);

    // They are to be told in the order in which they happened.
    void addTrigger(std::size_t machine, std::size_t position, const TriggerLine& line);
    void addLog(std::optional<std::size_t> machine, std::size_t position, const LogLine& line);

    // Tells what became of a transition.
    void account(std::size_t machine, std::size_t transition, const WhyNot& answer);

    // Returns true if it is too large for a page.
    bool isTooLarge() const { return bytes + events.size() + lineTexts.size() > mostBytes; }

    // Returns all of it as the page has it, with a picture of the machines. It is not to be added to any more.
    std::string encoded(const PagePicture& picture);

  private:
    static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

    // It is what one machine did with one event, as numbers.
    using Shape = std::u32string;

    // It is what became of a transition.
    struct Account {
        std::uint64_t tried = 0;
        std::uint64_t fired = 0;
        std::vector<WhyNot::Stops> stops = {};
        std::string lines = {};  // as JSON
    };

    struct Machine {
        MachineTitle title;
        const ConfigModel& config;
        std::vector<std::string> states;
        std::unordered_map<std::string_view, std::uint32_t> stateNumbers;
        std::vector<std::string> operands;  // as JSON, two for each filter of each transition
        std::vector<Account> accounts;      // by transition
        std::unordered_map<Shape, std::uint32_t> shapeNumbers = {};
        std::vector<const Shape*> shapes = {};
        std::vector<std::uint32_t> turns = {};  // by position: the number of the shape
        Shape turn = {};                        // at the position behind them
        std::uint32_t steps = 0;                // of that turn
        std::vector<std::uint32_t> drawnAt = {};
        std::vector<double> drawnNumbers = {};
        std::vector<std::uint32_t> drawnTexts = {};
    };

    struct Lines {
        std::vector<std::uint32_t> positions;
        std::vector<std::uint32_t> machines;
        std::vector<std::uint32_t> steps;
        std::vector<std::uint8_t> kinds;
        std::vector<std::uint32_t> texts;
    };

    enum class LineKind : std::uint8_t { Trigger, Log };

    void addLine(std::optional<std::size_t> machine, std::size_t position, LineKind kind, const std::string& text);
    void addDrawn(Machine& machine, std::size_t position, const OperandModel& operand, const ComparedValue& value);
    std::string operandJson(const FilterModel& filter, const OperandModel& operand, const AttributeSet& context);
    void endTurns(Machine& machine, std::size_t position);
    static std::string turnsJson(const Machine& machine, ColumnWriter& writer);
    static std::string json(const Machine& machine, ColumnWriter& writer);

    const std::size_t mostBytes;
    EventColumns events;
    std::deque<Machine> machines;  // which stay where they are, as their members point at each other
    Lines lines;
    NumberedTexts lineTexts;
    bool hasWholeStart = false;
    std::size_t bytes = 0;
};

}  // namespace Brenta::OS::VIG::Tool
