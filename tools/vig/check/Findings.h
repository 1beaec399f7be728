#pragma once

#include <string>
#include <vector>

#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/document/DocumentText.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

enum class Severity { Error, Warning };

// It says one thing that is wrong with a rule document, at its place.
struct Finding {
    Severity severity;
    std::string name;  // a stable one: of a warning, or of the library's error code
    Place place;
    std::string message;
    std::string hint;  // what would mend it; may be empty
};

// Returns everything that is wrong with a rule document, by place: errors for what the library refuses with these
// names, and what `vig check` warns of, with these attributes in mind. There is an error under the name of a code of
// the library exactly when the library refuses the document. The platform log is not available meanwhile; used on one
// thread.
std::vector<Finding> findingsIn(const DocumentText& document, const VIGParserConfig& registry,
                                const Catalogue& catalogue);

}  // namespace Brenta::OS::VIG::Tool
