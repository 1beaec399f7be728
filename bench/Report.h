#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace bench {

// Each scenario has the times that were measured, one a repetition, in seconds for doing it once.
using Times = std::map<std::string, std::vector<double>>;

// It compares two scenarios.
struct Comparison {
    std::string what;
    std::string against;
    std::string ours;
    std::string theirs;
    double aim;               // the ratio may be at most that; 0 if there is none
    std::size_t counted = 0;  // how often it is done to count its instructions; 0 if they are not counted
    double units = 1;         // of theirs that ours does
    // If these are given, the growths of both are compared: each against a smaller scenario of its own, for each unit.
    std::string oursSmaller = {};
    std::string theirsSmaller = {};
};

// Returns all that is reported, in the order of the table.
std::vector<Comparison> comparisons();

// Returns what is no time as rows: the use of the heap and the size of the library.
std::string figures();

// Returns how many instructions a scenario takes once.
double instructionsOf(const std::string& scenario, std::size_t times);

// Returns the table in Markdown: ratios of the times, with the instructions that some of them take, then the figures
// that are not times.
std::string tableOf(const Times& times);

// Describes the machine that it was measured on.
std::string machineDescription();

}  // namespace bench
