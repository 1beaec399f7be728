#pragma once

#include <cassert>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "os/Export.h"
#include "rulesengine/EvaluationContext.h"
#include "rulesengine/Event.h"
#include "rulesengine/Filter.h"
#include "rulesengine/ShortText.h"

namespace Brenta::OS::RulesEngine {

// Compares an attribute of the event or, where the event lacks it, of the context. A number that both lack
// makes the filter false, whatever the comparison; a string that both lack compares as the empty string.
//
// T is one of std::int64_t, double and std::string, and Op one of the six transparent comparisons of the standard
// library, such as std::less<>. The value is the left operand, the constant the right. Integers compare signed; doubles
// by IEEE-754, exactly; strings byte by byte, unsigned. A comparator is immutable and allocates nothing; machines on
// different threads may share it.
template <typename T, typename Op>
class VIG_EXPORT EvtAndContextComparator final : public Filter {
  public:
    // Any name is accepted; one that neither event nor context knows is missing.
    EvtAndContextComparator(std::string attribute, T rightOperand)
        : attributeName(std::move(attribute)), constant(std::move(rightOperand)) {}

    bool operator()(const EvaluationContext& context, const Event& event) const override {
        if constexpr (std::is_same_v<T, std::string>) {
            std::string_view value = event.getStringAttr(attributeName);
            if (value.empty()) [[unlikely]] {
                value = context.getStringAttr(attributeName);
            }
            if constexpr (std::is_same_v<Op, std::equal_to<>> || std::is_same_v<Op, std::not_equal_to<>>) {
                return Op()(areEqualTexts(value, constant), true);
            } else {
                return Op()(value, std::string_view(constant));
            }
        } else {
            auto value = numberOf(event);
            if (!value) {
                value = numberOf(context);
            }
            return value && Op()(*value, constant);
        }
    }

  private:
    auto numberOf(const auto& source) const {
        if constexpr (std::is_same_v<T, double>) {
            return source.getDoubleAttr(attributeName);
        } else {
            return source.getInt64Attr(attributeName);
        }
    }

    const std::string attributeName;
    const T constant;
};

// Compares what a function returns, which is called afresh on every evaluation, with a constant: T and Op are those of
// EvtAndContextComparator, and so is the rest but for what the function itself allocates.
template <typename T, typename Op>
class VIG_EXPORT ReturnValueComparator final : public Filter {
  public:
    // REQUIRES: `callable` is not empty (asserted in debug builds). The filter is as thread-safe as the callable.
    ReturnValueComparator(std::function<T()> callable, T rightOperand)
        : function(std::move(callable)), constant(std::move(rightOperand)) {
        assert(function);
    }

    bool operator()(const EvaluationContext& /*context*/, const Event& /*event*/) const override {
        return Op()(function(), constant);
    }

  private:
    const std::function<T()> function;
    const T constant;
};

}  // namespace Brenta::OS::RulesEngine
