#pragma once

#include <memory>
#include <string>
#include <vector>

#include "vig/parsers/VIGConfig.h"
#include "vig/parsers/VIGIParser.h"

namespace Brenta::OS::VIG {

// Parses a whole rule document. One bad configuration rejects the whole document.
class VIG_EXPORT VIGResponseParser : public VIGIParser<std::vector<std::unique_ptr<VIGConfig>>> {
  public:
    // Parses JSON text. Text that the JSON library would not survive is refused like text that is not JSON.
    VIGParseResult<std::vector<std::unique_ptr<VIGConfig>>> parseFromString(const std::string& text,
                                                                            const VIGParserConfig& config) const;

    VIGParseResult<std::vector<std::unique_ptr<VIGConfig>>> parse(const Json::Value& json,
                                                                  const VIGParserConfig& config) const override;
};

}  // namespace Brenta::OS::VIG
