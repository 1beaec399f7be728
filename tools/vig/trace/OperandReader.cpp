#include "tools/vig/trace/OperandReader.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EvaluationContext;
using RulesEngine::Event;

namespace {

// `source` is an event or a context.
template <typename T>
std::optional<T> attributeOf(const auto& source, const std::string& name) {
    if constexpr (std::is_same_v<T, std::string>) {
        const std::string_view text = source.getStringAttr(name);
        return text.empty() ? std::nullopt : std::optional<T>(text);
    } else if constexpr (std::is_same_v<T, double>) {
        return source.getDoubleAttr(name);
    } else {
        return source.getInt64Attr(name);
    }
}

bool comparesWithConstant(const FilterModel& filter) {
    const bool left = filter.operand1.operand.type == FilterOperand::Type::Constant;
    const bool right = filter.operand2.operand.type == FilterOperand::Type::Constant;
    return left != right;
}

}  // namespace

OperandReader::OperandReader(const std::vector<FunctionResult>& results, const FilterModel& filter,
                             const EvaluationContext& context, const Event& event)
    : results(results),
      type(filter.valueType),
      context(context),
      event(event),
      looksInContext(comparesWithConstant(filter)) {}

ComparedValue OperandReader::read(const FilterOperand& operand) {
    switch (type) {
        case FilterValueType::String:
            return readAs<std::string>(operand);
        case FilterValueType::Integer:
            return readAs<std::int64_t>(operand);
        case FilterValueType::Double:
            break;
    }
    return readAs<double>(operand);
}

template <typename T>
ComparedValue OperandReader::readAs(const FilterOperand& operand) {
    switch (operand.type) {
        case FilterOperand::Type::Constant:
            return {readNearest<T>(operand.value)};
        case FilterOperand::Type::Envvar:
            return readAttribute<T>(operand.value);
        case FilterOperand::Type::Function:
            break;
    }
    // A function that the registry does not have was not called.
    const bool called = next < results.size() && results[next].function == operand.value;
    return called ? results[next++].value : ComparedValue{T()};
}

template <typename T>
ComparedValue OperandReader::readAttribute(const std::string& name) const {
    std::optional<T> found = attributeOf<T>(event, name);
    if (!found && looksInContext) {
        found = attributeOf<T>(context, name);
    }
    if (found) {
        return {std::move(*found)};
    }
    const bool comparesNothing = looksInContext && !std::is_same_v<T, std::string>;
    return comparesNothing ? ComparedValue{std::monostate(), true} : ComparedValue{T(), true};
}

}  // namespace Brenta::OS::VIG::Tool
