#pragma once

#include <string>
#include <vector>

#include "tools/vig/diff/DocumentDiff.h"
#include "tools/vig/diff/MachineDiff.h"

namespace Brenta::OS::VIG::Tool {

// Returns what a change is, in words: `triggers for vmRssKB 150001 to 200000 in state "collected"`.
std::string wordsFor(const MachineDiff::Change& change, const Both<std::string>& states);

// Returns what is to be said of one configuration, line by line.
std::vector<std::string> summaryOf(const ConfigDiff& config);

// Returns how people call the configuration, by its id.
std::string labelOf(const ConfigDiff& config);

// Return what is printed of two documents.
std::string textOf(const DocumentDiff& diff, const Both<std::string>& files);
std::string markdownOf(const DocumentDiff& diff, const Both<std::string>& files);
std::string jsonOf(const DocumentDiff& diff, const Both<std::string>& files);

}  // namespace Brenta::OS::VIG::Tool
