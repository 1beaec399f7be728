#pragma once

#include <string>
#include <vector>

namespace bench {

// Runs a program to its end, its output dropped. Returns the processor time that it took, in seconds; ends the
// benchmark if its exit status is another one.
double runProgram(const std::vector<std::string>& command, int exitStatus = 0);

// Returns what a shell command writes to its standard output; ends the benchmark if it fails or writes nothing.
std::string outputOf(const std::string& command);

}  // namespace bench
