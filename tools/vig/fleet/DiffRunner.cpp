#include "tools/vig/fleet/DiffRunner.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "tools/vig/document/Registry.h"
#include "tools/vig/events/EventReader.h"
#include "tools/vig/fleet/DeviceRunner.h"
#include "tools/vig/fleet/Fleet.h"
#include "tools/vig/fleet/MachineExplainer.h"
#include "tools/vig/run/MachineGroup.h"
#include "tools/vig/run/PlatformServices.h"
#include "tools/vig/run/Replay.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// The finaliser of SplitMix64 spreads each bit over all others.
std::uint64_t mixed(std::uint64_t bits) {
    bits += 0x9E3779B97F4A7C15;
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EB;
    return bits ^ (bits >> 31);
}

}  // namespace

void PairDraws::beginDevice(std::string_view name) {
    seed = deviceSeed(draws.seed, name);
}

void PairDraws::beginEvent(std::uint64_t number) {
    event = number;
    last = nullptr;
}

double PairDraws::next(const MachinePair& pair) {
    if (std::exchange(last, &pair) != &pair) {
        count = 0;
    }
    const std::size_t k = count++;
    if (!draws.numbers.empty()) {
        return draws.numbers[std::min(k, draws.numbers.size() - 1)];
    }
    std::uint64_t bits = seed;
    for (const std::uint64_t each :
         {static_cast<std::uint64_t>(pair.id), std::uint64_t{pair.occurrence}, event, std::uint64_t{k}}) {
        bits = mixed(bits ^ each);
    }
    return static_cast<double>(bits >> 11) * 0x1p-53;
}

// It has the machines of one of the documents.
class DiffRunner::Side final : public NoReport {
  public:
    Side(DiffRunner& runner, std::size_t side)
        : runner(runner), side(side), group(runner.plan.context, *this, nullptr) {
        auto configs = machinesOf(*runner.plan.documents[side],
                                  withDraws(runner.plan.registry, [this] { return draw(pairs[group.drivenIndex()]); }));
        MachineGroup::Configs driven;
        for (std::size_t pair = 0; pair < runner.plan.pairs.size(); ++pair) {
            const MachinePair& each = runner.plan.pairs[pair];
            // Where two machines do the same, the old one is enough.
            if (each.index[side] && !(side == kNew && each.isSame)) {
                pairs.push_back(pair);
                driven.push_back(std::move(configs[*each.index[side]]));
            }
        }
        group.adopt(std::move(driven));
    }

    MachineGroup& machines() { return group; }

    void forgetMoves() { moves.clear(); }

    // Returns what the machine of a pair has decided by the event. REQUIRES: there is one.
    std::vector<Step> stepsOf(std::size_t pair, std::uint64_t event, const EventRecord* record) {
        if (!explainer) {
            explainer = std::make_unique<MachineExplainer>(
                *runner.plan.documents[side], runner.plan.registry, [this] { return draw(explained); },
                runner.plan.context);
        }
        const auto index = static_cast<std::size_t>(std::ranges::find(pairs, pair) - pairs.begin());
        const auto moved = std::ranges::find(moves, index, [](const auto& each) { return each.first; });
        const std::string_view state = moved != moves.end() ? moved->second : group.summary().machines[index].state;
        explained = pair;
        runner.draws.beginEvent(event);
        return explainer->explain(*runner.plan.pairs[pair].index[side], std::string(state), event, record);
    }

    void trigger(const TriggerLine& line) override {
        doings(line.machine.index).triggers.push_back({line.name, line.processName, line.metadata});
    }

    void log(const LogLine& line) override {
        doings(group.drivenIndex()).logs.push_back({line.priority, std::string(line.tag), std::string(line.message)});
    }

    void move(const MoveLine& line) override { moves.emplace_back(line.machine.index, line.from); }

  private:
    double draw(std::size_t pair) { return runner.draws.next(runner.plan.pairs[pair]); }

