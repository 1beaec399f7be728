#pragma once

#include <cstddef>
#include <vector>

namespace Brenta::OS::VIG::Tool {

// It says of each state of a graph in which strongly connected part it is: in each part, every state leads to every
// other. What leads from one part to another leads to a lower number.
struct Components {
    explicit Components(const std::vector<std::vector<std::size_t>>& successors);

    std::vector<std::size_t> of;  // by state
    std::size_t count = 0;
};

}  // namespace Brenta::OS::VIG::Tool
