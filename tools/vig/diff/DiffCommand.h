#pragma once

#include <string>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

inline constexpr int kExitDifferent = 1;
inline constexpr int kExitUndecided = 3;

// Html is a page that has the text, and lets people step through each recording that shows a difference.
enum class DiffFormat { Text, Json, Markdown, Html };

struct DiffOptions {
    std::string oldRules = {};  // files with rule documents
    std::string newRules = {};
    DiffFormat format = DiffFormat::Text;
    std::string contextFile = {};    // of every machine; empty for a context without attributes
    std::string catalogueFile = {};  // the attributes of events; empty for those that the tool knows
    bool states = false;             // the names of states have to be the same
};

// Decides whether two rule documents do the same by any events, and shows where not. Returns the exit status.
int diffDocuments(const DiffOptions& options, const Console& console, const Interruption& interruption);

}  // namespace Brenta::OS::VIG::Tool