    Doings& doings(std::size_t index) {
        Both<Doings>& both = runner.doings[pairs[index]];
        if (both[kOld].isEmpty() && both[kNew].isEmpty()) {
            runner.active.push_back(pairs[index]);
        }
        return both[side];
    }

    DiffRunner& runner;
    const std::size_t side;
    std::vector<std::size_t> pairs;  // of the machines of the group
    MachineGroup group;
    std::vector<std::pair<std::size_t, std::string_view>> moves;  // by the event: machines, and whence they came
    std::unique_ptr<MachineExplainer> explainer;                  // made when something is to be explained
    std::size_t explained = 0;                                    // the pair of the machine
};

DiffRunner::DiffRunner(const DiffPlan& plan) : plan(plan), draws(plan.draws), doings(plan.pairs.size()) {
    for (const std::size_t side : {kOld, kNew}) {
        sides[side] = std::make_unique<Side>(*this, side);
    }
}

DiffRunner::~DiffRunner() = default;

DeviceDiff DiffRunner::run(const std::string& device, Output& output) {
    const std::string name = nameOfEvents(device);
    diff = {name};
    parting.reset();
    if (plan.interruption.requested()) {
        return diff;
    }
    Replay replay(device, EventReader::Devices::One, plan.console, plan.interruption);
    diff.begun = replay.isOpen();
    diff.pairs.resize(plan.pairs.size());
    if (diff.begun) {
        draws.beginDevice(name);
        drive(0, nullptr, [](MachineGroup& machines) { machines.startAnew(); });
        diff.ended = replay.play(
            [this](const EventRecord& record) {
                drive(++diff.events, &record, [&record](MachineGroup& machines) { machines.offer(record); });
            },
            output, plan.progress);
    }
    diff.problem = replay.problem();
    if (parting && plan.format == ReportFormat::Text) {
        output.write(headingOf(name) + textOf(diff, *parting) + "\n");
    } else if (parting && plan.format == ReportFormat::Jsonl) {
        output.write(jsonOf(diff, *parting));
    }
    return std::move(diff);
}

void DiffRunner::drive(std::uint64_t event, const EventRecord* record, const auto& act) {
    for (const auto& side : sides) {
        side->forgetMoves();
        draws.beginEvent(event);
        const PlatformServices::OnThread receiver(side->machines());
        act(side->machines());
    }
    if (!active.empty()) {
        compare(event, record);
    }
}

void DiffRunner::compare(std::uint64_t event, const EventRecord* record) {
    std::ranges::sort(active);
    std::vector<std::size_t> differing;
    for (const std::size_t pair : active) {
        const Doings& old = doings[pair][kOld];
        const Doings& now = plan.pairs[pair].isSame ? old : doings[pair][kNew];
        BothDid& did = diff.pairs[pair];
        did.triggers[kOld] += old.triggers.size();
        did.triggers[kNew] += now.triggers.size();
        const bool triggersDiffer = old.triggers != now.triggers;
        const bool logsDiffer = old.logs != now.logs;
        did.triggersDiffer = did.triggersDiffer || triggersDiffer;
        did.logsDiffer = did.logsDiffer || logsDiffer;
        if (triggersDiffer || logsDiffer) {
            differing.push_back(pair);
        }
    }
    if (!differing.empty() && !diff.firstEvent) {
        diff.firstEvent = event;
        if (tells()) {
            part(differing, record);
        }
    }
    for (const std::size_t pair : active) {
        doings[pair] = {};
    }
    active.clear();
}

void DiffRunner::part(const std::vector<std::size_t>& differing, const EventRecord* record) {
    parting = Parting{*diff.firstEvent, record != nullptr ? record->timeMs : std::nullopt, {}};
    for (const std::size_t pair : differing) {
        Parting::Machine machine{&plan.pairs[pair], doings[pair], {}};
        for (const std::size_t side : {kOld, kNew}) {
            if (machine.pair->index[side]) {
                machine.steps[side] = sides[side]->stepsOf(pair, parting->event, record);
            }
        }
        parting->machines.push_back(std::move(machine));
    }
}

}  // namespace Brenta::OS::VIG::Tool
