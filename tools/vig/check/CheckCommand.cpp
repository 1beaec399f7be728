#include "tools/vig/check/CheckCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/catalogue/CatalogueCommand.h"
#include "tools/vig/check/DocumentCheck.h"
#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/findings/WarningNames.h"
#include "tools/vig/io/FileText.h"
#include "tools/vig/io/Output.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// If it cannot be read, says why and returns the exit status.
std::optional<int> loadCatalogue(const CheckOptions& options, const Console& console, const Interruption& interruption,
                                 Catalogue& catalogue) {
    const bool isLearned = !options.eventsFile.empty();
    if (!isLearned || !options.catalogueFile.empty()) {
        if (const auto status = loadCatalogue(options.catalogueFile, console, interruption, catalogue)) {
            return status;
        }
    }
    return isLearned ? learnFrom(options.eventsFile, console, interruption, catalogue) : std::nullopt;
}

}  // namespace

int check(const CheckOptions& options, const Console& console, const Interruption& interruption) {
    if (hasStandardInputTwice(options.rules)) {
        return refuseArguments(console, kReadOnce, "check");
    }
    Catalogue catalogue;
    if (const auto status = loadCatalogue(options, console, interruption, catalogue)) {
        return *status;
    }
    const VIGParserConfig registry = libraryRegistry();
    Output output(console.out);
    const auto writer = options.format == FindingFormat::Json ? jsonFindings(output)
                        : options.format == FindingFormat::Sarif
                            ? sarifFindings(output)
                            : textFindings(output, console.wantsColours(), options.verbose);
    FindingCounts counts;
    bool isUsable = true;
    for (const std::string& path : options.rules) {
        std::string problem;
        auto text = readFile(path, interruption, problem);
        if (interruption.requested()) {
            return kExitInterrupted;
        }
        if (!text) {
            console.complain(fmt::format("{}: {}", nameOfInput(path), problem));
            isUsable = false;
            continue;
        }
        const DocumentText document(nameOfInput(path), std::move(*text));
        Findings findings = findingsIn(document, registry, catalogue, &interruption);
        if (interruption.requested()) {
            return kExitInterrupted;
        }
        for (const std::string& each : findings.unconfirmed) {
            console.complain(fmt::format("{}: a fault of vig: the library does not do what was found: {}",
                                         document.source().name(), each));
            isUsable = false;
        }
        std::erase_if(findings.all, [&](const Finding& each) {
            return each.severity == Severity::Warning &&
                   std::ranges::find(options.allowed, each.name) != options.allowed.end();
        });
        writer->write(document.source(), findings);
        const auto errors =
            static_cast<std::size_t>(std::ranges::count(findings.all, Severity::Error, &Finding::severity));
        counts = {counts.errors + errors, counts.warnings + findings.all.size() - errors, counts.files + 1,
                  counts.undecided + findings.undecided.size()};
    }
    writer->end(counts);
    const bool areRefused = counts.errors > 0 || (options.strict && (counts.warnings > 0 || counts.undecided > 0));
    return console.finish(output, !isUsable ? kExitUnusable : areRefused ? kExitRefused : kExitDone);
}

constexpr const char* kHelp =
    R"(Errors are what the library refuses, all of them, and cycles without end. Warnings, by name:
{}
Exit status: 0 nothing or only warnings, 1 errors, 2 a file cannot be read or vig is at fault. Columns count
bytes, in sarif characters.

Example: check before a commit, as strictly as possible, for a service that arms timeouts:
  vig check --strict --allow unused-timeout rules/*.json)";

void addCheck(CommandLine& commandLine, CheckOptions& options) {
    std::string meanings;
    std::vector<std::string_view> names;
    for (const auto& [name, meaning, basis] : kWarningNames) {
        meanings += fmt::format("  {:<21} {}\n", name, meaning);
        names.push_back(name);
    }
    Verb verb = commandLine.addVerb("check", "Says what is wrong with rule documents, all at once.",
                                    fmt::format(kHelp, meanings), check, options);
    verb.argument("RULES", options.rules, Verb::Need::Required, "The rule documents; - for standard input");
    verb.choice("--format", options.format,
                {{"text", FindingFormat::Text}, {"json", FindingFormat::Json}, {"sarif", FindingFormat::Sarif}},
                "text for people, json for programs, sarif for code reviews");
    verb.flag("--verbose", options.verbose, "Adds events that show what a finding tells, where it is about events");
    verb.flag("--strict", options.strict, "Lets warnings, and what is not decided, give the exit status 1");
    verb.names("--allow", options.allowed, names, "warning",
               "Leaves the warnings of that name out, but no errors; may be repeated");
    addCatalogueFile(verb, options.catalogueFile);
    verb.name("--events", options.eventsFile, "EVENTS",
              "Event records: their attributes stand in the place of those that the tool knows, or add to FILE's");
}

}  // namespace Brenta::OS::VIG::Tool
