#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tools/vig/fleet/DiffSummary.h"
#include "tools/vig/fleet/FleetSummary.h"

namespace Brenta::OS::VIG::Tool {

using AnySummary = std::variant<FleetSummary, DiffSummary>;

// Reads a summary that `vig run` or `vig diff` has written with --format json, which is the line of that number of the
// file. Nothing is ignored: what is not part of a summary, or does not fit the rest of it, is an error. Returns nothing
// if there is one; `errors` then says what is wrong and where.
std::optional<AnySummary> readSummary(const std::string& file, std::size_t lineNumber, std::string_view line,
                                      std::vector<std::string>& errors);

}  // namespace Brenta::OS::VIG::Tool
