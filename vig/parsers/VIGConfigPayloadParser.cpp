#include "vig/parsers/VIGConfigPayloadParser.h"

#include <json/value.h>

#include <optional>
#include <utility>

#include "vig/base/Log.h"
#include "vig/parsers/JsonValues.h"
#include "vig/parsers/VIGFiniteStateMachineParser.h"

namespace Brenta::OS::VIG {

VIGParseResult<VIGConfigPayload> VIGConfigPayloadParser::parse(const Json::Value& json,
                                                               const VIGParserConfig& config) const {
    const std::optional<std::int32_t> id = json.isObject() ? toInt32(json["id"]) : std::nullopt;
    if (!id || !json["data"].isObject()) {
        VIG_LOG_ERROR("Invalid VIG Config Payload JSON: %s.", styledText(json).c_str());
        return {nullptr, VIGParseError::InvalidConfigPayload};
    }
    auto machine = VIGFiniteStateMachineParser().parse(json["data"], config);
    if (machine.error != VIGParseError::Ok) {
        return {nullptr, machine.error};
    }
    return {std::make_unique<VIGConfigPayload>(*id, std::move(machine.value)), VIGParseError::Ok};
}

}  // namespace Brenta::OS::VIG
