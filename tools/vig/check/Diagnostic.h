#pragma once

#include <string>

#include "tools/vig/document/DocumentText.h"

namespace Brenta::OS::VIG::Tool {

enum class Severity { Error, Warning };

// One thing that is wrong with a rule document, at its place.
struct Diagnostic {
    Severity severity;
    std::string name;  // a stable one: of a warning, or of the library's error code
    Place place;
    std::string message;
    std::string hint;  // what would mend it; may be empty
};

}  // namespace Brenta::OS::VIG::Tool
