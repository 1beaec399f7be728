#include "vig/parsers/VIGResponseParser.h"

#include <json/value.h>

#include <utility>

#include "vig/base/Log.h"
#include "vig/parsers/JsonText.h"
#include "vig/parsers/VIGConfigParser.h"

namespace Brenta::OS::VIG {

VIGParseResult<std::vector<std::unique_ptr<VIGConfig>>> VIGResponseParser::parseFromString(
    const std::string& text, const VIGParserConfig& config) const {
    Json::Value root;
    if (const auto report = readJson(text, root)) {
        VIG_LOG_ERROR("Wrong format, cannot parson json: %s\n%s", report->c_str(), text.c_str());
        return {nullptr, VIGParseError::InvalidJson};
    }
    return parse(root, config);
}

VIGParseResult<std::vector<std::unique_ptr<VIGConfig>>> VIGResponseParser::parse(const Json::Value& json,
                                                                                 const VIGParserConfig& config) const {
    if (!json.isObject() || !json["configs"].isArray()) {
        return {nullptr, VIGParseError::InvalidResponse};
    }
    auto configs = std::make_unique<std::vector<std::unique_ptr<VIGConfig>>>();
    for (const Json::Value& element : json["configs"]) {
        auto parsed = VIGConfigParser().parse(element, config);
        if (parsed.error != VIGParseError::Ok) {
            return {nullptr, parsed.error};
        }
        configs->push_back(std::move(parsed.value));
    }
    return {std::move(configs), VIGParseError::Ok};
}

}  // namespace Brenta::OS::VIG
