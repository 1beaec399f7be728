#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tools/vig/decide/Behaviour.h"
#include "tools/vig/decide/Junction.h"
#include "tools/vig/document/RuleModel.h"

namespace Brenta::OS::VIG::Tool {

// It says whether two machines do the same by any events: ask for the same collections and log the same lines, event by
// event. While one event is offered, the k-th number that either of them draws is the same.
struct MachineDiff {
    enum class Verdict {
        Same,
        Different,
        Unrecordable,  // they differ, but only an infinity, NaN or a text that is no UTF-8 shows it
        Undecided
    };

    Verdict verdict;
    std::size_t events = 0;  // Different: of a shortest recording; Undecided: so many, less one, show no difference
    Plan plan = {};          // Different: what either of them is offered and draws, after which they have differed
};

}  // namespace Brenta::OS::VIG::Tool
