#include "tools/vig/document/StrictJson.h"

#include <fmt/format.h>
#include <json/reader.h>

#include <algorithm>
#include <memory>

#include "tools/vig/document/JsonMistake.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"
#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostShownOfMessage = 500;

// Returns the report of the strict reader, which is empty if it finds nothing.
std::string reportOf(const std::string& text) {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    const std::string_view json = withoutByteOrderMark(text);
    Json::Value root;
    std::string report;
    reader->parse(json.data(), json.data() + json.size(), &root, &report);
    return report;
}

std::string messageAt(const SourceText& source, SourceText::Position position, std::string_view what) {
    return fmt::format("{}:{}:{}: error: {}", source.name(), position.line, position.column,
                       shortened(what, kMostShownOfMessage));
}

// Returns the first entry of a report, "* Line 1, Column 2\n  message\n", as a message of the tool.
std::string messageOf(const SourceText& source, std::string_view report) {
    const auto position = DocumentText::reportedPosition(report.substr(0, report.find('\n')));
    if (position) {
        report.remove_prefix(std::min(report.find_first_not_of("\n ", report.find('\n')), report.size()));
    }
    return messageAt(source, position.value_or(SourceText::Position{1, 1}), report.substr(0, report.find('\n')));
}

}  // namespace

std::string_view kindName(const Json::Value& value) {
    switch (value.type()) {
        case Json::nullValue:
            return "null";
        case Json::stringValue:
            return "a string";
        case Json::booleanValue:
            return "a boolean";
        case Json::arrayValue:
            return "an array";
        case Json::objectValue:
            return "an object";
        default:
            return "a number";
    }
}

std::vector<std::string> StrictJson::mistakesIn(const DocumentText& document) {
    const SourceText& source = document.source();
    // The strict reader must not be given what the other one refuses, such as text that is nested too deep.
    const std::string report = document.report() ? *document.report() : reportOf(source.text());
    std::vector<std::string> messages;
    if (report.empty()) {
        return messages;
    }
    for (const JsonMistake& each : jsonMistakesIn(source, JsonDialect::Strict)) {
        messages.push_back(messageAt(source, source.positionOf(each.begin), each.message + "; " + each.hint));
    }
    if (messages.empty()) {
        messages.push_back(messageOf(source, report));
    }
    return messages;
}

bool StrictJson::hasMember(const Json::Value& object, const std::string& key, const std::string& path) {
    if (!object.isMember(key) && !isMisspelt(path, key)) {
        complain(object, path, inQuotes(key) + " is missing");
    }
    return object.isMember(key);
}

void StrictJson::complain(const Json::Value& at, const std::string& path, const std::string& what) {
    if (errors.size() <= kMostShown) {
        complain(document.placeOf(at, path), what);
    }
}

void StrictJson::complain(const Place& place, const std::string& what) {
    const auto position = document.source().positionOf(place.begin);
    insert(place.begin, fmt::format("{}:{}:{}: error: {}{}{}", document.source().name(), position.line, position.column,
                                    shortened(place.path, kMostShownOfMessage), place.path.empty() ? "" : ": ",
                                    shortened(what, kMostShownOfMessage)));
}

void StrictJson::add(const Json::Value& at, std::string mistake) {
    insert(document.placeOf(at, "").begin, std::move(mistake));
}

void StrictJson::insert(std::size_t place, std::string mistake) {
    if (errors.size() == kMostShown) {
        place = document.source().text().size();
        mistake = fmt::format("{}: error: has more mistakes than the {} shown", document.source().name(), kMostShown);
    }
    if (errors.size() <= kMostShown) {
        const auto after = std::ranges::upper_bound(places, place);
        errors.insert(errors.end() - (places.end() - after), std::move(mistake));
        places.insert(after, place);
    }
}

void StrictJson::complainOfKind(const Json::Value& json, const std::string& path, std::string_view expected) {
    complain(json, path, fmt::format("expected {}, got {}", expected, kindName(json)));
}

bool StrictJson::isArray(const Json::Value& json, const std::string& path) {
    if (!json.isArray()) {
        complainOfKind(json, path, "an array");
    }
    return json.isArray();
}

bool StrictJson::isObject(const Json::Value& json, const std::string& path, const Keys& known) {
    if (!json.isObject()) {
        complainOfKind(json, path, "an object");
        return false;
    }
    for (const std::string& key : json.getMemberNames()) {
        if (std::ranges::find(known, key) != known.end()) {
            continue;
        }
        complain(json[key], path, "unknown key " + shownQuoted(key) + suggestion(key, known));
        for (const std::string_view each : known) {
            const std::string name(each);
            if (errors.size() <= kMostShown && !json.isMember(name) && !suggestion(key, {&each, 1}).empty()) {
                misspelt.insert(member(path, name));
            }
        }
    }
    return true;
}

bool StrictJson::hasOnly(const Json::Value& object, const Keys& known) {
    const Json::Value::Members names = object.getMemberNames();
    return std::ranges::all_of(names, [&](const std::string& each) { return std::ranges::count(known, each) > 0; });
}

bool StrictJson::isMisspelt(const std::string& path, const std::string& key) const {
    return misspelt.contains(member(path, key));
}

std::string StrictJson::member(const std::string& path, const std::string& key) {
    return path.empty() ? key : path + "." + key;
}

std::optional<std::string> StrictJson::text(const Json::Value& json, const std::string& path) {
    if (!json.isString()) {
        complainOfKind(json, path, "a string");
        return std::nullopt;
    }
    std::string value = json.asString();
    if (replaceInvalidUtf8(value) != value) {
        complain(json, path, "invalid UTF-8");
        return std::nullopt;
    }
    return value;
}

std::optional<std::string> StrictJson::optionalText(const Json::Value& object, const std::string& key,
                                                    const std::string& path) {
    return object.isMember(key) ? text(object[key], member(path, key)) : std::nullopt;
}

std::optional<std::string> StrictJson::requiredText(const Json::Value& object, const std::string& key,
                                                    const std::string& path) {
    return hasMember(object, key, path) ? optionalText(object, key, path) : std::nullopt;
}

std::optional<std::int64_t> StrictJson::optionalInteger(const Json::Value& object, const std::string& key,
                                                        const std::string& path, std::int64_t least,
                                                        std::int64_t most) {
    if (!object.isMember(key)) {
        return std::nullopt;
    }
    const Json::Value& json = object[key];
    if (json.isIntegral() && json.isInt64() && json.asInt64() >= least && json.asInt64() <= most) {
        return json.asInt64();
    }
    complain(json, member(path, key), fmt::format("expected an integer from {} to {}", least, most));
    return std::nullopt;
}

std::vector<std::string> StrictJson::texts(const Json::Value& json, const std::string& path) {
    std::vector<std::string> result;
    if (isArray(json, path)) {
        forEach(json, path, [&](const Json::Value& each, const std::string& place) {
            result.push_back(text(each, place).value_or(""));
        });
    }
    return result;
}

}  // namespace Brenta::OS::VIG::Tool
