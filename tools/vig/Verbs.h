#pragma once

#include "tools/vig/catalogue/CatalogueCommand.h"
#include "tools/vig/check/CheckCommand.h"
#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/decide/ProveCommand.h"
#include "tools/vig/fleet/FleetCommand.h"
#include "tools/vig/fleet/FleetDiffCommand.h"
#include "tools/vig/fleet/SummaryCommand.h"
#include "tools/vig/graph/GraphCommand.h"
#include "tools/vig/init/InitCommand.h"
#include "tools/vig/test/TestCommand.h"
#include "tools/vig/tune/TuneCommand.h"
#include "tools/vig/watch/WatchCommand.h"

namespace Brenta::OS::VIG::Tool {

// It has the command line with all verbs of vig, and what it reads their options to.
struct Verbs {
    Verbs();

    CommandLine commandLine;
    CheckOptions check;
    ProveOptions prove;
    FleetOptions run;
    FleetDiffOptions diff;
    SummaryOptions summary;
    TuneOptions tune;
    WatchOptions watch;
    CatalogueOptions catalogue;
    TestOptions test;
    InitOptions init;
    GraphOptions graph;
};

}  // namespace Brenta::OS::VIG::Tool
