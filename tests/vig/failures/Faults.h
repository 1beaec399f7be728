#pragma once

#include <map>
#include <string>

// What the system refuses to this executable, whose own definitions stand in front of the C library's. Set while no
// other thread may look.
namespace faults {

struct Opening {
    std::string instead;  // opened in the place of the path
    int error = 0;        // unless this is not 0
};

// By the path, or the name in a folder. Never destroyed, since a build that counts lines opens a file after all else.
inline std::map<std::string, Opening>& openings = *new std::map<std::string, Opening>;
inline int watchError = 0;  // what every new watch of a folder fails with

}  // namespace faults
