#pragma once

#include "os/Export.h"
#include "vig/parsers/VIGParseResult.h"

namespace Json {
class Value;
}

namespace Brenta::OS::VIG {

class VIGParserConfig;

// A parser reads one layer of the rule document. Parsers hold no data, so that any number of parses may run at
// once on different threads.
template <typename T>
class VIG_EXPORT VIGIParser {
  public:
    virtual ~VIGIParser() = default;

    // Parses `json` with the names of `config`; keeps neither. Never throws. A failure is logged once, by the
    // parser that detects it, and an outer parser passes the code of an inner one on unchanged.
    virtual VIGParseResult<T> parse(const Json::Value& json, const VIGParserConfig& config) const = 0;
};

}  // namespace Brenta::OS::VIG
