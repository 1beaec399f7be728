#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/run/RuleSession.h"
#include "tools/vig/trace/Report.h"

namespace Brenta::OS::VIG::Tool {

class Verb;

// Json is a summary alone, at the end of a run over a fleet.
enum class ReportFormat { Text, Jsonl, Json, None };

// `device` is named by the lines for programs; empty if there is only one.
std::unique_ptr<Report> reportOf(ReportFormat format, Output& output, bool coloured, const std::string& device);

// What the verbs that let rules run have in common.
struct RuleOptions {
    std::string rules;
    ReportFormat format = ReportFormat::Text;
    std::uint32_t seed = 5489;  // the one with which the generator's own definition starts
    std::string contextFile;    // empty if there is none
};

// Adds what verbs take that let rules run. The values must outlive the command line.
void addRules(Verb& verb, std::string& rules);
void addSurroundings(Verb& verb, std::uint32_t& seed, std::string& contextFile, const std::string& moreOnSeed);

// One run of a verb from the loading of the rules to the exit status, its report on the console.
class RuleRun {
  public:
    RuleRun(const RuleOptions& ruleOptions, const Console& streams, const Interruption& interruptedBy);
    RuleRun(const RuleRun&) = delete;
    RuleRun& operator=(const RuleRun&) = delete;

    // Lets the trace see all that follows. It must outlive the run. REQUIRES: neither of the next two has been called.
    void observe(Trace& listener) { trace = &listener; }

    // Loads the rules and starts the machines. If that fails, says why and returns the exit status.
    std::optional<int> begin(RuleSession::Changes later);

    // The same without starting the machines.
    std::optional<int> receive(RuleSession::Changes later);

    // REQUIRES: begin() or receive() has returned nothing.
    RuleSession& session() { return *rules; }

    Output& output() { return out; }

    Report& reporter() { return *report; }

    // Whether the run is to end: it was interrupted, or nobody can read what it writes.
    bool mustStop() const { return interruption.requested() || out.failed(); }

    // Says what is wrong after all that has been reported.
    void complainAfterOutput(std::string_view line);

    // Reports the end and returns the exit status: `status` unless the output could not be written. That its reader
    // has gone changes nothing.
    int finish(int status, std::optional<Summary::Sampling> sampling);

    // The same without the end, for a run that came to none.
    int abandon(int status);

  private:
    using Load = RuleSession::Loading (RuleSession::*)(RuleSession::Changes, const Interruption&);

    std::optional<int> begin(Load load, RuleSession::Changes later);
    // If that fails, says why and returns the exit status.
    std::optional<int> readContext(AttributeSet& attributes);

    const RuleOptions& options;
    const Console& console;
    const Interruption& interruption;
    Output out;
    std::unique_ptr<Report> report;
    Trace* trace = nullptr;
    std::optional<RuleSession> rules;
};

}  // namespace Brenta::OS::VIG::Tool
