#include "tools/vig/decide/Proof.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <utility>

#include "tools/vig/decide/ContextDependence.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Has the library confirm what was decided of one machine.
class Confirmation {
  public:
    Confirmation(Behaviour& behaviour, Rehearsal& rehearsal, Proof& proof)
        : machine(behaviour), rehearsal(rehearsal), proof(proof) {}

    Proof::Claim ofState(std::size_t state) {
        const Answer answer = machine.reaches(state);
        return answer != Answer::Yes ? Proof::Claim{answer, {}, {}}
                                     : claim(machine.routeTo(state), "state " + shownQuoted(machine.stateName(state)),
                                             [&](const Witness& witness) { return isVisitedAtTheEnd(state, witness); });
    }

    Proof::Claim ofTransition(std::size_t transition) {
        const Answer answer = machine.fires(transition);
        return answer != Answer::Yes
                   ? Proof::Claim{answer, {}, {}}
                   : claim(machine.routeToFire(transition), machine.config().transitions[transition].place.path,
                           [&](const Witness& witness) { return witness.firesAtTheEnd(transition); });
    }

    void ofLoad(const Load& load) {
        Proof::WorstLoad& shown = proof.load;
        if (!load.isDecided) {
            return;
        }
        if (load.most != 0) {
            shown.recording = show(load.route, "the worst load", [&](const Witness& witness, const Plan& plan) {
                shown.odds = load.rate ? oddsOf(plan, load.lap) : std::nullopt;
                return load.rate ? goesRound(load, witness) : witness.triggers.size() == load.most;
            });
        }
        if (load.distance) {
            shown.distanceRecording = show(
                load.distanceRoute, "the shortest distance",
                [&](const Witness& witness, const Plan& /*plan*/) { return distanceIn(witness) == load.distance; });
        }
        shown.isDecided = (load.most == 0 || shown.recording) && (!load.distance || shown.distanceRecording);
        if (shown.isDecided) {
            shown.most = load.most;
            shown.rate = load.rate;
            shown.lap = load.lap;
            shown.distance = load.distance;
        }
    }

  private:
    Proof::Claim claim(const Route& route, const std::string& what,
                       const std::function<bool(const Witness&)>& isShown) {
        auto recording =
            show(route, what, [&](const Witness& witness, const Plan& /*plan*/) { return isShown(witness); });
        const Answer answer = recording ? Answer::Yes : Answer::Undecided;
        return {answer, std::move(recording), {}};
    }

    // Returns nothing if it cannot be shown within the effort, or is not true.
    std::optional<Recording> show(const Route& route, const std::string& what,
                                  const std::function<bool(const Witness&, const Plan&)>& isShown) {
        const auto plan = machine.planFor(route);
        const std::size_t machines = rehearsal.size();
        if (!plan || !machine.budget().spend(kEffortOfOffer * (plan->events.size() + 1) * machines)) {
            return std::nullopt;
        }
        Witness witness = rehearsal.play(proof.index, *plan);
        if (!isShown(witness, *plan)) {
            proof.fault = proof.fault.empty() ? fmt::format("{} by event {}", what, plan->events.size()) : proof.fault;
            return std::nullopt;
        }
        return Recording{std::move(witness.events), std::move(witness.draws)};
    }

    bool isVisitedAtTheEnd(std::size_t state, const Witness& witness) const {
        const bool isAtStart = state == Behaviour::kStart && witness.events.empty();
        return isAtStart || std::ranges::any_of(witness.trials, [&](const Witness::Trial& each) {
                   return each.fired && each.event == witness.events.size() && machine.to(each.transition) == state;
               });
    }

    std::size_t stateAfter(std::size_t event, const Witness& witness) const {
        std::size_t state = Behaviour::kStart;
        for (const Witness::Trial& each : witness.trials) {
            state = each.fired && each.event <= event ? machine.to(each.transition) : state;
        }
        return state;
    }

    bool goesRound(const Load& load, const Witness& witness) const {
        const std::size_t begin = witness.events.size() - load.lap;
        const auto triggers = std::ranges::count_if(witness.triggers, [&](std::uint64_t each) { return each > begin; });
        return stateAfter(begin, witness) == stateAfter(witness.events.size(), witness) &&
               static_cast<std::uint64_t>(triggers) * load.rate->events == load.rate->triggers * load.lap;
    }

    static std::optional<std::size_t> distanceIn(const Witness& witness) {
        std::optional<std::size_t> least;
        for (std::size_t next = 1; next < witness.triggers.size(); ++next) {
            const std::size_t distance = witness.triggers[next] - witness.triggers[next - 1];
            least = std::min(least.value_or(distance), distance);
        }
        return least;
    }

    static std::optional<double> oddsOf(const Plan& plan, std::size_t lap) {
        const auto last = static_cast<std::ptrdiff_t>(lap);
        const bool isDrawn =
            std::any_of(plan.draws.end() - last, plan.draws.end(), [](const auto& each) { return !each.empty(); });
        return isDrawn ? std::optional(std::accumulate(plan.odds.end() - last, plan.odds.end(), 1.0, std::multiplies()))
                       : std::nullopt;
    }

    Behaviour& machine;
    Rehearsal& rehearsal;
    Proof& proof;
};

void addContext(const ContextDependence& dependence, Proof& proof) {
    auto next = dependence.names.begin();
    const auto add = [&](Proof::Names& names) {
        names.assign(next->begin(), next->end());
        ++next;
    };
    for (Proof::Claim& each : proof.states) {
        add(each.context);
    }
    for (Proof::Claim& each : proof.transitions) {
        add(each.context);
    }
    std::ranges::for_each(proof.staysContext, add);
    add(proof.load.context);
}

}  // namespace

bool Proof::isDecided() const {
    const auto areDecided = [](const std::vector<Claim>& claims) {
        return std::ranges::find(claims, Answer::Undecided, &Claim::answer) == claims.end();
    };
    return areDecided(states) && areDecided(transitions) && stays && load.isDecided && isContextDecided;
}

Proof prove(const ConfigModel& config, std::size_t machine, const Surroundings& surroundings, Effort& forContexts,
            Rehearsal& rehearsal) {
    Proof proof{machine, &config};
    Behaviour behaviour(config, surroundings);
    const Load load = worstLoad(behaviour);
    const auto stays = statesToStay(behaviour);
    if (!behaviour.hasGaps()) {
        proof.stays = stays;
    }
    proof.staysContext.resize(stays.size());
    const Surroundings varied{surroundings.registry, surroundings.catalogue, surroundings.context, forContexts};
    const auto dependence = dependenceOf(config, stays, varied);
    Confirmation confirmation(behaviour, rehearsal, proof);
    for (std::size_t state = 0; state < behaviour.stateCount(); ++state) {
        proof.stateNames.push_back(behaviour.stateName(state));
        proof.states.push_back(confirmation.ofState(state));
    }
    for (std::size_t transition = 0; transition < config.transitions.size(); ++transition) {
        proof.transitions.push_back(confirmation.ofTransition(transition));
    }
    confirmation.ofLoad(load);
    proof.isContextDecided = dependence.isWhole;
    if (!dependence.names.empty()) {
        addContext(dependence, proof);
    }
    return proof;
}

}  // namespace Brenta::OS::VIG::Tool
