#include "tools/vig/check/DocumentCheck.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

#include "tools/vig/check/Warnings.h"
#include "tools/vig/findings/ReaderErrors.h"
#include "tools/vig/findings/RefusalSearch.h"

namespace Brenta::OS::VIG::Tool {

namespace {

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
        found = readerErrors(document);
    } else {
        if (const auto accepted = acceptedConfigs(document, registry, found)) {
            judge(document, *accepted, registry, catalogue, interruption, findings);
            appendIdWarnings(document, found);
        }
        appendKeyWarnings(document, found);
        appendTrailingText(document, found);
    }
    sortByPlace(found);
    return findings;
}

}  // namespace Brenta::OS::VIG::Tool
