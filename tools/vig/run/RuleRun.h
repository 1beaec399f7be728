#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/run/Draws.h"
#include "tools/vig/run/ReportWriters.h"
#include "tools/vig/run/RuleSession.h"
#include "tools/vig/trace/Report.h"

namespace Brenta::OS::VIG::Tool {

class Verb;

// Machines depend on these besides the events.
struct MachineOptions {
    std::string rules;
    Draws draws = {};
    std::string contextFile;  // empty if there is none
};

// The verbs that report what machines do have these in common.
struct RuleOptions : MachineOptions {
    ReportFormat format = ReportFormat::Text;
    bool verbose = false;  // people see the library's own log lines
};

inline constexpr std::string_view kStandardInputTwice =
    "standard input can be one of them only: the rule document, or one file of event records";

// Adds what verbs take that let rules run. The options must outlive the command line.
void addRules(Verb& verb, MachineOptions& options);
void addDraws(Verb& verb, Draws& draws, const std::string& moreOnDraws);
void addContext(Verb& verb, std::string& contextFile);
void addVerbose(Verb& verb, RuleOptions& options);
void addSurroundings(Verb& verb, MachineOptions& options, const std::string& moreOnSeed);

// Reads the attributes of the one record in the file; there are none if no file is named. If it cannot be read, says
// why and returns the exit status.
std::optional<int> readContext(const std::string& file, const Console& console, const Interruption& interruption,
                               AttributeSet& attributes);

// Says why the latest document of the session was refused, as `vig check` does. REQUIRES: it was.
void sayRefusal(const RuleSession& session, const Console& console);

// Returns the text of a rule document that the library accepts. If there is none, says why, unless it is interrupted.
std::optional<std::string> readRules(const std::string& path, const Console& console, const Interruption& interruption);

// It is one run of a verb from the loading of the rules to the exit status, its report on the console, or to whom the
// caller says, who must outlive it.
class RuleRun {
  public:
    RuleRun(const MachineOptions& options, const ReportStyle& style, const Console& console,
            const Interruption& interruption);
    RuleRun(const MachineOptions& options, Report& report, const Console& console, const Interruption& interruption);
    RuleRun(const RuleRun&) = delete;
    RuleRun& operator=(const RuleRun&) = delete;

    // Lets the trace see all that follows until finish() or abandon(), which it must outlive. REQUIRES: load() has not
    // been called.
    void observe(Trace& listener) { trace = &listener; }

    // Reads the context and loads the rules. If that fails, returns the exit status, having said why unless the rules
    // were refused: abandon() says that. Warns of what stands behind their end unless changes are followed.
    std::optional<int> load(RuleSession::Changes later);

    // REQUIRES: load() has returned nothing.
    RuleSession& session() { return *rules; }

    Output& output() { return out; }

    Report& reporter() { return report; }

    // Says what is wrong after all that has been reported.
    void complainAfterOutput(std::string_view line);

    // Reports the end, also of a run that has loaded no rules, and returns the exit status: `status` unless the output
    // could not be written. That its reader has gone changes nothing.
    int finish(int status, std::optional<Summary::Sampling> sampling);

    // Does the same without the end, for a run that came to none. If the rules were refused, says why.
    int abandon(int status);

  private:
    void warnOfTrailingText();

    const MachineOptions& options;
    const Console& console;
    const Interruption& interruption;
    Output out;
    const std::unique_ptr<Report> written;  // null if the caller has the report
    Report& report;
    Trace* trace = nullptr;
    std::optional<RuleSession> rules;
};

}  // namespace Brenta::OS::VIG::Tool
