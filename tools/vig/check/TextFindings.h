#pragma once

#include <string>
#include <string_view>

#include "tools/vig/check/FindingReport.h"

namespace Brenta::OS::VIG::Tool {

// Findings for people, as compilers print them: the place, the message, the line with a mark under the
// place; then the place as a JSON path and what would mend it.
class TextFindings final : public FindingReport {
  public:
    TextFindings(Output& target, bool wantsColours) : output(target), coloured(wantsColours) {}

    void file(const SourceText& source, std::span<const Diagnostic> findings) override;
    void end(const FindingCounts& counts) override;

  private:
    void write(const SourceText& source, const Diagnostic& finding);
    std::string inColour(std::string_view colour, std::string_view text) const;

    Output& output;
    const bool coloured;
};

}  // namespace Brenta::OS::VIG::Tool
