#pragma once

#include <cstdint>

#include "tools/vig/decide/Load.h"
#include "tools/vig/decide/Proof.h"

namespace Brenta::OS::VIG::Tool {

// It is what several machines ask of the trigger service together, at most: their worst need not come together.
class LoadSum {
  public:
    void add(const Proof::WorstLoad& load);
    void leaveUndecided() { isWhole = false; }

    bool isDecided() const { return isWhole; }
    bool isBounded() const { return rate.triggers == 0; }
    std::uint64_t most() const { return triggers; }  // ever, if that is bounded
    Rate inTheLongRun() const { return rate; }       // otherwise

  private:
    bool isWhole = true;
    std::uint64_t triggers = 0;
    Rate rate{0, 1};
};

}  // namespace Brenta::OS::VIG::Tool
