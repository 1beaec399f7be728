#pragma once

#include <map>
#include <string>
#include <vector>

namespace bench {

// What was measured of each scenario, one time a repetition, in seconds for doing it once.
using Times = std::map<std::string, std::vector<double>>;

// A comparison of two scenarios.
struct Comparison {
    std::string what;
    std::string against;
    std::string ours;
    std::string theirs;
    double aim;  // the ratio may be at most that; 0 if there is none
};

// All that is reported, in the order of the table.
std::vector<Comparison> comparisons();

// The table in Markdown: ratios of the times, with the instructions that some of them take, then the figures that are
// not times.
std::string tableOf(const Times& times);

// The machine that it was measured on.
std::string machineDescription();

}  // namespace bench
