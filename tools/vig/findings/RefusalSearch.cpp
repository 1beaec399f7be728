// The search for what is refused.
//
// The library tells of a document whether it accepts it, and logs the first mistake alone. People want every mistake,
// each at its place. A second parser would have an opinion of its own, so this search has none: it asks the library
// about many small documents, which it makes of the one in question.
//
// For each kind of object there is one that the library accepts (Shape::accepted). A member is at fault if the library
// refuses that object once the member has been put into it. What stands inside of the member does not count for that,
// and is left out, and so are the names of events and actions: any will do. Then the search goes into those members
// that are objects or lists of objects. A piece that the library accepts as a whole is not looked into, so that a
// document without mistakes costs little more than its parsing, and one with mistakes that of the pieces around them.
//
// Some members are refused only together, such as a function with a value type, or an action with parameters of those
// types, or for the names in them. That is tried once each of them is accepted by itself, beside others that fit all
// that may be asked.
//
// Where all that finds nothing in a piece that is refused, the piece itself is at fault: whatever else the library may
// come to refuse does not go unsaid.
#include "tools/vig/findings/RefusalSearch.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "tools/vig/document/ParseErrorText.h"
#include "tools/vig/document/StrictJson.h"
#include "tools/vig/findings/Hints.h"
#include "tools/vig/findings/PieceParser.h"
#include "tools/vig/findings/ReaderErrors.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using Names = PieceParser::Names;

constexpr std::size_t kMostShownOfPiece = 40;

// Returns null if there is none.
const Json::Value* memberOf(const Json::Value& object, std::string_view key) {
    return object.isObject() ? object.find(key.data(), key.data() + key.size()) : nullptr;
}

// Returns what stands for a value while its place is judged and not what is in it.
Json::Value standIn(const Json::Value& value, const Json::Value& accepted, Shape::Kind kind) {
    if (kind != Shape::Kind::Value && value.type() == accepted.type()) {
        return accepted;
    }
    return value.isArray() || value.isObject() ? Json::Value(value.type()) : value;
}

// Returns the operand with a value that fits every value type. REQUIRES: the library accepts the operand.
Json::Value neutral(const Json::Value& operand) {
    Json::Value result = operand;
    result["type"] = operand["type"].asString() == "constant" ? "constant" : "envvar";
    result["value"] = "0";
    return result;
}

bool haveAnyOf(const std::vector<std::string_view>& keys, std::initializer_list<std::string_view> any) {
    return std::ranges::find_first_of(keys, any) != keys.end();
}

// Says what is wrong with a member of an object, or nothing if that is more than its type.
std::string faultOf(std::string_view key, const Json::Value* value, const Json::Value& accepted) {
    if (value == nullptr) {
        return inQuotes(key) + " is missing";
    }
    const std::string_view kind = kindName(*value);
    return kind == kindName(accepted) ? std::string() : inQuotes(key) + " is " + std::string(kind);
}

// Returns the attributes with which the filters of a transition compare, as far as it has the form of one.
std::vector<std::string> attributesIn(const Json::Value& transition) {
    std::vector<std::string> names;
    const Json::Value* const filters = memberOf(transition, "filters");
    for (Json::ArrayIndex index = 0; filters != nullptr && filters->isArray() && index < filters->size(); ++index) {
        for (const char* const key : {"operand1", "operand2"}) {
            const Json::Value* const operand = memberOf((*filters)[index], key);
            const Json::Value* const type = operand != nullptr ? memberOf(*operand, "type") : nullptr;
            const Json::Value* const value = operand != nullptr ? memberOf(*operand, "value") : nullptr;
            if (type != nullptr && value != nullptr && *type == "envvar" && value->isString()) {
                names.push_back(value->asString());
            }
        }
    }
    return names;
}

class RefusalSearch {
  public:
    RefusalSearch(const DocumentText& text, const VIGParserConfig& names, std::vector<Finding>& errors)
        : document(text), registry(names), library(names), found(errors) {}

    // Holds the paths of what is at fault, be it there or missing.
    std::set<std::string> faults;

