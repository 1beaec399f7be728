#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/check/Warnings.h"
#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/findings/Hints.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using Type = FilterOperand::Type;

bool isNumber(const std::string& text) {
    const auto number = readNumber<double>(text);
    return number.isInRange && number.length == text.size() && text.find_first_of("0123456789") != text.npos;
}

// Judges the operands of one transition's filters.
class TypeJudge {
  public:
    TypeJudge(const TransitionModel& transition, const Catalogue& known, const VIGParserConfig& names,
              std::size_t since, std::vector<Finding>& found)
        : event(transition.event), catalogue(known), registry(names), since(since), found(found) {}

    void judge(const FilterModel& filter) {
        judgeOne(filter, filter.operand1, filter.operand2, "operand1");
        judgeOne(filter, filter.operand2, filter.operand1, "operand2");
    }

  private:
    void judgeOne(const FilterModel& filter, const OperandModel& operand, const OperandModel& other,
                  const char* member) {
        const std::string& text = operand.operand.value;
        const auto meant = isAttribute(operand)  ? meantByAttribute(filter, text, other)
                           : isConstant(operand) ? meantByConstant(filter, text)
                                                 : std::nullopt;
        if (meant) {
            // This is the cause of what else was found there.
            takeOutAt(operand.place, since, found);
            warn(found, "operand-type",
                 placeInside(filter, (*filter.json)[member]["type"], std::string(member) + ".type"),
                 messageFor(operand, text, *meant),
                 "write \"type\": " + inQuotes(kFilterOperandTypeTable.lookup(*meant)) + " if the " + nounOf(*meant) +
                     " is meant");
        }
    }

    std::optional<Type> meantByAttribute(const FilterModel& filter, const std::string& name,
                                         const OperandModel& other) const {
        if (isKnown(name)) {
            return std::nullopt;
        }
        if (hasFunction(registry, name, filter.valueType)) {
            return Type::Function;
        }
        // A text is compared with an attribute; two attributes may be compared as well.
        const bool isText = filter.valueType == FilterValueType::String && catalogue.find(event) != nullptr &&
                            isKnown(other.operand.value) && !isNearKnown(name);
        return isNumber(name) || isText ? std::optional(Type::Constant) : std::nullopt;
    }

    std::optional<Type> meantByConstant(const FilterModel& filter, const std::string& text) const {
        const AttributeKind kind = kindOf(filter.valueType);
        if (catalogue.promises(event, text, kind) || catalogue.promisesInContext(text, kind)) {
            return Type::Envvar;
        }
        return hasFunction(registry, text, filter.valueType) ? std::optional(Type::Function) : std::nullopt;
    }

    bool isKnown(const std::string& name) const {
        const CataloguedAttributes* const known = catalogue.find(event);
        return (known != nullptr && known->contains(name)) || catalogue.context().contains(name);
    }

    bool isNearKnown(const std::string& name) const {
        std::vector<std::string_view> names;
        for (const CataloguedAttributes* const attributes : {catalogue.find(event), &catalogue.context()}) {
            for (const auto& each : *attributes) {
                names.push_back(each.first);
            }
        }
        return !suggestion(name, names).empty();
    }

    std::string messageFor(const OperandModel& operand, const std::string& text, Type meant) const {
        if (isConstant(operand)) {
            return shownQuoted(text) + " is the text itself here, not the " + nounOf(meant) + " of that name";
        }
        return shownQuoted(text) + (meant == Type::Constant && !isNumber(text)
                                        ? " is looked for as an attribute, which " + std::string(nameOf(event)) +
                                              " events are not known to have"
                                        : " is a " + std::string(isNumber(text) ? "number" : "function") +
                                              ", but is looked for as an attribute");
    }

    static std::string nounOf(Type type) {
        return type == Type::Constant ? "value itself" : type == Type::Envvar ? "attribute" : "function";
    }

    const RulesEngine::EventType event;
    const Catalogue& catalogue;
    const VIGParserConfig& registry;
    const std::size_t since;
    std::vector<Finding>& found;
};

}  // namespace

void appendTypeWarnings(const TransitionModel& transition, const Catalogue& catalogue, const VIGParserConfig& registry,
                        std::size_t since, std::vector<Finding>& found) {
    TypeJudge judge(transition, catalogue, registry, since, found);
    for (const FilterModel& filter : transition.filters) {
        judge.judge(filter);
    }
}

}  // namespace Brenta::OS::VIG::Tool
