#include "tools/vig/check/FindingReport.h"

#include "tools/vig/check/JsonFindings.h"
#include "tools/vig/check/SarifFindings.h"
#include "tools/vig/check/TextFindings.h"

namespace Brenta::OS::VIG::Tool {

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

}  // namespace Brenta::OS::VIG::Tool
