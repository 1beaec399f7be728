#include "tools/vig/run/RuleRun.h"

#include <fcntl.h>
#include <fmt/format.h>

#include <cerrno>
#include <charconv>
#include <limits>
#include <system_error>
#include <utility>

#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/events/EventReader.h"
#include "tools/vig/findings/FindingWriters.h"
#include "tools/vig/findings/ReaderErrors.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/FileText.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

std::optional<int> readContext(const std::string& path, const Console& console, const Interruption& interruption,
                               AttributeSet& attributes) {
    if (path.empty()) {
        return std::nullopt;
    }
    // The opening of a pipe would wait for somebody who writes to it; the reader does that, until it is interrupted.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen()) {
        console.complain(path + ": " + systemError(errno));
        return kExitUnusable;
    }
    EventReader reader(file.get(), path, EventReader::Devices::One, interruption, [] {});
    auto status = reader.next();
    if (status == EventReader::Status::Record) {
        AttributeSet first = reader.record().attributes;
        status = reader.next();
        if (status == EventReader::Status::End) {
            attributes = std::move(first);
            return std::nullopt;
        }
    }
    if (status == EventReader::Status::Interrupted) {
        return kExitInterrupted;
    }
    console.say(status == EventReader::Status::Failed ? reader.error() : path + ": error: expected exactly one record");
    return kExitUnusable;
}

void sayRefusal(const RuleSession& session, const Console& console) {
    console.sayText(refusalText(*session.refused()));
}

std::optional<std::string> readRules(const std::string& path, const Console& console,
                                     const Interruption& interruption) {
    NoReport report;
    RuleSession session(path, {}, {}, report, nullptr);
    switch (session.load(RuleSession::Changes::Ignore, interruption)) {
        case RuleSession::Loading::Done:
            return session.document().text.source().text();
        case RuleSession::Loading::Refused:
            sayRefusal(session, console);
            break;
        case RuleSession::Loading::Unreadable:
            console.complain(nameOfInput(path) + ": " + session.problem());
            break;
        case RuleSession::Loading::Interrupted:
            break;
    }
    return std::nullopt;
}

RuleRun::RuleRun(const MachineOptions& options, const ReportStyle& style, const Console& console,
                 const Interruption& interruption)
    : options(options),
      console(console),
      interruption(interruption),
      out(console.out),
      written(reportOf(style, out)),
      report(*written) {}

RuleRun::RuleRun(const MachineOptions& options, Report& report, const Console& console,
                 const Interruption& interruption)
    : options(options), console(console), interruption(interruption), out(console.out), report(report) {}

std::optional<int> RuleRun::load(RuleSession::Changes later) {
    AttributeSet context;
    if (const auto status = readContext(options.contextFile, console, interruption, context)) {
        return status;
    }
    rules.emplace(options.rules, options.draws, std::move(context), report, trace);
    switch (rules->load(later, interruption)) {
        case RuleSession::Loading::Done:
            if (later == RuleSession::Changes::Ignore) {
                warnOfTrailingText();
            }
            return std::nullopt;
        case RuleSession::Loading::Refused:
            return kExitRefused;
        case RuleSession::Loading::Unreadable:
            console.complain(nameOfInput(options.rules) + ": " + rules->problem());
            return kExitUnusable;
        case RuleSession::Loading::Interrupted:
            break;
    }
    return kExitInterrupted;
}

// Whoever wrote what stands behind the end of the rules thinks that it runs.
void RuleRun::warnOfTrailingText() {
    const DocumentText& text = rules->document().text;
    Findings findings;
    appendTrailingText(text, findings.all);
    if (!findings.all.empty()) {
        console.sayText(textOf(text.source(), findings));
    }
}

void RuleRun::complainAfterOutput(std::string_view line) {
    out.flush();
    console.say(line);
}

int RuleRun::finish(int status, std::optional<Summary::Sampling> sampling) {
    Summary summary = rules ? rules->machines().summary() : Summary{};
    summary.sampling = std::move(sampling);
    if (!rules && summary.sampling) {
        for (const auto& [type, count] : summary.sampling->eventsByType) {
            summary.events += count;
        }
    }
    report.end(summary);
    return abandon(status);
}

int RuleRun::abandon(int status) {
    if (status == kExitRefused) {
        out.flush();
        sayRefusal(*rules, console);
    }
    return console.finish(out, status);
}

void addRules(Verb& verb, MachineOptions& options) {
    verb.argument("RULES", options.rules, Verb::Need::Required, "The rule document; - for standard input");
}

void addDraws(Verb& verb, Draws& draws, const std::string& moreOnDraws) {
    verb.repeated(
        "--draw", "NUMBER",
        fmt::format("What the function PseudoRandomDouble gives, {}; repeated, one after the other, the last one for "
                    "ever{}",
                    Draws::NUMBER, moreOnDraws),
        [&draws](const std::string& text) {
            double number = 0;
            const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
            if (error != std::errc() || end != text.data() + text.size() || !Draws::canBe(number)) {
                return fmt::format("expected {}, got {}", Draws::NUMBER, text.empty() ? "nothing" : text);
            }
            draws.numbers.push_back(number);
            return std::string();
        });
}

void addContext(Verb& verb, std::string& contextFile) {
    verb.name("--context", contextFile, "FILE",
              "A file with one event record: the attributes of every machine's context");
}

void addVerbose(Verb& verb, RuleOptions& options) {
    verb.flag("--verbose", options.verbose, "Shows the library's own log lines as well");
}

void addSurroundings(Verb& verb, MachineOptions& options, const std::string& moreOnSeed) {
    verb.wholeNumber("--seed", options.draws.seed, 0, std::numeric_limits<std::uint32_t>::max(),
                     "Seed of the function PseudoRandomDouble, so that a run repeats exactly (default: " +
                         std::to_string(options.draws.seed) + ")" + moreOnSeed);
    addDraws(verb, options.draws, "; not together with --seed");
    verb.refuseTogether("--seed", "--draw");
    addContext(verb, options.contextFile);
}

}  // namespace Brenta::OS::VIG::Tool
