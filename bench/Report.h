#pragma once

#include <cstddef>
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
    double aim;               // the ratio may be at most that; 0 if there is none
    std::size_t counted = 0;  // how often it is done to count its instructions; 0 if they are not counted
    double units = 1;         // of theirs that ours does
};

// All that is reported, in the order of the table.
std::vector<Comparison> comparisons();

// What is no time: the use of the heap and the size of the library, as rows.
std::string figures();

// How many instructions a scenario takes once.
double instructionsOf(const std::string& scenario, std::size_t times);

// The table in Markdown: ratios of the times, with the instructions that some of them take, then the figures that are
// not times.
std::string tableOf(const Times& times);

// The machine that it was measured on.
std::string machineDescription();

}  // namespace bench
