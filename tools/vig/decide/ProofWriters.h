#pragma once

#include <cstdint>
#include <string>

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

// Return what is printed of a machine, and of several together, as lines or as a value of JSON.
std::string textOf(const Proof& proof);
std::string textOf(const LoadSum& sum);
std::string jsonOf(const Proof& proof, const std::string& file);
std::string jsonOf(const LoadSum& sum);

// Returns the events as lines of event records.
std::string recordsOf(const Recording& recording);

}  // namespace Brenta::OS::VIG::Tool
