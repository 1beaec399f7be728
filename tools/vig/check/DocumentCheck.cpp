#include "tools/vig/check/DocumentCheck.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <numeric>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tools/vig/check/Mends.h"
#include "tools/vig/check/Warnings.h"
#include "tools/vig/findings/PieceParser.h"
#include "tools/vig/findings/ReaderErrors.h"
#include "tools/vig/findings/RefusalSearch.h"
#include "tools/vig/findings/WarningNames.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// It tells what is found of a configuration.
struct Judgement {
    std::vector<Finding> found = {};
    bool isWhole = true;  // otherwise something was left undecided
};

Basis basisOf(const Finding& finding) {
    const auto* const known = std::ranges::find(kWarningNames, finding.name, &WarningName::name);
    return known == std::end(kWarningNames) ? Basis::Machine : known->basis;
}

// Tells whether nothing that the finding rests on by itself is a stand-in.
bool restsOnWhole(const Finding& finding, const MendedConfig& config) {
    const Basis basis = basisOf(finding);
    return !isInside(config.replaced, finding.place.path) &&
           (basis != Basis::Event || !isInside(config.eventless, finding.place.path)) &&
           (basis != Basis::Machine || config.areStatesKnown);
}

// Tells whether both are found at the same place. The reasons for it may differ where what is refused always fires,
// since it then is a reason itself.
bool isSame(const Finding& left, const Finding& right, Mend mend) {
    return left.name == right.name && left.place.path == right.place.path && left.severity == right.severity &&
           (mend == Mend::Always || (left.message == right.message && left.hint == right.hint));
}

// Judges the configurations of one document.
class DocumentJudge {
  public:
    DocumentJudge(const DocumentText& text, const VIGParserConfig& names, const Catalogue& attributes,
                  const Interruption* interruption, Findings& result)
        : document(text),
          registry(names),
          catalogue(attributes),
          findings(result),
          effort{.interruption = interruption} {}

    void judgeAccepted(const std::vector<Json::ArrayIndex>& accepted) {
        std::vector<ConfigModel> configs;
        configs.reserve(accepted.size());
        for (const Json::ArrayIndex index : accepted) {
            configs.push_back(modelOf(document, index));
        }
        std::vector<Judgement> judgements = judge(configs);
        for (std::size_t index = 0; index < configs.size(); ++index) {
            std::ranges::move(judgements[index].found, std::back_inserter(findings.all));
            if (!judgements[index].isWhole) {
                findings.undecided.push_back({configs[index].place.path, configs[index].id});
            }
        }
        appendCopyWarnings(configs, findings.all);
    }

    // Says of each what is true of it however it will be mended.
    void judgeRefused(std::vector<Json::ArrayIndex> refused, const std::set<std::string>& faults) {
        ByConfig common = judgeMended(refused, faults, Mend::Never);
        const auto needsMore = [](const Finding& each) { return basisOf(each) > Basis::Event; };
        for (const Mend mend : {Mend::Maybe, Mend::MaybeEntering, Mend::Always}) {
            std::erase_if(refused,
                          [&](Json::ArrayIndex index) { return std::ranges::none_of(common[index], needsMore); });
            ByConfig others = judgeMended(refused, faults, mend);
            for (auto& [index, found] : common) {
                std::erase_if(found, [&, &other = others[index]](const Finding& each) {
                    return needsMore(each) &&
                           std::ranges::none_of(other, [&](const Finding& its) { return isSame(each, its, mend); });
                });
            }
        }
        for (auto& [index, found] : common) {
            for (Finding& each : found) {
                each.witness = nullptr;  // there is no machine yet that does it
                findings.all.push_back(std::move(each));
            }
        }
    }

  private:
    using ByConfig = std::map<Json::ArrayIndex, std::vector<Finding>>;

    ByConfig judgeMended(const std::vector<Json::ArrayIndex>& refused, const std::set<std::string>& faults, Mend mend) {
        std::map<Json::ArrayIndex, MendedConfig> mends;
        std::vector<ConfigModel> configs;
        {
            PieceParser library(registry);
            for (const Json::ArrayIndex index : refused) {
                const std::string path = "configs[" + std::to_string(index) + "]";
                auto config = mended(document.root()["configs"][index], path, faults, mend);
                if (config && !library.refusalOf(kConfigShape, config->json, PieceParser::Names::Registered)) {
                    const auto place = mends.emplace(index, std::move(*config)).first;
                    configs.push_back(modelOf(document, place->second.json, path));
                }
            }
        }
        std::vector<Judgement> judgements = judge(configs);
        ByConfig result;
        auto judgement = judgements.begin();
        for (const auto& [index, config] : mends) {
            std::erase_if(judgement->found,
                          [&config = config](const Finding& each) { return !restsOnWhole(each, config); });
            result[index] = std::move((judgement++)->found);
        }
        return result;
    }

    // REQUIRES: the library accepts them.
    std::vector<Judgement> judge(const std::vector<ConfigModel>& configs) {
        const Surroundings given{registry, catalogue, empty, effort};
        const Surroundings any{registry, catalogue, empty, effort, Surroundings::Context::Catalogued};
        Evidence evidence(configs);
        std::vector<std::size_t> order(configs.size());
        std::iota(order.begin(), order.end(), 0);
        std::stable_partition(order.begin(), order.end(), [&](std::size_t index) { return evidence.isDrawing(index); });
        std::vector<Judgement> judgements(configs.size());
        for (const std::size_t index : order) {
            Behaviour shown(configs[index], given);
            std::optional<Behaviour> possible;
            if (!catalogue.context().empty()) {
                possible.emplace(configs[index], any);
            }
            Judged machine{configs[index], index, given, possible ? *possible : shown, shown, evidence};
            appendRuleWarnings(machine, judgements[index].found);
            judgements[index].isWhole = !machine.wasCut && !machine.possible.hasGaps() && !shown.hasGaps();
        }
        std::ranges::move(evidence.faults, std::back_inserter(findings.unconfirmed));
        return judgements;
    }

    const DocumentText& document;
    const VIGParserConfig& registry;
    const Catalogue& catalogue;
    Findings& findings;
    Effort effort;
    const AttributeSet empty = {};
};

}  // namespace

Findings findingsIn(const DocumentText& document, const VIGParserConfig& registry, const Catalogue& catalogue,
                    const Interruption* interruption) {
    Findings findings;
    std::vector<Finding>& found = findings.all;
    if (document.report()) {
        found = readerErrors(document);
    } else {
        if (const auto verdicts = judgeConfigs(document, registry, found)) {
            DocumentJudge judge(document, registry, catalogue, interruption, findings);
            judge.judgeAccepted(verdicts->accepted);
            judge.judgeRefused(verdicts->refused, verdicts->faults);
            appendIdWarnings(document, found);
        }
        appendKeyWarnings(document, found);
        appendTrailingText(document, found);
    }
    settle(found, document);
    return findings;
}

}  // namespace Brenta::OS::VIG::Tool
