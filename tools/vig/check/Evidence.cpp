#include "tools/vig/check/Evidence.h"

#include <algorithm>
#include <utility>

#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// So much is spent on showing, so that very many warnings do not take long.
constexpr std::uint64_t kMostSpent = 20'000'000;

bool drawsAnywhere(const ConfigModel& machine) {
    return std::ranges::any_of(machine.transitions,
                               [](const TransitionModel& each) { return std::ranges::any_of(each.filters, draws); });
}

}  // namespace

Evidence::Evidence(const DocumentText& document, const std::vector<ConfigModel>& accepted)
    : document(document), machines(accepted), effort{kMostSpent} {
    for (std::size_t index = 0; index < machines.size(); ++index) {
        if (drawsAnywhere(machines[index])) {
            drawing.push_back(index);
        }
    }
}

// The machines have nothing in common but the numbers that are drawn. So one that draws plays together with the others
// that do, and any other one alone, so that a document with many of them does not take the square of the time.
void Evidence::rehearse(const std::vector<std::size_t>& wanted) {
    if (rehearsal && rehearsed == wanted) {
        return;
    }
    const auto configText = [&](std::size_t index) {
        const Place& place = machines[index].place;
        return document.source().text().substr(place.begin, place.end - place.begin);
    };
    rehearsal.reset();  // two at a time would stand in each other's way
    rehearsal.emplace("{\"configs\":[" + joined(wanted, ",", configText) + "]}", emptyContext);
    rehearsed = wanted;
}

std::shared_ptr<const Witness> Evidence::show(std::size_t machine, const std::optional<Plan>& plan,
                                              std::string_view claim,
                                              const std::function<bool(const Witness&)>& confirms) {
    const auto place = std::ranges::find(drawing, machine);
    const bool isDrawing = place != drawing.end();
    const std::size_t players = isDrawing ? drawing.size() : 1;
    if (!plan || !effort.spend(kEffortOfOffer * (plan->events.size() + 1) * players)) {
        return nullptr;
    }
    rehearse(isDrawing ? drawing : std::vector{machine});
    Witness witness = rehearsal->play(isDrawing ? static_cast<std::size_t>(place - drawing.begin()) : 0, *plan);
    effort.spend(kEffortOfOffer * witness.moves);
    if (!confirms(witness)) {
        faults.emplace_back(claim);
        return nullptr;
    }
    witness.trials.clear();
    return std::make_shared<const Witness>(std::move(witness));
}

}  // namespace Brenta::OS::VIG::Tool
