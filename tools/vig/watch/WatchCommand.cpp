#include "tools/vig/watch/WatchCommand.h"

#include <fcntl.h>
#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/watch/DeliveredFindings.h"
#include "tools/vig/watch/SystemSampler.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using Clock = std::chrono::steady_clock;

// Opens the file for the recording, which is a new one or, if that is wanted, is emptied. Returns -1, with errno set,
// if that fails.
int openRecord(const WatchOptions& options) {
    constexpr int kHow = O_WRONLY | O_NOFOLLOW | O_CLOEXEC;
    const int created = open(options.recordFile.c_str(), kHow | O_CREAT | O_EXCL, 0666);
    return created >= 0 || errno != EEXIST || !options.overwrite ? created
                                                                 : open(options.recordFile.c_str(), kHow | O_TRUNC);
}

// What is recorded must not take the place of what is read, under whatever name.
bool isInput(const WatchOptions& options) {
    std::error_code ignored;
    return std::filesystem::equivalent(options.recordFile, options.rules, ignored) ||
           std::filesystem::equivalent(options.recordFile, options.contextFile, ignored);
}

std::string whyNotRecorded(int error) {
    switch (error) {
        case EEXIST:
            return "it exists already; --force overwrites it";
        case ELOOP:
            return "it is a symbolic link";
        default:
            return systemError(error);
    }
}

timespec untilThen(Clock::time_point deadline) {
    const auto left = std::max<std::chrono::nanoseconds>(deadline - Clock::now(), std::chrono::nanoseconds(0));
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    return {static_cast<time_t>(seconds.count()), static_cast<long>((left - seconds).count())};
}

class Watch {
  public:
    // `rules` have loaded some, unless none are named. `recordOutput` is null if nothing is recorded.
    Watch(const WatchOptions& options, const Console& console, const Interruption& interruption, RuleRun& rules,
          Output* recordOutput)
        : options(options),
          interruption(interruption),
          ruleRun(rules),
          session(options.rules.empty() ? nullptr : &rules.session()),
          record(recordOutput),
          findings(console, interruption),
          sampler(
              options.procFolder, options.sysFolder, [] { return Clock::now().time_since_epoch(); },
              [this](std::string_view note) { ruleRun.complainAfterOutput("vig: note: " + std::string(note)); }) {}

    int run() {
        if (session != nullptr) {
            tellFindings();
        }
        const Clock::time_point start = Clock::now();
        const Clock::time_point end = start + options.duration;
        Clock::time_point next = start;
        do {
            takeSample(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start));
            // Samples that are overdue already are left out.
            next += options.interval * (1 + std::max<Clock::rep>(0, (Clock::now() - next) / options.interval));
        } while (waitUntil(std::min(next, end)) && next <= end);
        if (record != nullptr && record->failed()) {
            ruleRun.complainAfterOutput("vig: error: " + options.recordFile + ": " + systemError(record->failure()));
            return kExitUnusable;
        }
        return ruleRun.finish(kExitDone, std::move(sampling));
    }

  private:
    void takeSample(std::chrono::milliseconds time) {
        followDocument();
        ++sampling.samples;
        sampler.sample(time.count(), [this](const EventRecord& event) {
            ++sampling.eventsByType[event.type];
            if (record != nullptr) {
                writeEvent(*record, event);
            }
            if (session != nullptr) {
                session->machines().offer(event);
            }
        });
        if (record != nullptr) {
            record->flush();
        }
        ruleRun.output().flush();
    }

    // Follows the document meanwhile. Returns false if the watch is to end.
    bool waitUntil(Clock::time_point deadline) {
        const int changes = session != nullptr ? session->changesDescriptor() : -1;  // which is then left out
        pollfd sources[] = {{interruption.descriptor(), POLLIN, 0}, {changes, POLLIN, 0}};
        while (!mustStop()) {
            const timespec left = untilThen(deadline);
            if (ppoll(sources, 2, &left, nullptr) == 0) {
                return true;
            }
            followDocument();
        }
        return false;
    }

    void followDocument() {
        if (session != nullptr && session->update()) {
            tellFindings();
            if (!session->problem().empty()) {
                ruleRun.complainAfterOutput(options.rules +
                                            ": error: " + (session->refused() ? "refused" : session->problem()) +
                                            "; no rules run until it is mended");
            }
        }
        ruleRun.output().flush();
    }

    // REQUIRES: there are rules.
    void tellFindings() {
        ruleRun.output().flush();
        if (session->refused()) {
            findings.tell(*session->refused());
        } else if (session->problem().empty()) {
            findings.tell(session->document().text);
        }
    }

    // Returns true if the watch was interrupted, or nobody can read what it writes.
    bool mustStop() const {
        return interruption.requested() || ruleRun.output().failed() || (record != nullptr && record->failed());
    }

    const WatchOptions& options;
    const Interruption& interruption;
    RuleRun& ruleRun;
    RuleSession* const session;  // null without rules
    Output* const record;
    DeliveredFindings findings;
    SystemSampler sampler;
    Summary::Sampling sampling{};
};

}  // namespace

