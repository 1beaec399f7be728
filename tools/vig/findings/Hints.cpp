#include "tools/vig/findings/Hints.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"
#include "tools/vig/words/Unseen.h"
#include "vig/EventTypeNames.h"
#include "vig/parsers/JsonValues.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostNamesListed = 6;

struct Meant {
    std::string_view written;
    std::string_view meant;
};

// These are of other languages.
constexpr Meant kMeantOperators[] = {{"=", "=="},  {"===", "=="}, {"eq", "=="},  {"<>", "!="}, {"!==", "!="},
                                     {"=!", "!="}, {"ne", "!="},  {"=>", ">="},  {"ge", ">="}, {"gte", ">="},
                                     {"=<", "<="}, {"le", "<="},  {"lte", "<="}, {"gt", ">"},  {"lt", "<"}};
constexpr Meant kMeantTypes[] = {{"int", "integer"},    {"int32", "integer"}, {"int64", "integer"},
                                 {"long", "integer"},   {"float", "double"},  {"real", "double"},
                                 {"decimal", "double"}, {"str", "string"},    {"text", "string"}};

// Returns the beginning of a hint.
std::string firstMeant(std::string_view given, std::span<const Meant> table) {
    const auto found = std::ranges::find(table, given, &Meant::written);
    return found == table.end() ? "" : "write " + inQuotes(found->meant) + ": ";
}

std::string oneOf(std::string_view given, std::span<const std::string_view> names) {
    return "one of " + listOf(names) + (given.empty() ? "" : suggestion(given, names));
}

// Returns the names of a table of the registry, in alphabetical order.
std::vector<std::string_view> namesIn(const auto& table) {
    std::vector<std::string_view> names;
    names.reserve(table.size());
    for (const auto& named : table) {
        names.emplace_back(named.first);
    }
    std::ranges::sort(names);
    return names;
}

// Returns what `tell` says of the registry's table of the functions of a type.
auto ofFunctions(const VIGParserConfig& registry, FilterValueType type, const auto& tell) {
    switch (type) {
        case FilterValueType::Integer:
            return tell(registry.getInt64PureFunctions());
        case FilterValueType::Double:
            return tell(registry.getDoublePureFunctions());
        case FilterValueType::String:
            break;
    }
    return tell(registry.getStringPureFunctions());
}

std::string unknownName(std::string_view what, std::string_view given, const std::vector<std::string_view>& names) {
    const std::string near = suggestion(seenOf(given), names);
    if (near.empty() && names.size() <= kMostNamesListed) {
        return oneOf(given, names);
    }
    const std::string unseen = unseenIn(given);
    return "there is no " + std::string(what) + " " + shownQuoted(given) +
           (unseen.empty() ? "" : ", which has " + unseen) + (near.empty() ? "; known are " + listOf(names) : near);
}

// Says how the number or boolean is written as a string.
std::string asString(const Json::Value& value) {
    const std::string text = toText(value).value_or("");
    return "a string: write " + inQuotes(text) + " for " + text;
}

std::string typeHint(const Json::Value* given, const Json::Value& accepted) {
    const bool isAlone = given != nullptr && given->isObject();
    switch (accepted.type()) {
        case Json::stringValue:
            return given != nullptr && (given->isNumeric() || given->isBool()) ? asString(*given)
                                                                               : "a string is needed";
        case Json::arrayValue:
            return isAlone ? "an array is needed: put [ ] around the object" : "an array is needed; [] for none";
        case Json::objectValue:
            return "an object is needed";
        default:
            break;
    }
    return given != nullptr && given->isString() ? "a number is needed, without quotes" : "a number is needed";
}

}  // namespace

std::string listOf(std::span<const std::string_view> names) {
    return joined(names, ", ", inQuotes);
}

std::string memberHint(const Shape& shape, std::string_view key, const Json::Value* given,
                       const Json::Value& accepted) {
    const bool isString = given != nullptr && given->isString();
    const std::string text = isString ? given->asString() : std::string();
    if (key == "operator") {
        // For texts that short, every one is near.
        return firstMeant(text, kMeantOperators) + oneOf("", kFilterOperatorTable.texts());
    }
    if (key == "value_type" || (key == "type" && shape.layer == Layer::Parameter)) {
        const std::string meant = firstMeant(text, kMeantTypes);
        return meant + oneOf(meant.empty() ? text : "", kFilterValueTypeTable.texts());
    }
    if (key == "type") {
        return oneOf(text, kFilterOperandTypeTable.texts());
    }
    const bool isOperand = key == "operand1" || key == "operand2";
    if (isString && (isOperand || (key.empty() && shape.layer == Layer::Action))) {
        return "an object is needed: write " +
               std::string(isOperand ? R"({ "type": "constant", "value": )" : R"({ "name": )") + shownQuoted(text) +
               " }";
    }
    if (key == "id" && given != nullptr && given->isNumeric()) {
        return shape.layer == Layer::Config ? "a number within the signed 64-bit range is needed"
                                            : "a number within the signed 32-bit range is needed";
    }
    return typeHint(given, accepted);
}

