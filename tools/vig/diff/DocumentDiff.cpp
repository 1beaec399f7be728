#include "tools/vig/diff/DocumentDiff.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace Brenta::OS::VIG::Tool {

namespace {

std::vector<ConfigDiff> pair(const Both<const DocumentModel*>& documents) {
    std::map<std::pair<std::int64_t, std::size_t>, std::size_t> old;  // indices by id and occurrence
    std::map<std::int64_t, std::size_t> counts;
    for (std::size_t index = 0; index < documents[0]->configs.size(); ++index) {
        const std::int64_t id = documents[0]->configs[index].id;
        old[{id, counts[id]++}] = index;
    }
    std::vector<ConfigDiff> pairs;
    counts.clear();
    for (std::size_t index = 0; index < documents[1]->configs.size(); ++index) {
        const std::int64_t id = documents[1]->configs[index].id;
        ConfigDiff& added = pairs.emplace_back(ConfigDiff{id, counts[id]++, {std::nullopt, index}, {}});
        if (const auto same = old.extract({id, added.occurrence}); !same.empty()) {
            added.indices[0] = same.mapped();
        }
    }
    std::vector<ConfigDiff> gone;
    gone.reserve(old.size());
    for (const auto& [key, index] : old) {
        gone.push_back({key.first, key.second, {index, std::nullopt}, {}});
    }
    std::ranges::sort(gone, {}, [](const ConfigDiff& each) { return *each.indices[0]; });
    std::ranges::move(gone, std::back_inserter(pairs));
    return pairs;
}

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
    DocumentDiff result{pair(documents)};
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
