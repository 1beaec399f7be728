#pragma once

#include <json/value.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/vig/findings/Findings.h"

namespace Brenta::OS::VIG::Tool {

// Returns an error for every place for which the library refuses the document, by place.
std::vector<Finding> refusalsIn(const DocumentText& document, const VIGParserConfig& registry);

// Appends an error for every place for which the library refuses the document. Returns the elements of "configs" that
// it accepts; nothing if it refuses the root. REQUIRES: the text of the document is JSON.
std::optional<std::vector<Json::ArrayIndex>> acceptedConfigs(const DocumentText& document,
                                                             const VIGParserConfig& registry,
                                                             std::vector<Finding>& found);

// Does the same for a filter that stands elsewhere than in a rule document; `path` is its JSON path.
void searchFilter(const DocumentText& text, const Json::Value& filter, const std::string& path,
                  const VIGParserConfig& registry, std::vector<Finding>& found);

}  // namespace Brenta::OS::VIG::Tool
