#include "tools/vig/check/Evidence.h"

#include <algorithm>
#include <utility>

#include "tools/vig/document/NormalFilter.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// So much is spent on showing, so that very many warnings do not take long.
constexpr std::uint64_t kMostSpent = 100'000'000;
constexpr std::uint64_t kEffortOfTrial = 10;

bool drawsAnywhere(const ConfigModel& machine) {
    return std::ranges::any_of(machine.transitions,
                               [](const TransitionModel& each) { return std::ranges::any_of(each.filters, draws); });
}

}  // namespace

Evidence::Evidence(std::span<const ConfigModel> accepted) : machines(accepted), effort{kMostSpent} {
    for (const ConfigModel& each : machines) {
        drawing.push_back(drawsAnywhere(each));
    }
}

std::shared_ptr<const Witness> Evidence::show(std::size_t machine, const std::optional<Plan>& plan,
                                              std::string_view claim,
                                              const std::function<bool(const Witness&)>& confirms) {
    // The machines have nothing in common but the numbers that are drawn. So one that does not draw plays alone, and a
    // document with many of them does not take the square of the time.
    const auto players = drawing[machine] ? machines : machines.subspan(machine, 1);
    if (!plan || !effort.spend(kEffortOfOffer * (plan->events.size() + 1) * players.size())) {
        return nullptr;
    }
    if (!rehearsal || rehearsed.data() != players.data() || rehearsed.size() != players.size()) {
        rehearsal.reset();  // two at a time would stand in each other's way
        rehearsal.emplace(players, emptyContext);
        rehearsed = players;
    }
    Witness witness = rehearsal->play(drawing[machine] ? machine : 0, *plan);
    effort.spend(kEffortOfOffer * witness.moves + kEffortOfTrial * witness.trials.size());
    if (!confirms(witness)) {
        faults.emplace_back(claim);
        return nullptr;
    }
    witness.trials = std::vector<Witness::Trial>();  // a state of many transitions has many, and nothing shows them
    return std::make_shared<const Witness>(std::move(witness));
}

}  // namespace Brenta::OS::VIG::Tool
