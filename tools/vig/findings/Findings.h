#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/vig/document/DocumentText.h"
#include "tools/vig/trace/Witness.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

enum class Severity { Error, Warning };

// It names a transition for people to find, whatever else is wrong with it.
struct TransitionName {
    std::string from;  // "?" if no name is there
    std::string to;
    std::size_t line;  // where the names stand
};

// It says one thing that is wrong with a rule document, at its place.
struct Finding {
    Severity severity;
    std::string name;  // a stable one: of a warning, or of the library's error code
    Place place;
    std::string message;
    std::string hint;                                  // what would mend it; may be empty
    std::shared_ptr<const Witness> witness = nullptr;  // that it happens, with an empty context; may be null
    std::optional<TransitionName> transition = {};     // in which the place lies
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

// Orders the findings as their places stand in the text, and names the transitions that these lie in. What is found at
// one place stays in its order.
void settle(std::vector<Finding>& found, const DocumentText& document);

}  // namespace Brenta::OS::VIG::Tool
