#pragma once

#include <memory>
#include <string>

#include "tools/vig/io/Output.h"
#include "tools/vig/run/Selection.h"
#include "tools/vig/trace/Report.h"

namespace Brenta::OS::VIG::Tool {

// Json is a summary alone, at the end of a run over a fleet. Html is a page, which other rooms make.
enum class ReportFormat { Text, Jsonl, Json, Html, None };

// Says how a report is written, and how much of it.
struct ReportStyle {
    ReportFormat format;
    bool coloured;
    std::string device = {};               // is named by the lines for programs; empty if there is only one
    bool verbose = false;                  // people see the library's own log lines, as programs always do
    const Selection* selection = nullptr;  // what to tell of, which must outlive the report; null for everything
};

// Returns a report that writes what machines do to the output, which must outlive it.
std::unique_ptr<Report> reportOf(const ReportStyle& style, Output& output);

}  // namespace Brenta::OS::VIG::Tool
