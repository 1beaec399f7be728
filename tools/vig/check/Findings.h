#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/decide/Rehearsal.h"
#include "tools/vig/document/DocumentText.h"
#include "tools/vig/io/Interruption.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

enum class Severity { Error, Warning };

// It says one thing that is wrong with a rule document, at its place.
struct Finding {
    Severity severity;
    std::string name;  // a stable one: of a warning, or of the library's error code
    Place place;
    std::string message;
    std::string hint;                                  // what would mend it; may be empty
    std::shared_ptr<const Witness> witness = nullptr;  // that it happens, with an empty context; may be null
};

// It is a configuration of which not everything could be decided, so that warnings of it may be missing.
struct UndecidedConfig {
    std::string path;  // such as "configs[0]"
    std::int64_t id;
};

struct Findings {
    std::vector<Finding> all;  // by place
    std::vector<UndecidedConfig> undecided;
    std::vector<std::string> unconfirmed;  // what was found, and the library does something else: faults of the tool
};

// Returns everything that is wrong with a rule document: errors for what the library refuses with these names, and what
// `vig check` warns of, with these attributes in mind. There is an error under the name of a code of the library
// exactly when the library refuses the document. An interruption, if there may be one, leaves the rest undecided. The
// platform's log and its trigger service are not available meanwhile; used on one thread.
Findings findingsIn(const DocumentText& document, const VIGParserConfig& registry, const Catalogue& catalogue,
                    const Interruption* interruption = nullptr);

}  // namespace Brenta::OS::VIG::Tool
