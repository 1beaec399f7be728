#include "tools/vig/decide/Rehearsal.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

#include "tools/vig/document/Registry.h"
#include "tools/vig/trace/ExplainText.h"
#include "vig/parsers/VIGConfigParser.h"

namespace Brenta::OS::VIG::Tool {

Rehearsal::Rehearsal(std::span<const ConfigModel> machines, const AttributeSet& context)
    : tracer(*this), group(context, *this, &tracer), services(group) {
    const auto registry = tracer.registryFrom(withDraws(libraryRegistry(), [this] { return draw(); }));
    MachineGroup::Configs configs;
    for (const ConfigModel& each : machines) {
        configs.push_back(VIGConfigParser().parse(*each.json, registry).value);
    }
    group.adopt(tracer.watch(machines, configs));
}

Witness Rehearsal::play(std::size_t machine, const Plan& plan) {
    witness = {plan.events, {}, {}, {}, 0};
    played = machine;
    const auto prepare = [&](std::size_t event) {
        numbers = &plan.draws[event];
        drawn = 0;
    };
    prepare(0);
    group.startAnew();
    for (std::size_t event = 0; event < plan.events.size(); ++event) {
        prepare(event + 1);
        group.offer(plan.events[event]);
    }
    std::vector<double>& draws = witness.draws;
    while (draws.size() > 1 && draws[draws.size() - 1] == draws[draws.size() - 2]) {
        draws.pop_back();
    }
    return std::move(witness);
}

Account Rehearsal::giveAccount(std::size_t machine, const Plan& plan) {
    account.emplace();
    Witness played = play(machine, plan);
    Account given = std::move(*account);
    account.reset();
    given.witness = std::move(played);
    given.state = group.summary().machines[machine].state;
    return given;
}

void Rehearsal::show(std::size_t machine, const Plan& plan, Trace& steps, Report& lines) {
    alsoTrace = &steps;
    alsoReport = &lines;
    play(machine, plan);
    alsoTrace = nullptr;
    alsoReport = nullptr;
}

double Rehearsal::draw() {
    constexpr double kOfOthers = 0.5;
    const bool isPlanned = group.drivenIndex() == played && drawn < numbers->size();
    const double number = isPlanned ? (*numbers)[drawn++] : kOfOthers;
    witness.draws.push_back(number);
    return number;
}

void Rehearsal::loaded(const DocumentModel& /*document*/) {}

void Rehearsal::offered(const EventRecord& record) {
    if (alsoTrace != nullptr) {
        alsoTrace->offered(record);
    }
}

void Rehearsal::step(const Step& step) {
    if (alsoTrace != nullptr) {
        alsoTrace->step(step);
    }
    for (const Attempt& attempt : step.attempts) {
        witness.moves += attempt.fired ? 1 : 0;
        if (step.machine.index == played) {
            Witness::Trial trial{step.event, attempt.index, {}, attempt.fired};
            for (const Comparison& each : attempt.comparisons) {
                trial.verdicts.push_back(each.verdict);
            }
            witness.trials.push_back(std::move(trial));
        }
    }
    if (account && step.machine.index == played && step.event == witness.events.size() && !step.attempts.empty()) {
        // Whoever shows it puts it into columns of its own.
        ExplainText text(std::numeric_limits<std::size_t>::max());
        std::ranges::move(text.linesOf(step), std::back_inserter(account->explanation));
    }
}

void Rehearsal::trigger(const TriggerLine& line) {
    if (alsoReport != nullptr) {
        alsoReport->trigger(line);
    }
    if (line.machine.index == played) {
        witness.triggers.push_back(line.event);
        if (account) {
            std::string text = line.name;
            for (const std::string& each : line.metadata) {
                text += " " + each;
            }
            account->deeds.push_back({line.event, Deed::Kind::Trigger, std::move(text)});
        }
    }
}

void Rehearsal::log(const LogLine& line) {
    if (alsoReport != nullptr) {
        alsoReport->log(line);
    }
    if (account && group.drivenIndex() == played) {
        account->deeds.push_back({line.event, Deed::Kind::Log, std::string(line.message)});
    }
}

}  // namespace Brenta::OS::VIG::Tool
