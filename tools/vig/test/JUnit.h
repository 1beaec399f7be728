#pragma once

#include <string>
#include <vector>

namespace Brenta::OS::VIG::Tool {

// It says what came of one test of a file.
struct TestVerdict {
    std::string file;
    std::string name;
    std::vector<std::string> failure;  // says what was wrong, line by line; empty if the test passed
};

// Returns the verdicts as a JUnit report. Text that XML cannot hold is shown as replacement characters.
std::string junitXml(const std::vector<TestVerdict>& verdicts);

}  // namespace Brenta::OS::VIG::Tool
