#pragma once

#include "tools/vig/decide/Junction.h"
#include "tools/vig/diff/MachineDiff.h"
#include "tools/vig/diff/Meeting.h"
#include "tools/vig/diff/Ways.h"

namespace Brenta::OS::VIG::Tool {

// Returns true if the machines do the same by the same events as probably, and come to states of the same names as
// probably if these are compared. False also says that this was not found out,
// as where an attribute is compared with what is drawn.
bool haveSameOdds(const Both<WayFinder*>& machines, const Surroundings& surroundings, Differ::States states);

}  // namespace Brenta::OS::VIG::Tool
