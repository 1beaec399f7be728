#pragma once

#include <string>
#include <vector>

#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/RuleSession.h"
#include "tools/vig/test/TestFile.h"
#include "tools/vig/trace/Trace.h"

namespace Brenta::OS::VIG::Tool {

// It says how a test ended.
struct TestOutcome {
    RuleSession::Loading loading;
    std::string problem;               // says why the rules were refused or cannot be read, else empty
    std::vector<std::string> failure;  // expected against actual, and why, printable; empty if the test passed
};

// Runs a test of the rules at that path. The trace sees the whole run. A test that fails is run once more for the
// explanation.
TestOutcome runTest(const std::string& rules, const TestCase& test, Trace& trace, const Interruption& interruption);

}  // namespace Brenta::OS::VIG::Tool
