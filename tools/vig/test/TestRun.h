#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/RuleSession.h"
#include "tools/vig/test/Expectation.h"
#include "tools/vig/test/TestFile.h"
#include "tools/vig/trace/Trace.h"

namespace Brenta::OS::VIG::Tool {

// It says how a test or a property ended.
struct TestOutcome {
    RuleSession::Loading loading;
    std::string problem;               // says why the rules cannot be read, if that is so
    std::vector<std::string> failure;  // expected against actual, and why, printable; empty if the test passed
    std::string fault = {};            // says what the library does not confirm of what was decided, which is our fault

    // Of one that did not: the event by which it went another way, and the machine that did, as far as they are known;
    // and, of a property, what refutes it.
    std::optional<std::uint64_t> event = {};
    std::optional<std::size_t> machine = {};
    std::optional<TestCase> refutation = {};
};

// Loads the rules at that path, whose text is then in `text`, also if they are refused.
TestOutcome loadRules(const std::string& rules, const Interruption& interruption, std::string& text);

// Runs a test of the rules at that path. The trace sees the whole run. A test that fails is run once more for the
// explanation.
TestOutcome runTest(const std::string& rules, const TestCase& test, Trace& trace, const Interruption& interruption);

// Loads the rules of a session and offers its machines the events of the test. REQUIRES: the session has the report.
RuleSession::Loading play(RuleSession& session, const TestCase& test, Report& report, const Interruption& interruption);

// Starts the machines of a session that is loaded, and offers them those events.
RuleSession::Loading offer(RuleSession& session, const TestCase& test, Report& report,
                           const Interruption& interruption);

// Runs it and returns why it went that way at the divergence, in printable lines.
std::vector<std::string> explain(const std::string& rules, const TestCase& test, const Divergence& divergence,
                                 const Interruption& interruption);

}  // namespace Brenta::OS::VIG::Tool
