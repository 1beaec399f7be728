#include "tools/vig/tune/Certainty.h"

#include <algorithm>
#include <cmath>

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr double kZ = 1.959963984540054;  // standard deviations on each side hold 95 %
constexpr double kZ2 = kZ * kZ;

}  // namespace

Interval shareInterval(double counted, double devices) {
    const double middle = counted + kZ2 / 2;
    const double half = kZ * std::sqrt(counted * (devices - counted) / devices + kZ2 / 4);
    return {std::max(0.0, middle - half) / (devices + kZ2), std::min(devices + kZ2, middle + half) / (devices + kZ2)};
}

Interval rateInterval(double counted, double days, double spread) {
    const double middle = counted + spread * kZ2 / 2;
    const double half = kZ * std::sqrt(spread * (counted + spread * kZ2 / 4));
    return {std::max(0.0, middle - half) / days, (middle + half) / days};
}

Certainty certaintyOf(double target, double size, const std::function<Interval(double, double)>& interval) {
    const auto fromNone = [&](double sample) { return interval(0, sample).high < target; };
    const auto fromDouble = [&](double sample) { return interval(target * sample, sample).high < 2 * target; };
    Certainty certainty{fromNone(size), fromDouble(size), size};
    if (certainty.fromNone && certainty.fromDouble) {
        return certainty;
    }
    double high = size;
    while (!fromNone(high) || !fromDouble(high)) {
        high *= 2;
    }
    double low = high / 2;
    for (int halvings = 0; halvings < 30; ++halvings) {
        const double middle = (low + high) / 2;
        (fromNone(middle) && fromDouble(middle) ? high : low) = middle;
    }
    certainty.needed = high;
    return certainty;
}

}  // namespace Brenta::OS::VIG::Tool
