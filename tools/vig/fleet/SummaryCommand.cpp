#include "tools/vig/fleet/SummaryCommand.h"

#include <fmt/format.h>

#include <cerrno>
#include <optional>
#include <string_view>
#include <variant>

#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/events/EventReader.h"
#include "tools/vig/events/LineReader.h"
#include "tools/vig/fleet/SummaryReader.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Merges one summary after the other.
class Merger {
  public:
    Merger(const Console& console, const Interruption& interruption) : console(console), interruption(interruption) {}

    // Merges all of the file. If that fails, says why and returns the exit status.
    std::optional<int> add(const std::string& file) {
        const Descriptor input = openEvents(file, console);
        if (!input.isOpen()) {
            console.say(whyEventsNotOpened(file, errno));
            return kExitUnusable;
        }
        const std::string name = nameOfEvents(file);
        LineReader lines(input.get(), name, interruption, [] {});
        std::string_view line;
        auto status = lines.next(line);
        for (; status == LineReader::Status::Line; status = lines.next(line)) {
            if (!isBlank(line) && !add(name, lines.lineNumber(), line)) {
                return kExitUnusable;
            }
        }
        if (status == LineReader::Status::Failed) {
            console.say(lines.problem());
            return kExitUnusable;
        }
        return status == LineReader::Status::Interrupted ? std::optional(kExitInterrupted) : std::nullopt;
    }

    // It is empty if there was no summary.
    const std::optional<AnySummary>& result() const { return merged; }

  private:
    bool add(const std::string& file, std::size_t number, std::string_view line) {
        std::vector<std::string> errors;
        const auto summary = readSummary(file, number, line, errors);
        const std::string place = file + ":" + std::to_string(number);
        if (!summary) {
            for (const std::string& error : errors) {
                console.say(error);
            }
            return false;
        }
        if (!merged) {
            merged = summary;
            first = place;
            return true;
        }
        if (merged->index() != summary->index()) {
            console.say(place + ": error: it cannot be merged with " + first +
                        ": one is of a run, the other of a comparison");
            return false;
        }
        return std::visit([&](auto& all) { return merge(all, std::get<std::decay_t<decltype(all)>>(*summary), place); },
                          *merged);
    }

    bool merge(auto& all, const auto& added, const std::string& place) {
        if (!all.isOfSameDocument(added)) {
            console.say(place + ": error: it summarises a run of another rule document than " + first);
            return false;
        }
        all.merge(added);
        const std::string tooLarge = all.tooLarge();
        if (!tooLarge.empty()) {
            console.say(fmt::format("{}: error: {}: more than {} with the summaries before", place, tooLarge,
                                    FleetSummary::MOST));
        }
        return tooLarge.empty();
    }

    const Console& console;
    const Interruption& interruption;
    std::optional<AnySummary> merged;
    std::string first;  // the place of the first one
};

}  // namespace

int summary(const SummaryOptions& options, const Console& console, const Interruption& interruption) {
    Merger merger(console, interruption);
    for (const std::string& file : options.files) {
        if (const auto status = merger.add(file)) {
            return *status;
        }
    }
    if (!merger.result()) {
        console.complain("there is no summary to merge");
        return kExitUnusable;
    }
    Output output(console.out);
    output.write(std::visit(
        [&](const auto& all) { return options.format == ReportFormat::Json ? jsonOf(all, "") : textOf(all); },
        *merger.result()));
    return console.finish(output, kExitDone);
}

constexpr const char* kSummaryHelp =
    R"(Each line of the files is a summary that `vig run --format json` has written, all of one rule document; or that
`vig diff --format json` has, all of the same two. The parts of a fleet, merged, give the same as the whole.

Example: two halves of a fleet, replayed apart
  vig run rules.json a/*.jsonl.gz --format json > a.json
  vig run rules.json b/*.jsonl.gz --format json > b.json
  vig summary a.json b.json)";

void addSummary(CommandLine& commandLine, SummaryOptions& options) {
    Verb verb =
        commandLine.addVerb("summary", "Merges the summaries of runs, or of comparisons, over parts of a fleet.",
                            kSummaryHelp, summary, options);
    verb.argument("FILE", options.files, Verb::Need::Optional,
                  "Files of summaries (default: -, which is standard input)");
    verb.choice("--format", options.format, {{"text", ReportFormat::Text}, {"json", ReportFormat::Json}},
                "text for people, json for programs and to be merged again");
}

}  // namespace Brenta::OS::VIG::Tool
