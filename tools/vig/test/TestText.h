#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/vig/document/DocumentText.h"
#include "tools/vig/test/TestFile.h"
#include "tools/vig/trace/Report.h"

namespace Brenta::OS::VIG::Tool {

// Writes down what a run does, as the expectation of a test.
class ExpectationWriter final : public NoReport {
  public:
    void trigger(const TriggerLine& line) override;
    void log(const LogLine& line) override;
    void move(const MoveLine& /*line*/) override { ++moves; }
    void end(const Summary& summary) override;

    // Returns the lines of the object, without what stands before them.
    std::vector<std::string> lines() const;

  private:
    std::vector<std::string> triggers;
    std::vector<std::string> logs;
    std::string states;
    std::uint64_t moves = 0;
};

// Returns the test as the text of an object, as a person would write it; `expected` are the lines of an
// ExpectationWriter.
std::string textOf(const TestCase& test, const std::vector<std::string>& expected);

// Returns a whole file of such tests; `rules` is how it names the document.
std::string testFileOf(const std::string& rules, const std::vector<std::string>& tests);

// Returns the text of a test file with such tests at the end of its own, and nothing else changed. REQUIRES: it was
// read without errors.
std::string withTests(const DocumentText& file, const std::vector<std::string>& tests);

}  // namespace Brenta::OS::VIG::Tool
