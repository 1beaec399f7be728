#include "tools/vig/FindingReport.h"

#include "tools/vig/JsonFindings.h"
#include "tools/vig/SarifFindings.h"
#include "tools/vig/TextFindings.h"

namespace tool {

std::unique_ptr<FindingReport> makeFindingReport(FindingFormat format, Output& output, bool coloured) {
    switch (format) {
        case FindingFormat::Json:
            return std::make_unique<JsonFindings>(output);
        case FindingFormat::Sarif:
            return std::make_unique<SarifFindings>(output);
        case FindingFormat::Text:
            break;
    }
    return std::make_unique<TextFindings>(output, coloured);
}

}  // namespace tool
