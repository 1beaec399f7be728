#pragma once

#include "vig/parsers/VIGConfigPayload.h"
#include "vig/parsers/VIGIParser.h"

namespace Brenta::OS::VIG {

// Parses the "payload" of a configuration.
class VIG_EXPORT VIGConfigPayloadParser : public VIGIParser<VIGConfigPayload> {
  public:
    VIGParseResult<VIGConfigPayload> parse(const Json::Value& json, const VIGParserConfig& config) const override;
};

}  // namespace Brenta::OS::VIG
