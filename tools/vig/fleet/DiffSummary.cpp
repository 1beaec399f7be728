#include "tools/vig/fleet/DiffSummary.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

#include "tools/vig/fleet/FleetSummary.h"
#include "tools/vig/words/Text.h"
#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG::Tool {

DeviceChange BothDid::change() const {
    if (!triggersDiffer) {
        return logsDiffer ? DeviceChange::Logs : DeviceChange::None;
    }
    if (triggers[kOld] == triggers[kNew]) {
        return DeviceChange::Otherwise;
    }
    if (triggers[kOld] == 0) {
        return DeviceChange::Newly;
    }
    if (triggers[kNew] == 0) {
        return DeviceChange::NoLonger;
    }
    return triggers[kOld] < triggers[kNew] ? DeviceChange::More : DeviceChange::Less;
}

BothDid DeviceDiff::all() const {
    BothDid sum;
    for (const BothDid& each : pairs) {
        for (const std::size_t side : {kOld, kNew}) {
            sum.triggers[side] += each.triggers[side];
        }
        sum.triggersDiffer = sum.triggersDiffer || each.triggersDiffer;
        sum.logsDiffer = sum.logsDiffer || each.logsDiffer;
    }
    return sum;
}

void DiffSummary::Count::add(const Count& other) {
    for (std::size_t change = 0; change < devices.size(); ++change) {
        devices[change] += other.devices[change];
    }
    for (const std::size_t side : {kOld, kNew}) {
        triggers[side] += other.triggers[side];
    }
}

void DiffSummary::Count::add(const BothDid& device) {
    Count one{{}, device.triggers};
    one.devices[static_cast<std::size_t>(device.change())] = 1;
    add(one);
}

std::uint64_t DiffSummary::Count::allDevices() const {
    return std::accumulate(devices.begin(), devices.end(), std::uint64_t{0});
}

bool DiffSummary::Example::comesBefore(const Example& other) const {
    const auto key = [](const Example& each) {
        const auto [least, most] = std::minmax(each.triggers[kOld], each.triggers[kNew]);
        return std::tuple(each.change, ~(most - least), std::string_view(each.device), each.event, least);
    };
    return key(*this) < key(other);
}

DiffSummary DiffSummary::of(const DocumentModel& old, const DocumentModel& now) {
    const Both<const DocumentModel*> documents = {&old, &now};
    DiffSummary summary;
    for (const std::size_t side : {kOld, kNew}) {
        summary.documentHashes[side] = fmt::format("{:016x}", hashOf(documents[side]->text.source().text()));
    }
    for (const MachinePair& pair : pairsOf(old, now)) {
        Machine machine{pair.id, {}};
        for (const std::size_t side : {kOld, kNew}) {
            machine.paths[side] = pair.index[side] ? documents[side]->configs[*pair.index[side]].place.path : "";
        }
        summary.machines.push_back(std::move(machine));
    }
    return summary;
}

void DiffSummary::add(const DeviceDiff& diff) {
    failed += diff.problem.empty() ? 0 : 1;
    unfinished += diff.problem.empty() && !diff.ended ? 1 : 0;
    if (!diff.begun) {
        return;
    }
    events += diff.events;
    for (std::size_t pair = 0; pair < machines.size(); ++pair) {
        machines[pair].count.add(diff.pairs[pair]);
    }
    const BothDid did = diff.all();
    all.add(did);
    if (diff.firstEvent) {
        // A name has its place by the bytes that are written and read again.
        examples.push_back({did.change(), replaceInvalidUtf8(diff.device), did.triggers, *diff.firstEvent});
        keepFirstExamples();
    }
}

void DiffSummary::merge(const DiffSummary& other) {
    failed += other.failed;
    unfinished += other.unfinished;
    events += other.events;
    all.add(other.all);
    for (std::size_t pair = 0; pair < machines.size(); ++pair) {
        machines[pair].count.add(other.machines[pair].count);
    }
    examples.insert(examples.end(), other.examples.begin(), other.examples.end());
    keepFirstExamples();
}

std::string DiffSummary::tooLarge() const {
    const std::pair<const char*, std::uint64_t> numbers[] = {
        {"failed", failed}, {"unfinished", unfinished},           {"devices", devices()},
        {"events", events}, {"triggers.old", all.triggers[kOld]}, {"triggers.new", all.triggers[kNew]},
    };
    const auto* const found =
        std::ranges::find_if(numbers, [](const auto& each) { return each.second > FleetSummary::MOST; });
    return found == std::end(numbers) ? "" : found->first;
}

bool DiffSummary::isOfSameDocument(const DiffSummary& other) const {
    return documentHashes == other.documentHashes &&
           std::ranges::equal(machines, other.machines, [](const Machine& left, const Machine& right) {
               return left.id == right.id && left.paths == right.paths;
           });
}

void DiffSummary::keepFirstExamples() {
    std::ranges::sort(examples, &Example::comesBefore);
    std::array<std::size_t, kDeviceChangeNames.size()> kept = {};
    std::erase_if(examples, [&kept](const Example& each) {
        return kept[static_cast<std::size_t>(each.change)]++ >= MOST_EXAMPLES;
    });
}

}  // namespace Brenta::OS::VIG::Tool
