#include "vig/parsers/JsonValues.h"

#include <json/value.h>
#include <json/writer.h>

#include <algorithm>

#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG {

namespace {

constexpr int kMostStyledLevels = 32;  // rule documents need about ten

bool nestedDeeperThan(int levels, const Json::Value& value) {
    if (!value.isArray() && !value.isObject()) {
        return false;
    }
    return levels == 0 || std::any_of(value.begin(), value.end(), [levels](const Json::Value& member) {
               return nestedDeeperThan(levels - 1, member);
           });
}

}  // namespace

std::optional<std::int64_t> toInt64(const Json::Value& value) {
    switch (value.type()) {
        case Json::intValue:
            return value.asInt64();
        case Json::uintValue:
            return value.isInt64() ? std::optional(value.asInt64()) : std::nullopt;
        case Json::realValue: {
            const double real = value.asDouble();
            // 2^63 itself is representable as a double and does not fit, -2^63 does.
            return real >= -0x1p63 && real < 0x1p63 ? std::optional(static_cast<std::int64_t>(real)) : std::nullopt;
        }
        default:
            return std::nullopt;
    }
}

std::optional<std::int32_t> toInt32(const Json::Value& value) {
    return toInt32(toInt64(value));
}

std::optional<std::string> toText(const Json::Value& value) {
    if (value.isObject() || value.isArray()) {
        return std::nullopt;
    }
    return value.asString();
}

std::string styledText(const Json::Value& value) {
    if (!nestedDeeperThan(kMostStyledLevels, value)) {
        return value.toStyledString();
    }
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value) + "\n";
}

}  // namespace Brenta::OS::VIG
