#pragma once

#include <string>

#include "tools/vig/decide/LoadSum.h"
#include "tools/vig/decide/Proof.h"

namespace Brenta::OS::VIG::Tool {

// Return what is printed of a machine, and of several together, as lines or as a value of JSON.
std::string textOf(const Proof& proof);
std::string textOf(const LoadSum& sum);
std::string jsonOf(const Proof& proof, const std::string& file);
std::string jsonOf(const LoadSum& sum);

// Returns the events as lines of event records.
std::string recordsOf(const Recording& recording);

}  // namespace Brenta::OS::VIG::Tool
