#include "rulesengine/EvaluationContext.h"

namespace Brenta::OS::RulesEngine {

EvaluationContext::EvaluationContext() = default;
EvaluationContext::~EvaluationContext() = default;

std::optional<std::uint64_t> EvaluationContext::getUint64Attr(std::string_view /*key*/) const {
    return std::nullopt;
}

std::optional<std::int64_t> EvaluationContext::getInt64Attr(std::string_view /*key*/) const {
    return std::nullopt;
}

std::optional<double> EvaluationContext::getDoubleAttr(std::string_view /*key*/) const {
    return std::nullopt;
}

std::optional<bool> EvaluationContext::getBoolAttr(std::string_view /*key*/) const {
    return std::nullopt;
}

std::string_view EvaluationContext::getStringAttr(std::string_view /*key*/) const {
    return {};
}

}  // namespace Brenta::OS::RulesEngine