int watch(const WatchOptions& options, const Console& console, const Interruption& interruption) {
    const bool recording = !options.recordFile.empty();
    if (recording && isInput(options)) {
        console.complain(options.recordFile + ": it is an input of this very run");
        return kExitUnusable;
    }
    if (options.rules.empty() && !recording) {
        return refuseArguments(console, "RULES is required, or --record FILE to record without rules", "watch");
    }
    const bool hasSurroundings = !options.contextFile.empty() || !options.draws.numbers.empty();
    if (options.rules.empty() && hasSurroundings) {
        return refuseArguments(console, "--context and --draw are for rules: name a rule document", "watch");
    }
    RuleRun ruleRun(options, {options.format, console.wantsColours(), "", options.verbose}, console, interruption);
    if (!options.rules.empty()) {
        if (const auto status = ruleRun.load(RuleSession::Changes::Follow)) {
            return ruleRun.abandon(*status);
        }
        ruleRun.session().start();
    }
    // The file is opened only when the rules are known to run: the earlier recording may be all that there is, and a
    // new file would have to be taken away again, which by its name can be another one by then.
    const Descriptor file(recording ? openRecord(options) : -1);
    if (recording && !file.isOpen()) {
        if (interruption.requested()) {
            return kExitInterrupted;
        }
        console.complain(options.recordFile + ": " + whyNotRecorded(errno));
        return kExitUnusable;
    }
    Output record(file.get());
    return Watch(options, console, interruption, ruleRun, recording ? &record : nullptr).run();
}

constexpr const char* kHelp =
    R"(Events: ProcessMemoryHeartBeat and ProcessCpuHeartBeat of each process, SystemMemoryHeartBeat, and
ZramHeartBeat of each zram device, which is swap that is compressed in memory. A change of RULES is delivered
meanwhile; Ctrl-C ends with the summary.

Example: record this machine for a minute, to see what there is to write rules for:
  vig watch --record trace.jsonl --duration 1m
Watch for ten seconds, then play the recording to rules that were changed:
  vig watch rules.json --duration 10s --record trace.jsonl
  vig run changed.json trace.jsonl)";

void addWatch(CommandLine& commandLine, WatchOptions& options) {
    Verb verb = commandLine.addVerb("watch", "Observes this machine, and shows what the rules do with its events.",
                                    kHelp, watch, options);
    verb.argument("RULES", options.rules, Verb::Need::Optional,
                  "The rule document; without one, --record records only");
    verb.choice("--format", options.format, {{"text", ReportFormat::Text}, {"jsonl", ReportFormat::Jsonl}},
                "text for people, jsonl for programs");
    addSurroundings(verb, options, "");
    verb.duration("--interval", options.interval, std::chrono::milliseconds(1),
                  "The time from one sample to the next (default: 1s)");
    verb.duration("--duration", options.duration, std::chrono::milliseconds(0),
                  "The time after which to stop (default: 30s)");
    verb.name("--record", options.recordFile, "FILE", "Writes the events there, as records that `vig run` reads");
    addVerbose(verb, options);
    verb.flag("--force", options.overwrite, "Lets --record overwrite a file");
}

}  // namespace Brenta::OS::VIG::Tool
