#pragma once

#include <memory>

#include "vig/parsers/VIGParseError.h"

namespace Brenta::OS::VIG {

// A parser returns this: `value` is set exactly when `error` is Ok. The receiver owns the value.
template <typename T>
struct VIGParseResult {
    std::unique_ptr<T> value;  // null unless `error` is Ok
    VIGParseError error;       // what is wrong, of which the log has the details
};

}  // namespace Brenta::OS::VIG
