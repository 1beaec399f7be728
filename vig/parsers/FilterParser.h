#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "os/Export.h"
#include "os/LookupTable.h"
#include "rulesengine/EvaluationContext.h"
#include "rulesengine/Event.h"
#include "rulesengine/Filter.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Json {
class Value;
}

namespace Brenta::OS::VIG {

// The operator is how a filter compares its two operands. The values are fixed.
enum class FilterOperator : std::int32_t {
    Equal = 0,
    NotEqual = 1,
    Greater = 2,
    Less = 3,
    GreaterEqual = 4,
    LessEqual = 5,
};

// Documents write the operators like this.
inline constexpr auto kFilterOperatorTable = makeLookupTable<FilterOperator, const char*>({
    {FilterOperator::Equal, "=="},
    {FilterOperator::NotEqual, "!="},
    {FilterOperator::Greater, ">"},
    {FilterOperator::Less, "<"},
    {FilterOperator::GreaterEqual, ">="},
    {FilterOperator::LessEqual, "<="},
});

// A filter compares in one of these types.
enum class FilterValueType : std::int32_t { String = 0, Integer = 1, Double = 2 };

// Documents write the value types, and the types of parameters, like this.
inline constexpr auto kFilterValueTypeTable = makeLookupTable<FilterValueType, std::string_view>({
    {FilterValueType::String, "string"},
    {FilterValueType::Integer, "integer"},
    {FilterValueType::Double, "double"},
});

// An operand is one side of a comparison, as parsed.
struct VIG_EXPORT FilterOperand {
    enum class Type : std::int32_t {
        Constant = 0,  // `value` is a literal, converted once when the filter is built
        Function = 1,  // `value` names a pure function of the registry, called on every evaluation
        Envvar = 2,    // `value` names an attribute of the event
    };

    // Returns nothing, with a line in the log that says why, if `json` is not a valid operand.
    static std::optional<FilterOperand> fromJson(const Json::Value& json);

    Type type;
    std::string value;
};

// Documents write the operand types like this.
inline constexpr auto kFilterOperandTypeTable = makeLookupTable<FilterOperand::Type, std::string_view>({
    {FilterOperand::Type::Constant, "constant"},
    {FilterOperand::Type::Function, "function"},
    {FilterOperand::Type::Envvar, "envvar"},
});

// Returns the operator that keeps the meaning when the operands change places.
FilterOperator mirrored(FilterOperator op);

// Computes one side of a generic filter. It owns what it needs, so it outlives the registry.
template <typename T>
using OperandFunction = std::function<T(const RulesEngine::EvaluationContext&, const RulesEngine::Event&)>;

// Each returns the operand as a function, never empty. An attribute is read from the event alone and never from the
// context; one that is missing reads as "" or 0. A constant that is no number reads as 0, one beyond the
// range as the nearest limit. A function that the registry does not have for this type is logged and
// yields `fallback`.
OperandFunction<std::string> _createStringOperandFunction(const FilterOperand& operand, const VIGParserConfig& config,
                                                          const std::string& fallback);
OperandFunction<std::int64_t> _createIntegerOperandFunction(const FilterOperand& operand, const VIGParserConfig& config,
                                                            std::int64_t fallback);
OperandFunction<double> _createDoubleOperandFunction(const FilterOperand& operand, const VIGParserConfig& config,
                                                     double fallback);

// T is one of std::string, std::int64_t and double in all of these.

// Sets `out` to a filter that computes lhs, then rhs, always both, and compares them.
template <typename T>
void _createFilter(FilterOperator op, OperandFunction<T> lhs, OperandFunction<T> rhs,
                   std::shared_ptr<RulesEngine::Filter>& out);

// Returns an EvtAndContextComparator of T with the comparison that the operator stands for.
template <typename T>
VIG_EXPORT std::shared_ptr<RulesEngine::Filter> _createTypedEvtAndContextComparator(const FilterOperator& op,
                                                                                    std::string attributeName,
                                                                                    T constant);

// Returns a ReturnValueComparator of T with the comparison that the operator stands for.
// REQUIRES: `function` is not empty.
template <typename T>
VIG_EXPORT std::shared_ptr<RulesEngine::Filter> _createTypedPureFuncReturnValueComparator(const FilterOperator& op,
                                                                                          std::function<T()> function,
                                                                                          T constant);

// Makes a filter of one filter object of a document. Returns null, with a line in the log that says why, if it is
// invalid.
std::shared_ptr<RulesEngine::Filter> _parseFilter(const Json::Value& filter, const VIGParserConfig& config);

}  // namespace Brenta::OS::VIG