std::string nestingHint(const Shape::Member& missing, const Json::Value& piece) {
    std::string around;
    std::string closing;
    const Shape::Member* member = &missing;
    while (member != nullptr && member->inside != nullptr) {
        const bool isList = member->kind == Shape::Kind::List;
        around += (around.empty() ? "" : " ") + inQuotes(member->key) + (isList ? ": [ {" : ": {");
        closing.insert(0, isList ? " } ]" : " }");
        const Shape::Member* next = nullptr;
        for (const Shape::Member& each : member->inside->members) {
            if (each.inside != nullptr && piece.isMember(std::string(each.key))) {
                return fmt::format("put {} …{} around {}", around, closing, inQuotes(each.key));
            }
            next = each.inside != nullptr ? &each : next;
        }
        member = next;
    }
    return {};
}

std::string rootHint(const Json::Value& root) {
    if (root.isArray()) {
        return R"(put {"configs": … } around it)";
    }
    return root.isObject() && root.isMember("rules") && (root.isMember("tests") || root.isMember("properties"))
               ? "this is a file of tests, which `vig test` runs"
               : std::string();
}

std::string eventHint(const VIGParserConfig& registry, std::string_view name,
                      const std::vector<std::string>& attributes) {
    const Catalogue& catalogue = Catalogue::builtIn();
    std::vector<std::string_view> names = namesIn(registry.getEventTypes());
    std::stable_partition(names.begin(), names.end(), [&](std::string_view each) {
        const auto type = kEventTypeNames.reverseLookup(std::string(each));
        const CataloguedAttributes* const known = type ? catalogue.find(*type) : nullptr;
        return known != nullptr && std::ranges::all_of(attributes, [&](const std::string& attribute) {
                   return known->contains(attribute);
               });
    });
    return unknownName("event", name, names);
}

std::string actionHint(const VIGParserConfig& registry, std::string_view name) {
    const auto withParameters = keysWithParameters(registry, name);
    return withParameters.empty() ? unknownName("action", name, namesIn(registry.getActionFunctionFactories()))
                                  : "registered as " + listOf(withParameters);
}

std::vector<std::string_view> keysWithParameters(const VIGParserConfig& registry, std::string_view name) {
    std::vector<std::string_view> keys = namesIn(registry.getActionFunctionFactories());
    std::erase_if(keys, [&](std::string_view key) { return key.substr(0, key.find('(')) != name; });
    return keys;
}

std::string functionHint(const VIGParserConfig& registry, std::string_view name) {
    std::vector<std::string_view> all;
    for (const auto& [type, text] : kFilterValueTypeTable.pairs) {
        const auto names = functionNames(registry, type);
        if (std::ranges::binary_search(names, name)) {
            return "write \"value_type\": " + inQuotes(text) + ", which the function gives";
        }
        all.insert(all.end(), names.begin(), names.end());
    }
    std::ranges::sort(all);
    return unknownName("function", name, all);
}

bool hasFunction(const VIGParserConfig& registry, const std::string& name, FilterValueType type) {
    return ofFunctions(registry, type, [&](const auto& table) { return table.contains(name); });
}

std::vector<std::string_view> functionNames(const VIGParserConfig& registry, FilterValueType type) {
    return ofFunctions(registry, type, [](const auto& table) { return namesIn(table); });
}

std::string operandTypeHint(const VIGParserConfig& registry, FilterOperand::Type given, const std::string& value) {
    const Catalogue& catalogue = Catalogue::builtIn();
    const auto isAttribute = [&](const auto& pair) {
        const CataloguedAttributes* const known = catalogue.find(pair.first);
        return known != nullptr && known->contains(value);
    };
    const auto isFunction = [&](const auto& pair) { return hasFunction(registry, value, pair.first); };
    if (std::ranges::any_of(kEventTypeNames.pairs, isAttribute)) {
        return shownQuoted(value) + " is an attribute: write \"type\": \"envvar\"";
    }
    if (given == FilterOperand::Type::Constant && std::ranges::any_of(kFilterValueTypeTable.pairs, isFunction)) {
        return shownQuoted(value) + " is a function: write \"type\": \"function\"";
    }
    const auto number = readNumber<double>(value);
    const bool isNumber = number.isInRange && number.length == value.size();
    return given == FilterOperand::Type::Function && isNumber
               ? shownQuoted(value) + " is a number: write \"type\": \"constant\""
               : std::string();
}

std::string numberHint(std::string_view type) {
    return type == "integer" ? "a whole number within the range is needed, such as \"80\""
                             : "a number within the range is needed, such as \"0.5\"";
}

}  // namespace Brenta::OS::VIG::Tool
