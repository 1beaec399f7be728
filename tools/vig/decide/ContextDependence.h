#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "tools/vig/decide/Behaviour.h"
#include "tools/vig/decide/Load.h"

namespace Brenta::OS::VIG::Tool {

// It names the attributes of the context, as "int64 limit", on which the answers about a machine depend: whether each
// state is reached, each transition fires, it stays in each set of states, and the load.
struct ContextDependence {
    std::vector<std::set<std::string>> names = {};  // of each answer, in that order; none if nothing is known
    bool isWhole = true;                            // otherwise some may be missing
};

// Decides again, with other contexts, what was decided of the machine with the one in `surroundings`, within the effort
// that these have for it.
ContextDependence dependenceOf(const ConfigModel& config, const std::vector<std::vector<std::size_t>>& stays,
                               const Surroundings& surroundings);

}  // namespace Brenta::OS::VIG::Tool
