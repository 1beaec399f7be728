#pragma once

#include <functional>

namespace Brenta::OS::VIG::Tool {

// What has been counted is a sample: the intervals have the share or the rate of all devices in 95 of 100 cases.
struct Interval {
    double low;
    double high;
};

// Returns the interval of Wilson for a share, of which `counted` of so many devices were seen.
Interval shareInterval(double counted, double devices);

// Returns its like for a rate, of which `counted` were seen in so many days; `spread` is the variance over the mean of
// what single devices have, 1 if each comes by chance.
Interval rateInterval(double counted, double days, double spread);

// It says what so large a sample can tell.
struct Certainty {
    bool fromNone;    // the target from nothing at all
    bool fromDouble;  // the target from twice as much
    double needed;    // the size that is enough for both
};

// `interval` is one of the above, of what was counted in a sample of some size.
Certainty certaintyOf(double target, double size, const std::function<Interval(double, double)>& interval);

}  // namespace Brenta::OS::VIG::Tool
