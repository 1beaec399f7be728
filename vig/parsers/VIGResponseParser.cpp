#include "vig/parsers/VIGResponseParser.h"

#include <json/reader.h>
#include <json/value.h>

#include <optional>
#include <utility>

#include "vig/Log.h"
#include "vig/parsers/JsonText.h"
#include "vig/parsers/VIGConfigParser.h"

namespace Brenta::OS::VIG {

namespace {

// Empty on success, otherwise a report of what is wrong with the text and where.
std::optional<std::string> read(const std::string& text, Json::Value& root) {
    Json::CharReaderBuilder builder;
    // Comments are accepted and mean nothing. To keep them, the reader searches the text before each one again.
    builder.settings_["collectComments"] = false;
    if (auto report = reportOfUnreadable(text, builder.settings_["stackLimit"].asUInt())) {
        return report;
    }
    const std::string respelled = respellForLocale(text);
    const std::string& readable = respelled.empty() ? text : respelled;
    std::string errors;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    if (!reader->parse(readable.data(), readable.data() + readable.size(), &root, &errors)) {
        return errors;
    }
    return std::nullopt;
}

}  // namespace

VIGParseResult<std::vector<std::unique_ptr<VIGConfig>>> VIGResponseParser::parseFromString(
    const std::string& text, const VIGParserConfig& config) const {
    Json::Value root;
    if (const auto report = read(text, root)) {
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
