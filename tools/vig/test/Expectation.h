#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/vig/test/TestFile.h"
#include "tools/vig/trace/Report.h"

namespace Brenta::OS::VIG::Tool {

// Keeps what a run of a test has to tell. A cycle of EnteringState transitions makes a thousand lines of each event, so
// that of each list no more is kept than a failure can show, beside as many as are expected.
class Observed final : public NoReport {
  public:
    // `expected` must outlive it.
    explicit Observed(const Expectation& expected) : expectation(expected) {}

    struct Log {
        std::uint64_t event;
        std::string priority;
        std::string message;
        std::optional<std::size_t> machine;
    };

    struct Move {
        std::uint64_t event;
        MachineName machine;
        std::string from;
        std::string to;
    };

    struct State {
        std::string name;
        std::uint64_t moves = 0;          // that led to it
        std::deque<Move> lastMoves = {};  // as many as a failure shows
    };

    std::vector<TriggerLine> triggers;  // the first ones
    std::uint64_t triggerCount = 0;     // of all
    std::vector<Log> logs;              // likewise, but for the library's own that it has found the document
    std::uint64_t logCount = 0;
    std::map<std::int64_t, State> states;  // by configuration; of several with the same id, of the first
    std::int64_t moves = 0;
    std::vector<Move> firstMoves;  // as many as a failure shows

    void trigger(const TriggerLine& line) override;
    void log(const LogLine& line) override;
    void move(const MoveLine& line) override;
    void end(const Summary& summary) override;

  private:
    const Expectation& expectation;
    std::map<std::size_t, State> machines;  // those that have moved, by their place in the document
};

// Tells no more of a run of a test than whether it is as expected, and that as soon as it is not.
class ExpectationCheck final : public NoReport {
  public:
    // The run begins. `expected` must outlive it.
    void begin(const Expectation& expected);

    bool failed() const { return hasFailed; }

    void trigger(const TriggerLine& line) override;
    void log(const LogLine& line) override;
    void move(const MoveLine& line) override;
    void end(const Summary& summary) override;

  private:
    const Expectation* expectation = nullptr;
    std::size_t triggers = 0;
    std::size_t logs = 0;
    std::int64_t moves = 0;
    bool hasFailed = true;  // nothing is expected before a run begins
};

// It is the place where a run first left what was expected.
struct Divergence {
    enum class Kind { Event, MissingTrigger, MissingLog, State };

    Kind kind;
    std::optional<std::uint64_t> event = {};  // which did what was not expected: of a state, the latest move, if any
    std::optional<std::size_t> machine = {};  // the machine that did it, if that is known
    std::optional<std::int64_t> config = {};  // the one whose trigger or state is missing, if that is known
    std::string state = {};                   // Kind::State: the one expected
};

struct Mismatch {
    std::vector<std::string> lines;  // expected against actual, printable; empty if all is as expected
    std::optional<Divergence> first;
};

Mismatch compare(const Expectation& expected, const Observed& actual);

}  // namespace Brenta::OS::VIG::Tool
