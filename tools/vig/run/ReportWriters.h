#pragma once

#include <memory>
#include <string>

#include "tools/vig/io/Output.h"
#include "tools/vig/trace/Report.h"

namespace Brenta::OS::VIG::Tool {

// Json is a summary alone, at the end of a run over a fleet.
enum class ReportFormat { Text, Jsonl, Json, None };

// Returns a report that writes what machines do to the output, which must outlive it. `device` is named by the lines
// for programs; empty if there is only one.
std::unique_ptr<Report> reportOf(ReportFormat format, Output& output, bool coloured, const std::string& device);

}  // namespace Brenta::OS::VIG::Tool
