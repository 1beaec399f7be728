#pragma once

#include <string_view>

#include "tools/vig/check/FindingReport.h"

namespace Brenta::OS::VIG::Tool {

// Findings for programs: one object with a list of them. Columns count bytes.
class JsonFindings final : public FindingReport {
  public:
    explicit JsonFindings(Output& target);

    void file(const SourceText& source, std::span<const Diagnostic> findings) override;
    void end(const FindingCounts& counts) override;

  private:
    Output& output;
    std::string_view separator;  // from the finding before
};

}  // namespace Brenta::OS::VIG::Tool
