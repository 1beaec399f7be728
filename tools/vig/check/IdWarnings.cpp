#include "tools/vig/check/IdWarnings.h"

#include <json/value.h>

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "tools/vig/words/Text.h"
#include "vig/parsers/JsonValues.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostShownOfId = 40;

// The id that the library takes, if any.
std::optional<std::int64_t> checkId(const DocumentText& document, const Json::Value& object, const std::string& path,
                                    std::vector<Diagnostic>& found) {
    const Json::Value& json = object["id"];
    const auto id = toInt64(json);
    if (id && json.type() == Json::realValue && json.asDouble() != std::trunc(json.asDouble())) {
        Place place = document.placeOf(json, path + ".id");
        const std::string text = excerpt(
            std::string_view(document.source().text()).substr(place.begin, place.end - place.begin), kMostShownOfId);
        found.push_back({Severity::Warning,
                         "truncated-id",
                         std::move(place),
                         "the id " + text + " is read as " + std::to_string(*id),
                         {}});
    }
    return id;
}

}  // namespace

void appendIdWarnings(const DocumentText& document, std::vector<Diagnostic>& found) {
    std::unordered_map<std::int64_t, Json::ArrayIndex> indexById;
    const Json::Value& configs = document.root()["configs"];
    for (Json::ArrayIndex index = 0; index < configs.size(); ++index) {
        const Json::Value& config = configs[index];
        if (!config.isObject()) {
            continue;
        }
        const std::string path = "configs[" + std::to_string(index) + "]";
        const auto id = checkId(document, config, path, found);
        if (id && !indexById.emplace(*id, index).second) {
            found.push_back(
                {Severity::Warning,
                 "duplicate-id",
                 document.placeOf(config["id"], path + ".id"),
                 "configs[" + std::to_string(indexById[*id]) + "] has the id " + std::to_string(*id) + " as well",
                 {}});
        }
        if (config["payload"].isObject()) {
            checkId(document, config["payload"], path + ".payload", found);
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
