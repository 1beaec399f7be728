#pragma once

#include <json/value.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/findings/DocumentShape.h"
#include "vig/parsers/FilterParser.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

// Hints say what would mend something; they may be empty.

// Returns the names as JSON strings, with commas between.
std::string listOf(std::span<const std::string_view> names);

// The hint is for a member that is missing (`given` is null) or that the library does not accept where it accepts
// `accepted`; with an empty key, for what stands where an object of that shape should.
std::string memberHint(const Shape& shape, std::string_view key, const Json::Value* given, const Json::Value& accepted);

// The hint is for a piece without that member, in which something stands that belongs into it, at whatever depth.
std::string nestingHint(const Shape::Member& missing, const Json::Value& piece);

// The hint is for a root that is no rule document as a whole, but something else of ours.
std::string rootHint(const Json::Value& root);

// These hints are for names that the registry does not have. Events come first that have the attributes.
std::string eventHint(const VIGParserConfig& registry, std::string_view name,
                      const std::vector<std::string>& attributes);
std::string actionHint(const VIGParserConfig& registry, std::string_view name);
std::string functionHint(const VIGParserConfig& registry, std::string_view name);

bool hasFunction(const VIGParserConfig& registry, const std::string& name, FilterValueType type);

// Returns the names of the registry's functions of a type, in alphabetical order.
std::vector<std::string_view> functionNames(const VIGParserConfig& registry, FilterValueType type);

// Returns under which keys an action of that name is registered with parameters: "Notify(integer)".
std::vector<std::string_view> keysWithParameters(const VIGParserConfig& registry, std::string_view name);

// The hint is for the value of an operand that is refused, where it seems to be that of an operand of another type than
// the one given: the name of an attribute that the tool knows, or of a function, or a number.
std::string operandTypeHint(const VIGParserConfig& registry, FilterOperand::Type given, const std::string& value);

// The hint is for a text that is no number of the type.
std::string numberHint(std::string_view type);

}  // namespace Brenta::OS::VIG::Tool
