#include "vig/parsers/VIGConfigParser.h"

#include <json/value.h>

#include <optional>
#include <utility>

#include "vig/base/Log.h"
#include "vig/parsers/JsonValues.h"
#include "vig/parsers/VIGConfigPayloadParser.h"

namespace Brenta::OS::VIG {

VIGParseResult<VIGConfig> VIGConfigParser::parse(const Json::Value& json, const VIGParserConfig& config) const {
    const std::optional<std::int64_t> id = json.isObject() ? toInt64(json["id"]) : std::nullopt;
    if (!id || !json["payload"].isObject()) {
        VIG_LOG_ERROR("Invalid VIG Config JSON: %s.", styledText(json).c_str());
        return {nullptr, VIGParseError::InvalidConfig};
    }
    auto payload = VIGConfigPayloadParser().parse(json["payload"], config);
    if (payload.error != VIGParseError::Ok) {
        return {nullptr, payload.error};
    }
    return {std::make_unique<VIGConfig>(*id, std::move(payload.value)), VIGParseError::Ok};
}

}  // namespace Brenta::OS::VIG
