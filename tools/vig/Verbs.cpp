#include "tools/vig/Verbs.h"

namespace Brenta::OS::VIG::Tool {

Verbs::Verbs() {
    addInit(commandLine, init);
    addCheck(commandLine, check);
    addProve(commandLine, prove);
    addDiff(commandLine, diff);
    addRun(commandLine, run);
    addSummary(commandLine, summary);
    addTune(commandLine, tune);
    addWatch(commandLine, watch);
    addCatalogue(commandLine, catalogue);
    addTest(commandLine, test);
    addGraph(commandLine, graph);
}

}  // namespace Brenta::OS::VIG::Tool
