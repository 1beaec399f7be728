#include "tools/vig/check/JsonFindings.h"

#include <fmt/format.h>

#include <utility>

#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

JsonFindings::JsonFindings(Output& target) : output(target) {
    output.write(R"({"findings":[)");
}

void JsonFindings::file(const SourceText& source, std::span<const Diagnostic> findings) {
    for (const Diagnostic& finding : findings) {
        const auto start = source.positionOf(finding.place.begin);
        const auto end = source.positionOf(finding.place.end);
        output.write(
            fmt::format("{}\n"
                        R"({{"file":{},"line":{},"column":{},"end_line":{},"end_column":{},"severity":"{}",)"
                        R"("name":{},"path":{},"message":{},"hint":{}}})",
                        std::exchange(separator, ","), quoted(source.name()), start.line, start.column, end.line,
                        end.column, finding.severity == Severity::Error ? "error" : "warning", quoted(finding.name),
                        quoted(finding.place.path), quoted(finding.message), quoted(finding.hint)));
    }
}

void JsonFindings::end(const FindingCounts& counts) {
    output.write(fmt::format("\n],\"errors\":{},\"warnings\":{},\"files\":{}}}\n", counts.errors, counts.warnings,
                             counts.files));
}

}  // namespace Brenta::OS::VIG::Tool
