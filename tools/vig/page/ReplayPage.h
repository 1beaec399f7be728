#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/graph/RuleGraph.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/page/RecordedRun.h"

namespace Brenta::OS::VIG::Tool {

// It is a recording as one of a page.
struct PageRecording {
    std::string name;                    // empty if it needs none
    std::vector<std::string> facts;      // printable lines that stand beside it
    std::optional<std::uint64_t> event;  // at which the page opens, by its number; at the first one if not given
    std::size_t machine = 0;             // the index of the one that is looked at then
    bool isComparison = false;           // its two machines are the old and the new one
    std::string content;                 // RecordedRun::encoded()
};

// It is what there is to say of all recordings, printable. Both are empty where there is nothing.
struct PageNote {
    std::string summary;  // in one line
    std::string text;
};

// Returns a page that shows the recordings and lets people step through them: one HTML file, which loads nothing and in
// which texts of documents and events can do nothing but be shown.
std::string replayPage(std::string_view title, const PageNote& note, const std::vector<PageRecording>& recordings);

// Has Graphviz draw the machines. If it cannot, says so: a page without a picture is still one. Once it is interrupted,
// what is returned means nothing.
PagePicture pagePictureOf(const std::vector<RuleGraph>& graphs, const Console& console,
                          const Interruption& interruption);

}  // namespace Brenta::OS::VIG::Tool
