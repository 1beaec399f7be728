#pragma once

#include <cstdint>

namespace Brenta::OS::VIG {

// The error is what a parser found: Ok, or the innermost layer of the document that is wrong. The values are fixed; 1
// is not assigned.
enum class VIGParseError : std::int32_t {
    Ok = 0,                    // there is a value
    InvalidJson = 2,           // the text is not JSON
    InvalidResponse = 3,       // the root or its "configs" has the wrong shape
    InvalidConfig = 4,         // a configuration has the wrong shape
    InvalidConfigPayload = 5,  // a payload has the wrong shape
    InvalidFsm = 6,            // a state machine is invalid
};

}  // namespace Brenta::OS::VIG
