#pragma once

#include "vig/parsers/VIGConfig.h"
#include "vig/parsers/VIGIParser.h"

namespace Brenta::OS::VIG {

// Parses one element of "configs".
class VIG_EXPORT VIGConfigParser : public VIGIParser<VIGConfig> {
  public:
    VIGParseResult<VIGConfig> parse(const Json::Value& json, const VIGParserConfig& config) const override;
};

}  // namespace Brenta::OS::VIG
