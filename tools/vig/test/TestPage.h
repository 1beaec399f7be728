#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/graph/RuleGraph.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/page/RecordedRun.h"
#include "tools/vig/page/ReplayPage.h"
#include "tools/vig/test/TestFile.h"
#include "tools/vig/test/TestRun.h"

namespace Brenta::OS::VIG::Tool {

// Makes a page of the tests and properties that failed. Used on one thread.
class TestPage {
  public:
    // With more than so many bytes a recording ends, and no further one is added.
    TestPage(const Console& console, const Interruption& interruption, std::size_t mostBytes = RecordedRun::kMostBytes)
        : console(console), interruption(interruption), mostBytes(mostBytes) {}

    // Adds one that failed with the rules at that path, if there is a recording of it. The test is null for a property.
    void add(const std::string& rules, const std::string& name, const TestCase* test, const TestOutcome& outcome);

    // Returns the page. `report` is the whole text of the run.
    std::string html(std::string_view title, const std::string& report) const;

  private:
    // It is the machines of a rule document, which many tests may be of.
    struct Drawing {
        std::vector<RuleGraph> graphs;
        PagePicture picture;
    };

    const Console& console;
    const Interruption& interruption;
    const std::size_t mostBytes;
    std::map<std::string, Drawing> drawings;  // by the path of the rules
    std::vector<PageRecording> recordings;
    std::size_t bytes = 0;
    std::size_t leftOut = 0;
};

}  // namespace Brenta::OS::VIG::Tool
