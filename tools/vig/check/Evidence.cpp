#include "tools/vig/check/Evidence.h"

#include <algorithm>
#include <utility>

#include "tools/vig/document/NormalFilter.h"

namespace Brenta::OS::VIG::Tool {

namespace {

bool drawsAnywhere(const ConfigModel& machine) {
    return std::ranges::any_of(machine.transitions,
                               [](const TransitionModel& each) { return std::ranges::any_of(each.filters, draws); });
}

}  // namespace

Evidence::Evidence(std::span<const ConfigModel> accepted)
    : machines(accepted), haveDraws(std::ranges::any_of(accepted, drawsAnywhere)) {}

std::shared_ptr<const Witness> Evidence::show(std::size_t machine, const std::optional<Plan>& plan,
                                              std::string_view claim,
                                              const std::function<bool(const Witness&)>& confirms) {
    if (!plan) {
        return nullptr;
    }
    // The machines have nothing in common but the numbers that are drawn. Where there are none, the one in question
    // plays alone, so that a document with many of them does not take the square of the time.
    if (!rehearsal || (!haveDraws && rehearsed != machine)) {
        rehearsal.reset();  // two at a time would stand in each other's way
        rehearsal.emplace(haveDraws ? machines : machines.subspan(machine, 1), emptyContext);
        rehearsed = machine;
    }
    Witness witness = rehearsal->play(haveDraws ? machine : 0, *plan);
    if (!confirms(witness)) {
        faults.emplace_back(claim);
        return nullptr;
    }
    witness.trials = std::vector<Witness::Trial>();  // a state of many transitions has many, and nothing shows them
    return std::make_shared<const Witness>(std::move(witness));
}

}  // namespace Brenta::OS::VIG::Tool
