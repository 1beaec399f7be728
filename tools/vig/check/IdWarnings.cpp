#include "tools/vig/check/Warnings.h"

#include <cmath>
#include <optional>
#include <unordered_map>

#include "tools/vig/document/StrictJson.h"
#include "tools/vig/words/Text.h"
#include "vig/parsers/JsonValues.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostShownOfId = 40;

// Returns the id that the library takes, if any.
std::optional<std::int64_t> takeId(const DocumentText& document, const Json::Value& object, const std::string& path,
                                   std::vector<Finding>& found) {
    const Json::Value& json = object["id"];
    const auto id = toInt64(json);
    if (id && json.type() == Json::realValue && json.asDouble() != std::trunc(json.asDouble())) {
        Place place = document.placeOf(json, path + ".id");
        const std::string text = excerpt(
            std::string_view(document.source().text()).substr(place.begin, place.end - place.begin), kMostShownOfId);
        warn(found, "truncated-id", std::move(place), "the id " + text + " is read as " + std::to_string(*id));
    }
    return id;
}

}  // namespace

void appendIdWarnings(const DocumentText& document, std::vector<Finding>& found) {
    std::unordered_map<std::int64_t, std::string> pathById;
    StrictJson::forEach(document.root()["configs"], "configs", [&](const Json::Value& config, const std::string& path) {
        if (!config.isObject()) {
            return;
        }
        const auto id = takeId(document, config, path, found);
        if (id && !pathById.emplace(*id, path).second) {
            warn(found, "duplicate-id", document.placeOf(config["id"], path + ".id"),
                 pathById[*id] + " has the id " + std::to_string(*id) + " as well");
        }
        if (config["payload"].isObject()) {
            takeId(document, config["payload"], path + ".payload", found);
        }
    });
}

}  // namespace Brenta::OS::VIG::Tool
