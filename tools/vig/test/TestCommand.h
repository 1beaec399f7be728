#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/Draws.h"

namespace Brenta::OS::VIG::Tool {

class CommandLine;

// Html is a page that has all of the text, and lets people step through the tests that failed.
enum class TestFormat { Text, Html };

struct TestOptions {
    std::vector<std::string> files;
    TestFormat format = TestFormat::Text;
    std::string filter;                 // a part of the names of the tests to run, which may have wildcards
    std::string generate;               // the rule document to write tests of; empty if tests are to be run
    bool coverage = false;              // tells what the tests have not reached
    std::optional<double> coverageMin;  // in percent; less of any rule document is a failure
    bool mutants = false;               // tells which changes of the document no test notices
    std::string writeFile;              // the file of tests to add those to that would; empty if none is
    std::string junitFile;              // empty if no JUnit report is wanted
    Draws draws = {};                   // of the tests that say nothing of theirs
};

// `vig test` runs the tests of rule documents. Returns the exit status.
int test(const TestOptions& options, const Console& console, const Interruption& interruption);

void addTest(CommandLine& commandLine, TestOptions& options);

}  // namespace Brenta::OS::VIG::Tool
