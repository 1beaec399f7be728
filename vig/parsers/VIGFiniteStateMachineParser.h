#pragma once

#include "rulesengine/FiniteStateMachine.h"
#include "vig/parsers/VIGIParser.h"

namespace Brenta::OS::VIG {

// Parses the "data" of a payload. One bad transition, filter, action or name rejects the whole machine.
class VIG_EXPORT VIGFiniteStateMachineParser : public VIGIParser<RulesEngine::FiniteStateMachine> {
  public:
    VIGParseResult<RulesEngine::FiniteStateMachine> parse(const Json::Value& json,
                                                          const VIGParserConfig& config) const override;
};

}  // namespace Brenta::OS::VIG
