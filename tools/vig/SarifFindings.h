#pragma once

#include "tools/vig/FindingReport.h"

namespace tool {

// Findings as a SARIF 2.1.0 log, for tools that show them beside the text. Columns count characters.
class SarifFindings final : public FindingReport {
  public:
    explicit SarifFindings(Output& target) : output(target) {}

    void file(const SourceText& source, std::span<const Diagnostic> findings) override;
    void end(const FindingCounts& counts) override;

  private:
    void begin();

    Output& output;
    bool begun = false;
    bool isFirst = true;
};

}  // namespace tool
