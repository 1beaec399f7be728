#include "tools/vig/decide/LoadSum.h"

#include <numeric>

namespace Brenta::OS::VIG::Tool {

namespace {

// Denominators above that are given up for a bound that is a little higher.
constexpr std::uint64_t kMostEvents = 1'000'000;

Rate roundedUp(Rate rate) {
    return {(rate.triggers * kMostEvents + rate.events - 1) / rate.events, kMostEvents};
}

Rate sumOf(Rate left, Rate right) {
    if (left.events / std::gcd(left.events, right.events) > kMostEvents / right.events) {
        left = roundedUp(left);
        right = roundedUp(right);
    }
    const std::uint64_t events = std::lcm(left.events, right.events);
    const std::uint64_t triggers = left.triggers * (events / left.events) + right.triggers * (events / right.events);
    const std::uint64_t common = std::gcd(triggers, events);
    return {triggers / common, events / common};
}

}  // namespace

void LoadSum::add(const Proof::WorstLoad& load) {
    isWhole = isWhole && load.isDecided;
    triggers += load.most.value_or(0);
    rate = sumOf(rate, load.rate.value_or(Rate{0, 1}));
}

}  // namespace Brenta::OS::VIG::Tool