    // Tells whether the library accepts the root, but for the elements of "configs".
    bool acceptsResponse() {
        const Piece root{kResponseShape, document.root(), {}};
        const std::string hint = rootHint(root.json);
        if (root.json.isObject()) {
            const bool isAccepted = acceptsMember(root, kResponseMembers[0]);
            if (!isAccepted && !hint.empty()) {
                found.back().hint = hint;
            }
            return isAccepted;
        }
        const auto refusal = library.refusalOf(root.shape, standIn(root.json, {}, Shape::Kind::Value), Names::Accepted);
        if (refusal) {
            add(root, {}, *refusal, {}, hint);
        }
        return !refusal;
    }

    bool accepts(const Shape& shape, const Json::Value& json, const std::string& path) {
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
            add(piece, {}, *refusal, {}, {});
        }
        return false;
    }

  private:
    // It is an object of the document on which the library looks.
    struct Piece {
        const Shape& shape;
        const Json::Value& json;
        std::string path;
    };

    void searchInside(const Piece& piece) {
        std::vector<std::string_view> faulty;
        for (const Shape::Member& member : piece.shape.members) {
            const Json::Value* const value = memberOf(piece.json, member.key);
            if (!acceptsMember(piece, member) ||
                (value != nullptr && !acceptsInside(member, *value, pathOf(piece, member.key)))) {
                faulty.push_back(member.key);
            }
        }
        searchCombinations(piece, faulty);
    }

    bool acceptsMember(const Piece& piece, const Shape::Member& member) {
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
            const std::string nesting = value == nullptr ? nestingHint(member, piece.json) : std::string();
            add(piece, member.key, *refusal, faultOf(member.key, value, accepted),
                nesting.empty() ? memberHint(piece.shape, member.key, value, accepted) : nesting);
        }
        return !refusal;
    }

    bool acceptsInside(const Shape::Member& member, const Json::Value& json, const std::string& path) {
        if (member.kind == Shape::Kind::Object && json.isObject()) {
            return accepts(*member.inside, json, path);
        }
        bool all = true;
        if (member.kind == Shape::Kind::List && json.isArray()) {
            StrictJson::forEach(json, path, [&](const Json::Value& each, const std::string& place) {
                all = accepts(*member.inside, each, place) && all;
            });
        }
        return all;
    }

    // Judges members that may each be accepted, and are refused together or for the names in them.
    void searchCombinations(const Piece& piece, const std::vector<std::string_view>& faulty) {
        const Layer layer = piece.shape.layer;
        if (layer == Layer::Transition && !haveAnyOf(faulty, {"event"})) {
            judgeEvent(piece);
        } else if (layer == Layer::Filter && !haveAnyOf(faulty, {"value_type", "operand1", "operand2"})) {
            judgeOperands(piece);
        } else if (layer == Layer::Action && !haveAnyOf(faulty, {"name"})) {
            judgeAction(piece, faulty.empty());
        } else if (layer == Layer::Parameter && faulty.empty()) {
            judgeValue(piece);
        }
    }

    void judgeEvent(const Piece& transition) {
        Json::Value trial = library.accepted(transition.shape);
        trial["event"] = transition.json["event"];
        if (const auto refusal = library.refusalOf(transition.shape, trial, Names::Registered)) {
            add(transition, "event", *refusal, {},
                eventHint(registry, trial["event"].asString(), attributesIn(transition.json)));
        }
    }

    // Finds a function that is unknown for the value type, or a constant that is no number: whichever is refused beside
    // an operand that fits.
    void judgeOperands(const Piece& filter) {
        for (const auto& [key, otherKey] : {std::pair("operand1", "operand2"), std::pair("operand2", "operand1")}) {
            const Json::Value& operand = filter.json[key];
            Json::Value trial = library.accepted(filter.shape);
            trial["value_type"] = filter.json["value_type"];
            trial[key] = operand;
            trial[otherKey] = neutral(filter.json[otherKey]);
            if (const auto refusal = library.refusalOf(filter.shape, trial, Names::Registered)) {
                const bool isConstant = operand["type"].asString() == "constant";
                const std::string meant = operandTypeHint(
                    registry, isConstant ? FilterOperand::Type::Constant : FilterOperand::Type::Function,
                    operand["value"].asString());
                add({kOperandShape, operand, pathOf(filter, key)}, "value", *refusal, {},
                    !meant.empty() ? meant
                    : isConstant   ? numberHint(trial["value_type"].asString())
                                   : functionHint(registry, operand["value"].asString()));
            }
        }
    }

    // Beside parameters that are refused, the name is at fault only if it is that of no action.
    void judgeAction(const Piece& action, bool areParametersAccepted) {
        Json::Value bare;
        bare["name"] = action.json["name"];
        const std::string name = bare["name"].asString();
        const auto bareRefusal = library.refusalOf(action.shape, bare, Names::Registered);
        const auto refusal = areParametersAccepted ? library.refusalOf(action.shape, action.json, Names::Registered)
                             : keysWithParameters(registry, name).empty() ? bareRefusal
                                                                          : std::nullopt;
        if (refusal && !bareRefusal) {
            add(action, "parameters", *refusal, {}, "registered without parameters: remove \"parameters\"");
        } else if (refusal) {
            add(action, "name", *refusal, {}, actionHint(registry, name));
        }
    }

    void judgeValue(const Piece& parameter) {
        if (const auto refusal = library.refusalOf(parameter.shape, parameter.json, Names::Registered)) {
            add(parameter, "value", *refusal,
                memberOf(parameter.json, "value") == nullptr ? "\"value\" is missing" : "",
                numberHint(parameter.json["type"].asString()));
        }
    }

    // Appends an error at the member, or at what leads people to the piece if it lacks one of that key. `fault` is said
    // beside the message.
    void add(const Piece& piece, std::string_view key, const Refusal& refusal, const std::string& fault,
             std::string hint) {
        const Json::Value* const member = key.empty() ? nullptr : memberOf(piece.json, key);
        const Place whole = document.placeOf(piece.json, piece.path);
        std::string message = shortMessage(refusal.message, whole);
        if (!fault.empty()) {
            message += " (" + fault + ")";
        }
        faults.insert(pathOf(piece, key));
        found.push_back({Severity::Error, std::string(textOf(refusal.error).name),
                         member != nullptr ? document.placeOf(*member, pathOf(piece, key)) : seenPlaceOf(piece),
                         std::move(message), std::move(hint)});
    }

    // Returns where a name or a number of the piece stands, if it has one: people do not look for a brace.
    Place seenPlaceOf(const Piece& piece) const {
        for (const Shape::Member& member : piece.shape.members) {
            const Json::Value* const value = memberOf(piece.json, member.key);
            if (member.inside == nullptr && value != nullptr) {
                return document.placeOf(*value, piece.path);
            }
        }
        return document.placeOf(piece.json, piece.path);
    }

    // The library ends a message that shows JSON, over many lines, like that.
    std::string shortMessage(const std::string& message, const Place& piece) const {
        if (!message.ends_with("\n.")) {
            return shortened(message, kMostShownOfReport);
        }
        const std::string_view text = document.source().text();
        return message.substr(0, message.find(": ") + 2) +
               excerpt(text.substr(piece.begin, piece.end - piece.begin), kMostShownOfPiece);
    }

    // With an empty key it is the path of the piece.
    static std::string pathOf(const Piece& piece, std::string_view key) {
        return key.empty() ? piece.path : StrictJson::member(piece.path, std::string(key));
    }

    const DocumentText& document;
    const VIGParserConfig& registry;
    PieceParser library;
    std::vector<Finding>& found;
};

}  // namespace

std::optional<ConfigVerdicts> judgeConfigs(const DocumentText& document, const VIGParserConfig& registry,
                                           std::vector<Finding>& found) {
    RefusalSearch search(document, registry, found);
    if (!search.acceptsResponse()) {
        return std::nullopt;
    }
    ConfigVerdicts verdicts;
    Json::ArrayIndex index = 0;
    StrictJson::forEach(document.root()["configs"], "configs", [&](const Json::Value& each, const std::string& path) {
        (search.accepts(kConfigShape, each, path) ? verdicts.accepted : verdicts.refused).push_back(index);
        ++index;
    });
    verdicts.faults = std::move(search.faults);
    return verdicts;
}

void searchFilter(const DocumentText& text, const Json::Value& filter, const std::string& path,
                  const VIGParserConfig& registry, std::vector<Finding>& found) {
    RefusalSearch(text, registry, found).accepts(kFilterShape, filter, path);
}

std::vector<Finding> refusalsIn(const DocumentText& document, const VIGParserConfig& registry) {
    if (document.report()) {
        return readerErrors(document);
    }
    std::vector<Finding> found;
    judgeConfigs(document, registry, found);
    settle(found, document);
    return found;
}

}  // namespace Brenta::OS::VIG::Tool
