#include "tools/vig/tune/TuneTarget.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace Brenta::OS::VIG::Tool {

namespace {

// A share such as 0.1 % is no double, nor is the share that devices have.
constexpr double kSlack = 1 + 1e-9;

double spreadOf(const FleetOutcome& outcome, const FleetSize& size) {
    const auto devices = static_cast<double>(size.devices);
    const auto triggers = static_cast<double>(outcome.triggers);
    if (outcome.triggers == 0 || size.devices < 2) {
        return 1;
    }
    const double variance = (static_cast<double>(outcome.squares) - triggers * triggers / devices) / (devices - 1);
    return std::max(1.0, variance / (triggers / devices));
}

}  // namespace

std::optional<TuneTarget> TuneTarget::of(std::string_view text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const std::string_view unit = text.substr(static_cast<std::size_t>(end - text.data()));
    // What is smaller is no target of anybody, and what a search for it would take is not to be counted.
    if (error != std::errc() || !(1e-9 <= number && number <= 1e9)) {
        return std::nullopt;
    }
    if (unit == "%" && number <= 100) {
        return TuneTarget{Kind::Share, number / 100};
    }
    return unit == "/day" ? std::optional(TuneTarget{Kind::Rate, number}) : std::nullopt;
}

double TuneTarget::measure(const FleetOutcome& outcome, const FleetSize& size) const {
    return kind == Kind::Share ? static_cast<double>(outcome.devices) / static_cast<double>(size.devices)
                               : static_cast<double>(outcome.triggers) / size.days;
}

bool TuneTarget::isBelow(const FleetOutcome& outcome, const FleetSize& size) const {
    return measure(outcome, size) <= value * kSlack;
}

Interval TuneTarget::interval(const FleetOutcome& outcome, const FleetSize& size) const {
    return kind == Kind::Share
               ? shareInterval(static_cast<double>(outcome.devices), static_cast<double>(size.devices))
               : rateInterval(static_cast<double>(outcome.triggers), size.days, spreadOf(outcome, size));
}

bool TuneTarget::isGivenBy(const FleetOutcome& outcome, const FleetSize& size) const {
    return outcome.triggers > 0 && isBelow(outcome, size) && value <= interval(outcome, size).high * kSlack;
}

Certainty TuneTarget::certainty(const FleetOutcome& outcome, const FleetSize& size) const {
    if (kind == Kind::Share) {
        return certaintyOf(value, static_cast<double>(size.devices), shareInterval);
    }
    return certaintyOf(value, size.days, [spread = spreadOf(outcome, size)](double counted, double days) {
        return rateInterval(counted, days, spread);
    });
}

}  // namespace Brenta::OS::VIG::Tool
