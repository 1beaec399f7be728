#include "tools/vig/diff/DocumentDiff.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

#include "tools/vig/diff/MachinePairs.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Tells whether the library did the same until the last event, and then something else.
bool isConfirmed(const ConfigDiff& config, Differ::States states) {
    const std::size_t last = config.diff.plan.events.size();
    const auto deedsOf = [&](std::size_t side, Deed::Kind kind, bool ofLast) {
        std::vector<Deed> deeds;
        std::ranges::copy_if(config.accounts[side].deeds, std::back_inserter(deeds),
                             [&](const Deed& each) { return each.kind == kind && (each.event == last) == ofLast; });
        return deeds;
    };
    const auto areSame = [&](bool ofLast) {
        return std::ranges::all_of(std::array{Deed::Kind::Trigger, Deed::Kind::Log}, [&](Deed::Kind kind) {
            return deedsOf(0, kind, ofLast) == deedsOf(1, kind, ofLast);
        });
    };
    const auto& [old, changed] = config.accounts;
    const bool differsInState = states == Differ::States::Compared && old.state != changed.state;
    return areSame(false) && (!areSame(true) || differsInState);
}

}  // namespace

ConfigDiff::Status ConfigDiff::status() const {
    switch (diff.verdict) {
        case MachineDiff::Verdict::Different:
        case MachineDiff::Verdict::Unrecordable:
            return Status::Changed;
        case MachineDiff::Verdict::Undecided:
            return Status::Undecided;
        case MachineDiff::Verdict::Same:
            break;
    }
    return Status::Unchanged;
}

DocumentDiff compare(const Both<const DocumentModel*>& documents, Differ::States states,
                     const Surroundings& surroundings) {
    static const ConfigModel nothing{};
    DocumentDiff result;
    for (const MachinePair& each : pairsOf(*documents[0], *documents[1])) {
        result.configs.push_back({each.id, each.occurrence, each.index, {}});
    }
    // One that takes long leaves the others their share, and has what they did not need thereafter.
    std::map<const ConfigDiff*, std::uint64_t> shares;
    for (const bool isAgain : {false, true}) {
        std::vector<ConfigDiff*> open;
        for (ConfigDiff& each : result.configs) {
            if (!isAgain || each.diff.verdict == MachineDiff::Verdict::Undecided) {
                open.push_back(&each);
            }
        }
        for (std::size_t index = 0; index < open.size(); ++index) {
            const std::uint64_t share = surroundings.effort.left / (open.size() - index);
            if (isAgain && share <= shares[open[index]]) {
                continue;
            }
            shares[open[index]] = share;
            const auto& [old, changed] = open[index]->indices;
            Effort effort{share, surroundings.effort.interruption};
            const Surroundings ofShare{surroundings.registry, surroundings.catalogue, surroundings.context, effort};
            // The states of a machine that is nowhere else have no names that could differ.
            const auto compared = old && changed ? states : Differ::States::Ignored;
            Differ differ(old ? documents[0]->configs[*old] : nothing, ofShare, compared, Differ::Words::Wanted);
            open[index]->diff = differ.to(changed ? documents[1]->configs[*changed] : nothing);
            surroundings.effort.spend(share - effort.left);
        }
    }
    for (std::size_t side = 0; side < documents.size(); ++side) {
        Rehearsal rehearsal(documents[side]->configs, surroundings.context);
        for (ConfigDiff& each : result.configs) {
            if (each.diff.verdict == MachineDiff::Verdict::Different && each.indices[side]) {
                each.accounts[side] = rehearsal.giveAccount(*each.indices[side], each.diff.plan);
            }
        }
    }
    for (const ConfigDiff& each : result.configs) {
        const auto compared = each.indices[0] && each.indices[1] ? states : Differ::States::Ignored;
        if (each.diff.verdict == MachineDiff::Verdict::Different && !isConfirmed(each, compared)) {
            result.fault = fmt::format("id {}: that they differ by event {}", each.id, each.diff.events);
            break;
        }
    }
    return result;
}

}  // namespace Brenta::OS::VIG::Tool
