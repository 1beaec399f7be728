#pragma once

#include <string>

#include "tools/vig/Console.h"
#include "tools/vig/Interruption.h"

namespace tool {

struct CatalogueOptions {
    std::string events = "-";  // a file of event records, or "-" for standard input
};

// `vig catalogue`: prints which attributes the events of a recording have. Returns the exit status.
int catalogue(const CatalogueOptions& options, const Console& console, const Interruption& interruption);

}  // namespace tool
