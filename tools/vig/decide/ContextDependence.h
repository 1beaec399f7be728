#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tools/vig/decide/Behaviour.h"
#include "tools/vig/decide/Load.h"

namespace Brenta::OS::VIG::Tool {

// It names, for each answer about a machine, the attributes of the context, as "int64 limit", with other values of
// which the answer is another one.
struct ContextDependence {
    using Names = std::set<std::string>;

    std::vector<Names> states;
    std::vector<Names> transitions;
    std::vector<Names> stays;  // for each set of states
    Names load;
};

// Decides again what was decided of the machine, with other contexts: for each attribute that the machine compares with
// constants, with a value of each kind that it tells apart in the place of the one in `surroundings`, and without it;
// and for each transition on EnteringState, with all that it needs. Returns nothing if the effort that `surroundings`
// has for it does not suffice.
std::optional<ContextDependence> dependenceOf(Behaviour& machine, const Load& load,
                                              const std::vector<std::vector<std::size_t>>& stays,
                                              const Surroundings& surroundings);

}  // namespace Brenta::OS::VIG::Tool
