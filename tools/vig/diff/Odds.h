#pragma once

#include "tools/vig/decide/Junction.h"
#include "tools/vig/diff/Meeting.h"
#include "tools/vig/diff/Ways.h"

namespace Brenta::OS::VIG::Tool {

// Returns true if the machines do the same by the same events as probably. False also says that this was not found out,
// as where an attribute is compared with what is drawn.
bool haveSameOdds(const Both<WayFinder*>& machines, const Surroundings& surroundings);

}  // namespace Brenta::OS::VIG::Tool
