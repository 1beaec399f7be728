#pragma once

#include <json/value.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tools/vig/findings/Findings.h"

namespace Brenta::OS::VIG::Tool {

// Returns an error for every place for which the library refuses the document, by place.
std::vector<Finding> refusalsIn(const DocumentText& document, const VIGParserConfig& registry);

// It says which elements of "configs" the library accepts, and for what it refuses the others.
struct ConfigVerdicts {
    std::vector<Json::ArrayIndex> accepted = {};
    std::vector<Json::ArrayIndex> refused = {};
    std::set<std::string> faults = {};  // JSON paths of values, also of those that are missing
};

// Appends an error for every place for which the library refuses the document. Returns nothing if it refuses the root.
// REQUIRES: the text of the document is JSON.
std::optional<ConfigVerdicts> judgeConfigs(const DocumentText& document, const VIGParserConfig& registry,
                                           std::vector<Finding>& found);

// Appends the errors of a filter that stands elsewhere than in a rule document; `path` is its JSON path.
void searchFilter(const DocumentText& text, const Json::Value& filter, const std::string& path,
                  const VIGParserConfig& registry, std::vector<Finding>& found);

}  // namespace Brenta::OS::VIG::Tool
