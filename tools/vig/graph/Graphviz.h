#pragma once

#include <string>
#include <string_view>

#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// What came of a run of Graphviz' program `dot`.
struct Rendering {
    enum class Status { Done, Missing, Failed, Interrupted };

    Status status;
    std::string image;
    std::string messages;  // what the program had to say, or why it could not be run
};

// Draws a graph; `format` is one that the program knows, such as "svg". The program is looked for as a shell would, and
// is ended when the interruption is requested.
Rendering renderGraph(std::string_view dot, const std::string& format, const Interruption& interruption);

}  // namespace Brenta::OS::VIG::Tool
