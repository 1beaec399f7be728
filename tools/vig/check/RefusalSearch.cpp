#include "tools/vig/check/RefusalSearch.h"

#include <algorithm>
#include <utility>

#include "tools/vig/check/RefusalHints.h"
#include "tools/vig/document/ParseErrorText.h"
#include "tools/vig/words/Text.h"
#include "vig/parsers/JsonValues.h"

namespace Brenta::OS::VIG::Tool {

using Names = PieceParser::Names;

namespace {

constexpr std::size_t kMostShownOfPiece = 40;
constexpr std::size_t kMostShownOfMessage = 200;

// Null if there is none.
const Json::Value* memberOf(const Json::Value& object, std::string_view key) {
    return object.find(key.data(), key.data() + key.size());
}

std::string pathOf(const std::string& path, std::string_view key) {
    return path + (path.empty() ? "" : ".") + std::string(key);
}

// What stands for a value while its place is judged and not what is in it.
Json::Value standIn(const Json::Value& value, const Json::Value& accepted, Shape::Kind kind) {
    if (kind != Shape::Kind::Value && value.type() == accepted.type()) {
        return accepted;
    }
    return value.isArray() || value.isObject() ? Json::Value(value.type()) : value;
}

// The operand with a value that fits every value type. REQUIRES: the library accepts the operand.
Json::Value neutral(const Json::Value& operand) {
    Json::Value result = operand;
    result["type"] = operand["type"].asString() == "constant" ? "constant" : "envvar";
    result["value"] = "0";
    return result;
}

bool haveAnyOf(const std::vector<std::string_view>& keys, std::initializer_list<std::string_view> any) {
    return std::ranges::find_first_of(keys, any) != keys.end();
}

// What is wrong with a member of an object, or empty if that is more than its type.
std::string faultOf(std::string_view key, const Json::Value* value, const Json::Value& accepted) {
    if (value == nullptr) {
        return quoted(key) + " is missing";
    }
    const std::string_view type = kindName(*value);
    return type == kindName(accepted) ? std::string() : quoted(key) + " is " + std::string(type);
}

}  // namespace

RefusalSearch::RefusalSearch(const DocumentText& text, const VIGParserConfig& names, std::vector<Diagnostic>& errors)
    : document(text), registry(names), library(names), found(errors) {}

bool RefusalSearch::acceptsResponse() {
    const std::string path;
    const Piece root{kResponseShape, document.root(), path};
    if (root.json.isObject()) {
        return acceptsMember(root, kResponseMembers[0]);
    }
    if (const auto refusal =
            library.refusalOf(root.shape, standIn(root.json, {}, Shape::Kind::Value), Names::Accepted)) {
        add(root, {}, *refusal, {}, {});
        return false;
    }
    return true;
}

bool RefusalSearch::accepts(const Shape& shape, const Json::Value& json, const std::string& path) {
    const auto refusal = library.refusalOf(shape, json, Names::Registered);
    if (!refusal) {
        return true;
    }
    const Piece piece{shape, json, path};
    if (!json.isObject()) {
        add(piece, {}, *refusal, {}, memberHint(shape, {}, &json, library.accepted(shape)));
        return false;
    }
    const std::size_t before = found.size();
    searchInside(piece);
    if (found.size() == before) {
        // Whatever the library has against it must not go unsaid.
        add(piece, {}, *refusal, {}, {});
    }
    return false;
}

void RefusalSearch::searchInside(const Piece& piece) {
    Keys faulty;
    for (const Shape::Member& member : piece.shape.members) {
        const Json::Value* const value = memberOf(piece.json, member.key);
        const bool isAccepted = acceptsMember(piece, member) &&
                                (value == nullptr || acceptsInside(member, *value, pathOf(piece.path, member.key)));
        if (!isAccepted) {
            faulty.push_back(member.key);
        }
    }
    searchCombinations(piece, faulty);
}

bool RefusalSearch::acceptsMember(const Piece& piece, const Shape::Member& member) {
    const Json::Value& acceptedPiece = library.accepted(piece.shape);
    const Json::Value& accepted = *memberOf(acceptedPiece, member.key);
    const Json::Value* const value = memberOf(piece.json, member.key);
    Json::Value trial = acceptedPiece;
    if (value != nullptr) {
        trial[std::string(member.key)] = standIn(*value, accepted, member.kind);
    } else {
        trial.removeMember(std::string(member.key));
    }
    const auto refusal = library.refusalOf(piece.shape, trial, Names::Accepted);
    if (refusal) {
        add(piece, member.key, *refusal, faultOf(member.key, value, accepted),
            memberHint(piece.shape, member.key, value, accepted));
    }
    return !refusal;
}

bool RefusalSearch::acceptsInside(const Shape::Member& member, const Json::Value& json, const std::string& path) {
    if (member.kind == Shape::Kind::Object && json.isObject()) {
        return accepts(*member.inside, json, path);
    }
    bool all = true;
    if (member.kind == Shape::Kind::List && json.isArray()) {
        for (Json::ArrayIndex index = 0; index < json.size(); ++index) {
            all = accepts(*member.inside, json[index], path + "[" + std::to_string(index) + "]") && all;
        }
    }
    return all;
}

// Members that may each be accepted, and are refused together or for the names in them.
void RefusalSearch::searchCombinations(const Piece& piece, const Keys& faulty) {
    const Layer layer = piece.shape.layer;
    if (layer == Layer::Transition && !haveAnyOf(faulty, {"event"})) {
        judgeEvent(piece);
    } else if (layer == Layer::Filter && !haveAnyOf(faulty, {"value_type", "operand1", "operand2"})) {
        judgeOperands(piece);
    } else if (layer == Layer::Action && faulty.empty()) {
        judgeKey(piece);
    } else if (layer == Layer::Action && !haveAnyOf(faulty, {"name"})) {
        judgeName(piece);
    } else if (layer == Layer::Parameter && faulty.empty()) {
        judgeValue(piece);
    }
}

void RefusalSearch::judgeEvent(const Piece& transition) {
    Json::Value trial = library.accepted(transition.shape);
    trial["event"] = transition.json["event"];
    if (const auto refusal = library.refusalOf(transition.shape, trial, Names::Registered)) {
        add(transition, "event", *refusal, {}, eventHint(registry, trial["event"].asString()));
    }
}

// A function that is unknown for the value type, or a constant that is no number: whichever is refused beside an
// operand that fits.
void RefusalSearch::judgeOperands(const Piece& filter) {
    for (const auto& [key, otherKey] : {std::pair("operand1", "operand2"), std::pair("operand2", "operand1")}) {
        const Json::Value& operand = filter.json[key];
        Json::Value trial = library.accepted(filter.shape);
        trial["value_type"] = filter.json["value_type"];
        trial[key] = operand;
        trial[otherKey] = neutral(filter.json[otherKey]);
        if (const auto refusal = library.refusalOf(filter.shape, trial, Names::Registered)) {
            const std::string name = operand["value"].asString();
            const bool isConstant = operand["type"].asString() == "constant";
            add({kOperandShape, operand, pathOf(filter.path, key)}, "value", *refusal, {},
                isConstant ? numberHint(trial["value_type"].asString()) : functionHint(registry, name));
        }
    }
}

void RefusalSearch::judgeKey(const Piece& action) {
    const auto refusal = library.refusalOf(action.shape, action.json, Names::Registered);
    if (!refusal) {
        return;
    }
    Json::Value bare;
    bare["name"] = action.json["name"];
    if (!library.refusalOf(action.shape, bare, Names::Registered)) {
        add(action, "parameters", *refusal, {}, "registered without parameters: remove \"parameters\"");
    } else {
        add(action, "name", *refusal, {}, actionHint(registry, bare["name"].asString()));
    }
}

// Beside parameters that are refused, the name is at fault only if it is that of no action.
void RefusalSearch::judgeName(const Piece& action) {
    Json::Value bare;
    bare["name"] = action.json["name"];
    const std::string name = bare["name"].asString();
    const auto refusal = library.refusalOf(action.shape, bare, Names::Registered);
    if (refusal && keysWithParameters(registry, name).empty()) {
        add(action, "name", *refusal, {}, actionHint(registry, name));
    }
}

void RefusalSearch::judgeValue(const Piece& parameter) {
    if (const auto refusal = library.refusalOf(parameter.shape, parameter.json, Names::Registered)) {
        const Json::Value* const value = memberOf(parameter.json, "value");
        add(parameter, "value", *refusal, value == nullptr ? "\"value\" is missing" : "",
            numberHint(parameter.json["type"].asString()));
    }
}

void RefusalSearch::add(const Piece& piece, std::string_view key, const Refusal& refusal, const std::string& fault,
                        std::string hint) {
    const Json::Value* const member = key.empty() || !piece.json.isObject() ? nullptr : memberOf(piece.json, key);
    Place place = member != nullptr ? document.placeOf(*member, pathOf(piece.path, key))
                                    : document.placeOf(piece.json, piece.path);
    std::string message = shortMessage(refusal.message, document.placeOf(piece.json, {}));
    if (!fault.empty()) {
        message += " (" + fault + ")";
    }
    found.push_back({Severity::Error, std::string(textOf(refusal.error).name), std::move(place), std::move(message),
                     std::move(hint)});
}

// The library ends a message that shows JSON, over many lines, like that.
std::string RefusalSearch::shortMessage(const std::string& message, const Place& piece) const {
    if (!message.ends_with("\n.")) {
        return shortened(message, kMostShownOfMessage);
    }
    const std::string_view text = document.source().text();
    return message.substr(0, message.find(": ") + 2) +
           excerpt(text.substr(piece.begin, piece.end - piece.begin), kMostShownOfPiece);
}

}  // namespace Brenta::OS::VIG::Tool
