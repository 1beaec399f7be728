#include "tools/vig/trace/WhyNot.h"

#include <algorithm>
#include <cmath>

namespace Brenta::OS::VIG::Tool {

namespace {

double distance(FilterOperator op, std::int64_t left, std::int64_t right) {
    const auto [low, high] = std::minmax(left, right);
    const auto gap = static_cast<double>(static_cast<std::uint64_t>(high) - static_cast<std::uint64_t>(low));
    const bool needsMore =
        op == FilterOperator::Less || op == FilterOperator::Greater || op == FilterOperator::NotEqual;
    return gap + (needsMore ? 1 : 0);
}

}  // namespace

std::optional<double> missOf(const Comparison& comparison) {
    const auto& left = comparison.left.value;
    const auto& right = comparison.right.value;
    const auto* const leftInteger = std::get_if<std::int64_t>(&left);
    const auto* const rightInteger = std::get_if<std::int64_t>(&right);
    if (leftInteger != nullptr && rightInteger != nullptr) {
        return distance(comparison.filter->op, *leftInteger, *rightInteger);
    }
    const auto* const leftDouble = std::get_if<double>(&left);
    const auto* const rightDouble = std::get_if<double>(&right);
    if (leftDouble == nullptr || rightDouble == nullptr) {
        return std::nullopt;
    }
    const double gap = *leftDouble == *rightDouble ? 0 : std::abs(*leftDouble - *rightDouble);
    return std::isnan(gap) ? std::nullopt : std::optional(gap);
}

}  // namespace Brenta::OS::VIG::Tool
