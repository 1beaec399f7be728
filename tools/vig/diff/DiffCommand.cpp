#include "tools/vig/diff/DiffCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/catalogue/CatalogueCommand.h"
#include "tools/vig/diff/DiffPage.h"
#include "tools/vig/diff/DiffWriters.h"
#include "tools/vig/diff/DocumentDiff.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/run/RuleRun.h"
#include "tools/vig/run/RuleSession.h"
#include "tools/vig/trace/Report.h"

namespace Brenta::OS::VIG::Tool {

namespace {

std::string outputOf(const DocumentDiff& diff, DiffFormat format, const Both<std::string>& files) {
    switch (format) {
        case DiffFormat::Json:
            return jsonOf(diff, files);
        case DiffFormat::Markdown:
            return markdownOf(diff, files);
        case DiffFormat::Text:
        case DiffFormat::Html:
            break;
    }
    return textOf(diff, files);
}

int statusOf(const DocumentDiff& diff) {
    const auto has = [&](ConfigDiff::Status status) {
        return std::ranges::any_of(diff.configs, [&](const ConfigDiff& each) { return each.status() == status; });
    };
    return has(ConfigDiff::Status::Changed)     ? kExitDifferent
           : has(ConfigDiff::Status::Undecided) ? kExitUndecided
                                                : kExitDone;
}

}  // namespace

int diffDocuments(const DiffOptions& options, const Console& console, const Interruption& interruption) {
    Catalogue catalogue;
    AttributeSet context;
    if (const auto status = loadCatalogue(options.catalogueFile, console, interruption, catalogue)) {
        return *status;
    }
    if (const auto status = readContext(options.contextFile, console, interruption, context)) {
        return *status;
    }
    const Both<std::string> files = {options.oldRules, options.newRules};
    Both<std::optional<DocumentModel>> documents;
    bool isUsable = true;
    for (std::size_t side = 0; side < files.size(); ++side) {
        const auto text = readRules(files[side], console, interruption);
        if (interruption.requested()) {
            return kExitInterrupted;
        }
        isUsable = isUsable && text;
        if (text) {
            documents[side].emplace(files[side], *text);
        }
    }
    if (!isUsable) {
        return kExitUnusable;
    }
    Effort effort{.interruption = &interruption};
    const VIGParserConfig registry = libraryRegistry();
    const Surroundings surroundings{registry, catalogue, context, effort};
    const auto states = options.states ? Differ::States::Compared : Differ::States::Ignored;
    const DocumentDiff diff = compare({&*documents[0], &*documents[1]}, states, surroundings);
    if (interruption.requested()) {
        return kExitInterrupted;
    }
    if (!diff.fault.empty()) {
        console.complain(
            fmt::format("{}: the library does not do what was decided, which is a fault of vig; please "
                        "report it with the documents",
                        diff.fault));
        return kExitUnusable;
    }
    const Both<const DocumentModel*> compared = {&*documents[0], &*documents[1]};
    const std::string text = outputOf(diff, options.format, files);
    const std::string output =
        options.format == DiffFormat::Html ? pageOf(diff, compared, context, text, console, interruption) : text;
    if (interruption.requested()) {
        return kExitInterrupted;
    }
    Output out(console.out);
    out.write(output);
    return console.finish(out, statusOf(diff));
}

}  // namespace Brenta::OS::VIG::Tool
