#pragma once

#include "tools/vig/FindingReport.h"

namespace tool {

// Findings for programs: one object with a list of them. Columns count bytes.
class JsonFindings final : public FindingReport {
  public:
    explicit JsonFindings(Output& target) : output(target) {}

    void file(const SourceText& source, std::span<const Diagnostic> findings) override;
    void end(const FindingCounts& counts) override;

  private:
    void begin();

    Output& output;
    bool begun = false;
    bool isFirst = true;
};

}  // namespace tool
