#include "tools/vig/page/Recorder.h"

#include <fmt/format.h>

#include <utility>

namespace Brenta::OS::VIG::Tool {

Recorder::Recorder(RecordedRun& recording, const Selection* selection)
    : recording(recording), selection(selection), isOn(isChosen()) {
    if (isOn) {
        recordStart();
    }
}

// The start of the machines is the first event, which no record tells of.
void Recorder::recordStart() {
    if (recording.eventCount() == 0) {
        recording.addStart(isOn);
    }
    positions = 1;
}

void Recorder::loaded(const DocumentModel& loaded) {
    document = &loaded;
    tally.loaded(loaded);
    places.assign(loaded.configs.size(), std::nullopt);
}

void Recorder::follow(std::size_t machine, RecordedRun::MachineTitle title, const RuleGraph& graph,
                      const AttributeSet& context) {
    places[machine] = recording.addMachine(std::move(title), document->configs[machine], graph, context);
}

void Recorder::followAll(const std::vector<RuleGraph>& graphs, const AttributeSet& context) {
    for (std::size_t machine = 0; machine < graphs.size(); ++machine) {
        if (selection == nullptr || selection->machine().value_or(machine) == machine) {
            follow(machine, {fmt::format("{} (id {})", machine, graphs[machine].id), machine}, graphs[machine],
                   context);
        }
    }
}

bool Recorder::isChosen() const {
    return selection == nullptr || selection->has(selection->machine().value_or(0));
}

std::optional<std::size_t> Recorder::placeOf(std::size_t machine) const {
    return isOn ? places[machine] : std::nullopt;
}

void Recorder::offered(const EventRecord& record) {
    ++number;
    const bool isKnown = recording.eventCount() > positions;
    isOn = isChosen() && (isKnown || !recording.isTooLarge());
    if (!isOn) {
        return;
    }
    if (!isKnown) {
        recording.addEvent(number, record);
    }
    ++positions;
}

void Recorder::step(const Step& step) {
    if (const auto place = placeOf(step.machine.index)) {
        tally.step(step);
        recording.addStep(*place, positions - 1, step);
    } else {
        tally.pass(step);
    }
}

void Recorder::trigger(const TriggerLine& line) {
    if (const auto place = placeOf(line.machine.index)) {
        recording.addTrigger(*place, positions - 1, line);
    }
}

void Recorder::log(const LogLine& line) {
    if (line.machine) {
        if (const auto place = placeOf(*line.machine)) {
            recording.addLog(place, positions - 1, line);
        }
    } else if (hasOwnLog && (isOn || number == 0)) {
        // What is logged before any event is told whichever of them are chosen.
        if (number == 0) {
            recordStart();
        }
        recording.addLog(std::nullopt, positions - 1, line);
    }
}

void Recorder::finish() {
    for (std::size_t machine = 0; machine < places.size(); ++machine) {
        if (!places[machine]) {
            continue;
        }
        for (std::size_t index = 0; index < document->configs[machine].transitions.size(); ++index) {
            recording.account(*places[machine], index, tally.whyNot({machine, index}));
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
