#include "tools/vig/check/Findings.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

#include "tools/vig/check/RefusalSearch.h"
#include "tools/vig/check/Warnings.h"
#include "tools/vig/document/ParseErrorText.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostShownOfMessage = 200;

// Returns the mistakes in the reader's report.
std::vector<Finding> readerErrors(const SourceText& source, const std::string& text) {
    const std::string name(textOf(VIGParseError::InvalidJson).name);
    const SourceText report({}, text);
    std::vector<Finding> found;
    for (std::size_t number = 1; number <= report.lineCount(); ++number) {
        const std::string_view line = report.line(number);
        const auto position = DocumentText::reportedPosition(line);
        if (position && 0 < position->line && position->line <= source.lineCount()) {
            const std::size_t offset = std::min(source.offsetOf(*position), source.text().size());
            found.push_back({Severity::Error, name, {offset, offset + 1, {}}, {}, {}});
        } else if (!found.empty() && !line.empty()) {
            std::string& message = found.back().message;
            message += message.empty() ? "" : " ";
            message += shortened(line.substr(std::min(line.find_first_not_of(' '), line.size())), kMostShownOfMessage);
        }
    }
    if (found.empty()) {
        found.push_back({Severity::Error, name, Place{0, 0, {}}, shortened(text, kMostShownOfMessage), {}});
    }
    return found;
}

// Judges the configurations that the library accepts, since only these mean something.
void judge(const DocumentText& document, const std::vector<Json::ArrayIndex>& accepted, const VIGParserConfig& registry,
           const Catalogue& catalogue, const Interruption* interruption, Findings& findings) {
    std::vector<ConfigModel> configs;
    configs.reserve(accepted.size());
    for (const Json::ArrayIndex index : accepted) {
        configs.push_back(modelOf(document, index));
    }
    const AttributeSet empty;
    Effort effort{.interruption = interruption};
    const Surroundings given{registry, catalogue, empty, effort};
    const Surroundings any{registry, catalogue, empty, effort, Surroundings::Context::Catalogued};
    Evidence evidence(configs);
    std::vector<std::size_t> order(configs.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_partition(order.begin(), order.end(), [&](std::size_t index) { return evidence.isDrawing(index); });
    std::vector<bool> undecided(configs.size());
    for (const std::size_t index : order) {
        Behaviour shown(configs[index], given);
        std::optional<Behaviour> possible;
        if (!catalogue.context().empty()) {
            possible.emplace(configs[index], any);
        }
        Judged machine{configs[index], index, given, possible ? *possible : shown, shown, evidence};
        appendRuleWarnings(machine, findings.all);
        undecided[index] = machine.wasCut || machine.possible.hasGaps() || shown.hasGaps();
    }
    for (std::size_t index = 0; index < configs.size(); ++index) {
        if (undecided[index]) {
            findings.undecided.push_back({configs[index].place.path, configs[index].id});
        }
    }
    findings.unconfirmed = std::move(evidence.faults);
}

}  // namespace

Findings findingsIn(const DocumentText& document, const VIGParserConfig& registry, const Catalogue& catalogue,
                    const Interruption* interruption) {
    Findings findings;
    std::vector<Finding>& found = findings.all;
    if (document.report()) {
        found = readerErrors(document.source(), *document.report());
    } else {
        if (const auto accepted = acceptedConfigs(document, registry, found)) {
            judge(document, *accepted, registry, catalogue, interruption, findings);
            appendIdWarnings(document, found);
        }
        appendKeyWarnings(document, found);
    }
    std::ranges::stable_sort(found, {},
                             [](const Finding& each) { return std::tuple(each.place.begin, each.place.end); });
    return findings;
}

}  // namespace Brenta::OS::VIG::Tool
