#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string_view>
#include <vector>

namespace Brenta::OS::VIG::Tool {

// It says what the random function gives: the numbers in order, the last one for ever, or, if there are none, what a
// generator with that seed draws.
struct Draws {
    // Messages call so what canBe() accepts: what a generator may draw.
    static constexpr std::string_view NUMBER = "a number from 0 up to, but not including, 1";
    static bool canBe(double number) { return number >= 0 && number < 1; }

    std::uint32_t seed = std::mt19937::default_seed;
    std::vector<double> numbers = {};

    // Returns what gives the first draw and goes on from there, as do its copies, all together. Used on one thread at
    // a time.
    std::function<double()> source() const;
};

}  // namespace Brenta::OS::VIG::Tool
