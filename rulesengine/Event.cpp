#include "rulesengine/Event.h"

namespace Brenta::OS::RulesEngine {

namespace {
constexpr EnteringStateEvent enteringState;
}  // namespace

// It refers to a constant, so that neither a constructor at load time nor a destructor at exit has to run.
constinit const EnteringStateEvent& Event::ENTERING_STATE = enteringState;

bool Event::matches(EventType eventType, const EvaluationContext& /*context*/) const {
    return type == eventType;
}

std::optional<std::uint64_t> Event::getUint64Attr(std::string_view /*key*/) const {
    return std::nullopt;
}

std::optional<std::int64_t> Event::getInt64Attr(std::string_view /*key*/) const {
    return std::nullopt;
}

std::optional<double> Event::getDoubleAttr(std::string_view /*key*/) const {
    return std::nullopt;
}

std::optional<bool> Event::getBoolAttr(std::string_view /*key*/) const {
    return std::nullopt;
}

std::string_view Event::getStringAttr(std::string_view /*key*/) const {
    return {};
}

std::vector<std::string_view> Event::keys(ValueType /*valueType*/) const {
    return {};
}

}  // namespace Brenta::OS::RulesEngine
