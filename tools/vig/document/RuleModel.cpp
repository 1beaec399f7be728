#include "tools/vig/document/RuleModel.h"

#include <map>
#include <utility>

#include "tools/vig/document/StrictJson.h"
#include "tools/vig/words/Text.h"
#include "vig/EventTypeNames.h"
#include "vig/parsers/JsonValues.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

// Builds the models of one document, whose values all count their offsets from the same byte.
class Modeller {
  public:
    explicit Modeller(const DocumentText& text) : document(text) {}

    ConfigModel config(const Json::Value& json, const std::string& path) const {
        ConfigModel model{document.placeOf(json, path), toInt64(json["id"]).value_or(0), {}, &json};
        StrictJson::forEach(json["payload"]["data"]["transitions"], path + ".payload.data.transitions",
                            [&](const Json::Value& each, const std::string& place) {
                                model.transitions.push_back(transition(each, place));
                            });
        nameLines(model.transitions);
        return model;
    }

    FilterModel filter(const Json::Value& json, const std::string& path) const {
        const std::string op = json["operator"].asString();
        return {document.placeOf(json, path),
                kFilterOperatorTable.reverseLookup(op.c_str()).value_or(FilterOperator::Equal),
                kFilterValueTypeTable.reverseLookup(json["value_type"].asString()).value_or(FilterValueType::String),
                operand(json["operand1"], path + ".operand1"),
                operand(json["operand2"], path + ".operand2"),
                &json};
    }

  private:
    void nameLines(std::vector<TransitionModel>& transitions) const {
        const auto lineOf = [&](const TransitionModel& each) {
            return document.source().positionOf(document.placeOf((*each.json)["from_state"], {}).begin).line;
        };
        std::map<std::size_t, std::size_t> counts;
        for (const TransitionModel& each : transitions) {
            ++counts[lineOf(each)];
        }
        for (TransitionModel& each : transitions) {
            const std::size_t line = lineOf(each);
            each.where = counts[line] == 1 ? "line " + std::to_string(line)
                                           : each.place.path.substr(each.place.path.rfind("transitions["));
        }
    }

    TransitionModel transition(const Json::Value& json, const std::string& path) const {
        TransitionModel model{document.placeOf(json, path),
                              json["from_state"].asString(),
                              json["to_state"].asString(),
                              kEventTypeNames.reverseLookup(json["event"].asCString()).value_or(EventType{}),
                              {},
                              {},
                              &json};
        StrictJson::forEach(json["filters"], path + ".filters", [&](const Json::Value& each, const std::string& place) {
            model.filters.push_back(filter(each, place));
        });
        StrictJson::forEach(json["actions"], path + ".actions", [&](const Json::Value& each, const std::string& place) {
            model.actions.push_back(action(each, place));
        });
        return model;
    }

    OperandModel operand(const Json::Value& json, const std::string& path) const {
        return {document.placeOf(json["value"], path + ".value"),
                FilterOperand::fromJson(json).value_or(FilterOperand{FilterOperand::Type::Constant, ""})};
    }

    ActionModel action(const Json::Value& json, const std::string& path) const {
        std::string name = json["name"].asString();
        std::string key = name;
        if (json["parameters"].isArray()) {
            const auto typeOf = [](const Json::Value& parameter) { return parameter["type"].asString(); };
            key += "(" + joined(json["parameters"], ",", typeOf) + ")";
        }
        return {document.placeOf(json["name"], path), std::move(name), std::move(key)};
    }

    const DocumentText& document;
};

std::string termOf(const OperandModel& model, FilterValueType valueType) {
    const std::string& text = model.operand.value;
    switch (model.operand.type) {
        case FilterOperand::Type::Function:
            return text + "()";
        case FilterOperand::Type::Envvar:
            return text;
        case FilterOperand::Type::Constant:
            break;
    }
    return valueType == FilterValueType::String ? inQuotes(text) : text;
}

}  // namespace

ConfigModel modelOf(const DocumentText& document, Json::ArrayIndex index) {
    return modelOf(document, document.root()["configs"][index], "configs[" + std::to_string(index) + "]");
}

ConfigModel modelOf(const DocumentText& document, const Json::Value& json, const std::string& path) {
    return Modeller(document).config(json, path);
}

FilterModel filterModelOf(const DocumentText& document, const Json::Value& json, const std::string& path) {
    return Modeller(document).filter(json, path);
}

DocumentModel::DocumentModel(std::string fileName, std::string content)
    : text(std::move(fileName), std::move(content)) {
    for (Json::ArrayIndex index = 0; index < text.root()["configs"].size(); ++index) {
        configs.push_back(modelOf(text, index));
    }
}

std::string shownTransition(const TransitionModel& transition) {
    return shownState(transition.from) + " -> " + shownState(transition.to) + " (" + transition.where + ")";
}

std::string conditionOf(const FilterModel& filter) {
    return termOf(filter.operand1, filter.valueType) + " " + kFilterOperatorTable.lookup(filter.op) + " " +
           termOf(filter.operand2, filter.valueType);
}

std::string shownCondition(FilterModel filter) {
    for (OperandModel* const each : {&filter.operand1, &filter.operand2}) {
        each->operand.value = shortened(each->operand.value, kMostShownOfName);
    }
    return conditionOf(filter);
}

std::string markedCondition(const FilterModel& filter) {
    return "`" + shownCondition(filter) + "`";
}

}  // namespace Brenta::OS::VIG::Tool
