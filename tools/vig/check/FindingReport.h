#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "tools/vig/check/Diagnostic.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/words/SourceText.h"

namespace Brenta::OS::VIG::Tool {

enum class FindingFormat { Text, Json, Sarif };

struct FindingCounts {
    std::size_t errors = 0;
    std::size_t warnings = 0;
    std::size_t files = 0;
};

// Where everything goes that a check of rule documents finds.
class FindingReport {
  public:
    virtual ~FindingReport() = default;

    // `findings` are in the order of their places.
    virtual void file(const SourceText& source, std::span<const Diagnostic> findings) = 0;
    virtual void end(const FindingCounts& counts) = 0;
};

// `output` must outlive the report. The text is `coloured` or not, as a terminal shows it.
std::unique_ptr<FindingReport> makeFindingReport(FindingFormat format, Output& output, bool coloured);

}  // namespace Brenta::OS::VIG::Tool
