#include "tools/vig/check/Evidence.h"

#include <algorithm>
#include <utility>

#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

bool drawsAnywhere(const ConfigModel& machine) {
    return std::ranges::any_of(machine.transitions,
                               [](const TransitionModel& each) { return std::ranges::any_of(each.filters, draws); });
}

}  // namespace

Evidence::Evidence(const DocumentText& document, const std::vector<ConfigModel>& accepted)
    : document(document), machines(accepted), haveDraws(std::ranges::any_of(accepted, drawsAnywhere)) {}

// The machines have nothing in common but the numbers that are drawn. Where there are none, the one in question plays
// alone, so that a document with many of them does not take the square of the time.
std::string Evidence::textOf(std::size_t machine) const {
    const auto configText = [&](const ConfigModel& each) {
        return document.source().text().substr(each.place.begin, each.place.end - each.place.begin);
    };
    return "{\"configs\":[" + (haveDraws ? joined(machines, ",", configText) : configText(machines[machine])) + "]}";
}

std::shared_ptr<const Witness> Evidence::show(std::size_t machine, const std::optional<Plan>& plan,
                                              std::string_view claim,
                                              const std::function<bool(const Witness&)>& confirms) {
    if (!plan) {
        return nullptr;
    }
    if (!rehearsal || (!haveDraws && rehearsed != machine)) {
        rehearsal.reset();  // two at a time would stand in each other's way
        rehearsal.emplace(textOf(machine), emptyContext);
        rehearsed = machine;
    }
    auto witness = std::make_shared<const Witness>(rehearsal->play(haveDraws ? machine : 0, *plan));
    if (!confirms(*witness)) {
        faults.emplace_back(claim);
        return nullptr;
    }
    return witness;
}

}  // namespace Brenta::OS::VIG::Tool
