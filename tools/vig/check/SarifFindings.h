#pragma once

#include <string_view>

#include "tools/vig/check/FindingReport.h"

namespace Brenta::OS::VIG::Tool {

// Findings as a SARIF 2.1.0 log, for tools that show them beside the text. Columns count characters.
class SarifFindings final : public FindingReport {
  public:
    explicit SarifFindings(Output& target);

    void file(const SourceText& source, std::span<const Diagnostic> findings) override;
    void end(const FindingCounts& counts) override;

  private:
    Output& output;
    std::string_view separator;  // from the finding before
};

}  // namespace Brenta::OS::VIG::Tool
