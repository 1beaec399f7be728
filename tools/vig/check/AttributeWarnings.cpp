#include "tools/vig/check/Warnings.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/findings/Hints.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

KindSet kindsOf(const CataloguedAttributes& attributes, std::string_view name) {
    const auto place = attributes.find(name);
    return place == attributes.end() ? KindSet() : place->second;
}

// Returns the value type as which an attribute of these kinds can be compared; empty if there is none.
std::string_view comparableAs(KindSet kinds) {
    for (const auto& [type, text] : kFilterValueTypeTable.pairs) {
        if (kinds.has(kindOf(type))) {
            return text;
        }
    }
    return {};
}

// Warns of the operands of one transition's filters.
class OperandWarnings {
  public:
    OperandWarnings(const TransitionModel& transition, const Catalogue& known, const VIGParserConfig& names,
                    std::vector<Finding>& found)
        : event(transition.event), ofEvent(known.find(event)), catalogue(known), registry(names), found(found) {}

    void add(const FilterModel& filter) {
        for (const OperandModel* const operand : {&filter.operand1, &filter.operand2}) {
            if (isAttribute(*operand)) {
                judgeAttribute(*operand, filter);
            } else if (isFunction(*operand) && !hasFunction(registry, operand->operand.value, filter.valueType)) {
                warnOfFallback(*operand, filter.valueType);
            }
        }
    }

  private:
    void judgeAttribute(const OperandModel& operand, const FilterModel& filter) {
        const std::string& name = operand.operand.value;
        const AttributeKind kind = kindOf(filter.valueType);
        KindSet known = ofEvent != nullptr ? kindsOf(*ofEvent, name) : KindSet();
        if (known.has(kind)) {
            return;
        }
        const KindSet inContext = kindsOf(catalogue.context(), name);
        if (hasConstant(filter)) {
            known.add(inContext);
        } else if (inContext.has(kind) || event == EventType::EnteringState) {
            warnOfContext(operand, filter.valueType);
            return;
        }
        if (ofEvent == nullptr || known.has(kind)) {
            return;
        }
        if (!known.isEmpty()) {
            warnOfKind(operand, filter.valueType, known);
        } else {
            warn(found, "unknown-attribute", operand.place,
                 eventNoun() + " are not known to have an attribute " + shownQuoted(name), hintFor(name, kind));
        }
    }

    void warnOfContext(const OperandModel& operand, FilterValueType type) {
        warn(found, "context-ignored", operand.place,
             shownQuoted(operand.operand.value) + " is looked for in the event alone, where it is not, and reads as " +
                 fallbackOf(type) + ": only a comparison with a constant looks at the context",
             "compare it with a constant");
    }

    void warnOfKind(const OperandModel& operand, FilterValueType type, KindSet known) {
        const std::string_view better = comparableAs(known);
        warn(found, "wrong-kind", operand.place,
             shownQuoted(operand.operand.value) + " is known as " + known.text() + ", which a comparison as " +
                 inQuotes(kFilterValueTypeTable.lookup(type)) + " never finds",
             better.empty() ? "attributes of the kinds uint64 and bool cannot be compared at all"
                            : "write \"value_type\": " + inQuotes(better));
    }

    void warnOfFallback(const OperandModel& operand, FilterValueType type) {
        const std::string& name = operand.operand.value;
        warn(found, "function-fallback", operand.place,
             "there is no function " + shownQuoted(name) + " that gives the type " +
                 inQuotes(kFilterValueTypeTable.lookup(type)) + ": it reads as " + fallbackOf(type),
             hintForFunction(name, type));
    }

    std::string hintForFunction(const std::string& name, FilterValueType type) const {
        for (const auto& [other, text] : kFilterValueTypeTable.pairs) {
            if (hasFunction(registry, name, other)) {
                return "write \"value_type\": " + inQuotes(text);
            }
        }
        return asHint(suggestion(name, functionNames(registry, type)));
    }

    static std::string fallbackOf(FilterValueType type) {
        return type == FilterValueType::String ? "the empty text" : "0";
    }

    std::string eventNoun() const { return std::string(nameOf(event)) + " events"; }

    // Tells the names that may have been meant, those first that have the kind, or the events that have this one, or
    // where to make it known.
    std::string hintFor(const std::string& name, AttributeKind kind) const {
        std::vector<std::string_view> names;
        for (const bool ofThatKind : {true, false}) {
            for (const CataloguedAttributes* const attributes : {ofEvent, &catalogue.context()}) {
                for (const auto& [known, kinds] : *attributes) {
                    if (kinds.has(kind) == ofThatKind) {
                        names.push_back(known);
                    }
                }
            }
        }
        std::string hint = asHint(suggestion(name, names));
        if (const auto other = catalogue.eventWith(name); other && hint.empty()) {
            hint = std::string(*other) + " events have it";
        }
        return hint.empty() ? "if the service gives it to them, name it in a file for --catalogue" : hint;
    }

    const EventType event;
    const CataloguedAttributes* const ofEvent;
    const Catalogue& catalogue;
    const VIGParserConfig& registry;
    std::vector<Finding>& found;
};

// Actions that ask for a collection may stand for each other, as far as events have what they need.
std::string hintForAction(const ActionModel& action, EventType event, const Catalogue& catalogue) {
    if (!startsCollection(action.key)) {
        return "without them it logs 0; listen for another event";
    }
    for (const KnownAction& each : kActions) {
        const auto isThere = [&](const ActionNeed& need) {
            return catalogue.promises(event, need.attribute, need.kind);
        };
        if (each.startsCollection && std::ranges::all_of(each.needs, isThere)) {
            return "without them it only logs; did you mean " + inQuotes(each.name) + "?";
        }
    }
    return "without them it only logs; listen for another event";
}

}  // namespace

std::string missingFor(const ActionModel& action, EventType event, const Catalogue& catalogue) {
    static const CataloguedAttributes kNone;
    const CataloguedAttributes* known = catalogue.find(event);
    // The library's own event for a timeout that has run out has none.
    known = known == nullptr && event == EventType::Timeout ? &kNone : known;
    const KnownAction* const asked = findAction(action.key);
    if (known == nullptr || asked == nullptr) {
        return {};
    }
    std::vector<std::string> missing;
    for (const ActionNeed& need : asked->needs) {
        if (!kindsOf(*known, need.attribute).has(need.kind)) {
            missing.push_back(fmt::format("{} ({})", need.attribute, nameOf(need.kind)));
        }
    }
    return fmt::format("{}", fmt::join(missing, ", "));
}

void appendAttributeWarnings(const TransitionModel& transition, const Catalogue& catalogue,
                             const VIGParserConfig& registry, std::vector<Finding>& found) {
    OperandWarnings operands(transition, catalogue, registry, found);
    for (const FilterModel& filter : transition.filters) {
        operands.add(filter);
    }
    for (const ActionModel& action : transition.actions) {
        const std::string missing = missingFor(action, transition.event, catalogue);
        if (!missing.empty()) {
            warn(found, "missing-attribute", action.place,
                 shownQuoted(action.name) + " needs attributes that " + std::string(nameOf(transition.event)) +
                     " events are not known to have: " + missing,
                 hintForAction(action, transition.event, catalogue));
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
