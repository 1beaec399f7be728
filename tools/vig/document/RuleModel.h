#pragma once

#include <json/value.h>

#include <cstdint>
#include <string>
#include <vector>

#include "rulesengine/EventType.h"
#include "tools/vig/document/DocumentText.h"
#include "vig/parsers/FilterParser.h"

namespace Brenta::OS::VIG::Tool {

// The models tell what a rule document says, piece by piece with its place in the text and as the JSON of the document,
// which has to outlive them, to the verbs that talk about documents. The machines themselves come from the library.

struct OperandModel {
    Place place;  // of its value
    FilterOperand operand;
};

// The filter is as it is written: a constant may stand on the left.
struct FilterModel {
    Place place;
    FilterOperator op;
    FilterValueType valueType;
    OperandModel operand1;
    OperandModel operand2;
    const Json::Value* json;
};

struct ActionModel {
    Place place;  // of its name, with the path of the action
    std::string name;
    std::string key;  // under which the registry is asked for it: "Test", "Test()", "Notify(integer,string)"
};

struct TransitionModel {
    Place place;
    std::string from;
    std::string to;
    RulesEngine::EventType event;
    std::vector<FilterModel> filters;
    std::vector<ActionModel> actions;
    const Json::Value* json;
    std::string where = {};  // people look for it: "line 42", or "transitions[2]" if others stand in that line too
};

struct ConfigModel {
    Place place;
    std::int64_t id;
    std::vector<TransitionModel> transitions;  // in document order
    const Json::Value* json;
};

// Returns the model of the element of "configs" at that index. REQUIRES: the library accepts it. The model refers to
// the document's JSON.
ConfigModel modelOf(const DocumentText& document, Json::ArrayIndex index);

// Does the same for a copy of an element, which has that path, in which other values may stand. The model refers to it.
ConfigModel modelOf(const DocumentText& document, const Json::Value& json, const std::string& path);

// Returns the model of a filter that stands anywhere in a text; `path` is its JSON path. REQUIRES: the library accepts
// it.
FilterModel filterModelOf(const DocumentText& document, const Json::Value& json, const std::string& path);

// It holds a whole document, as text and as what it says. It is not copied, since its parts refer to each other.
struct DocumentModel {
    // REQUIRES: the library accepts the text.
    DocumentModel(std::string fileName, std::string content);
    DocumentModel(const DocumentModel&) = delete;
    DocumentModel& operator=(const DocumentModel&) = delete;

    const DocumentText text;
    std::vector<ConfigModel> configs;  // as many as there are machines
};

// Returns the transition for people to find: `collected -> start (line 42)`.
std::string shownTransition(const TransitionModel& transition);

// Returns the filter as a condition for people to read: `vmRssKB > 2097152`, `PseudoRandomDouble() < 0.1`, `"a" ==
// name`.
std::string conditionOf(const FilterModel& filter);

// Does the same, with the beginning of each long name and text.
std::string shownCondition(FilterModel filter);

// Does the same for the middle of a sentence, between backticks.
std::string markedCondition(const FilterModel& filter);

}  // namespace Brenta::OS::VIG::Tool
