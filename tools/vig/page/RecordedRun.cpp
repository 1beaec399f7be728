#include "tools/vig/page/RecordedRun.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <variant>

#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/trace/ExplainText.h"
#include "tools/vig/trace/OperandReader.h"
#include "tools/vig/trace/TransitionNames.h"
#include "tools/vig/words/PriorityName.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

std::string joinedLines(const std::vector<std::string>& lines) {
    return joined(lines, "\n", [](const std::string& line) { return line; });
}

}  // namespace

std::size_t RecordedRun::addMachine(MachineTitle title, const ConfigModel& config, const RuleGraph& graph,
                                    const AttributeSet& context) {
    Machine& machine = machines.emplace_back(Machine{std::move(title), config, {}, {}, {}, {}});
    for (const GraphState& each : graph.states) {
        machine.states.push_back(each.name);
    }
    for (const TransitionModel& transition : config.transitions) {
        for (const std::string* const name : {&transition.from, &transition.to}) {
            const auto number = std::ranges::find(machine.states, *name) - machine.states.begin();
            machine.stateNumbers.try_emplace(*name, static_cast<std::uint32_t>(number));
        }
        for (const FilterModel& filter : transition.filters) {
            machine.operands.push_back(operandJson(filter, filter.operand1, context));
            machine.operands.push_back(operandJson(filter, filter.operand2, context));
        }
    }
    machine.stateNumbers.try_emplace(machine.states.front(), 0);
    machine.accounts.resize(config.transitions.size());
    return machines.size() - 1;
}

std::string RecordedRun::operandJson(const FilterModel& filter, const OperandModel& operand,
                                     const AttributeSet& context) {
    if (isFunction(operand)) {
        return fmt::format(R"({{"function":{}}})", inQuotes(shownName(operand.operand.value)));
    }
    const AttributeSet none;
    const RecordedContext ofMachine(context);
    const RecordedEvent withoutAttributes(none, EventType::EnteringState);
    const std::vector<FunctionResult> noResults;
    OperandReader reader(noResults, filter, ofMachine, withoutAttributes);
    const std::string text = inQuotes(shownValue(reader.read(operand.operand)));
    return isConstant(operand)
               ? fmt::format(R"({{"constant":{}}})", text)
               : fmt::format(R"({{"attribute":{},"absent":{}}})", events.nameOf(operand.operand.value), text);
}

// Appends the turns up to a position: the one that is there, and empty ones where nothing happened.
void RecordedRun::endTurns(Machine& machine, std::size_t position) {
    while (machine.turns.size() < position) {
        const auto number = static_cast<std::uint32_t>(machine.shapeNumbers.size());
        const auto [shape, isNew] = machine.shapeNumbers.try_emplace(machine.turn, number);
        if (isNew) {
            machine.shapes.push_back(&shape->first);
            bytes += shape->first.size() * sizeof(char32_t);
        }
        machine.turns.push_back(shape->second);
        machine.turn.clear();
        machine.steps = 0;
    }
}

void RecordedRun::addStep(std::size_t index, std::size_t position, const Step& step) {
    Machine& machine = machines[index];
    endTurns(machine, position);
    const auto add = [&](std::size_t number) { machine.turn += static_cast<char32_t>(number); };
    bytes += machine.turn.empty() ? sizeof(std::uint32_t) : 0;
    ++machine.steps;
    add(machine.stateNumbers.find(step.state)->second);
    add(step.raised ? 1 : 0);
    add(events.typeOf(step.type));
    add(step.attempts.size());
    for (const Attempt& attempt : step.attempts) {
        add(attempt.index);
        add(attempt.comparisons.size());
        add(attempt.fired ? 1 : 0);
        for (const Comparison& each : attempt.comparisons) {
            addDrawn(machine, position, each.filter->operand1, each.left);
            addDrawn(machine, position, each.filter->operand2, each.right);
        }
    }
}

void RecordedRun::addDrawn(Machine& machine, std::size_t position, const OperandModel& operand,
                           const ComparedValue& value) {
    if (!isFunction(operand)) {
        return;
    }
    const auto* const number = std::get_if<double>(&value.value);
    const auto* const text = std::get_if<std::string>(&value.value);
    machine.drawnAt.push_back(static_cast<std::uint32_t>(position));
    // An integer can only be the 0 of a function that there is not.
    machine.drawnNumbers.push_back(number != nullptr ? *number : 0);
    machine.drawnTexts.push_back(text != nullptr ? events.texts.numberOf(*text) : kNone);
    bytes += sizeof(double) + 2 * sizeof(std::uint32_t);
}

void RecordedRun::addLine(std::optional<std::size_t> machine, std::size_t position, LineKind kind,
                          const std::string& text) {
    if (machine) {
        endTurns(machines[*machine], position);
    }
    lines.positions.push_back(static_cast<std::uint32_t>(position));
    lines.machines.push_back(machine ? static_cast<std::uint32_t>(*machine) : kNone);
    lines.steps.push_back(machine ? machines[*machine].steps : 0);
    lines.kinds.push_back(static_cast<std::uint8_t>(kind));
    lines.texts.push_back(lineTexts.numberOf(text));
    bytes += 4 * sizeof(std::uint32_t) + 1;
}

void RecordedRun::addTrigger(std::size_t machine, std::size_t position, const TriggerLine& line) {
    std::vector<std::string> shown = {printable(line.name)};
    std::ranges::transform(line.metadata, std::back_inserter(shown), printable);
    addLine(machine, position, LineKind::Trigger, joinedLines(shown));
}

void RecordedRun::addLog(std::optional<std::size_t> machine, std::size_t position, const LogLine& line) {
    std::string_view message = line.message;
    message = message.substr(0, message.find_last_not_of('\n') + 1);
    std::vector<std::string> shown = printableLines(message);
    shown.front() = fmt::format("{} {}: {}", priorityName(line.priority), printable(line.tag), shown.front());
    addLine(machine, position, LineKind::Log, joinedLines(shown));
}

void RecordedRun::account(std::size_t machine, std::size_t transition, const WhyNot& answer) {
    ExplainText text(std::numeric_limits<std::size_t>::max());
    machines[machine].accounts[transition] = {answer.tried, answer.fired, answer.stops,
                                              jsonArray(text.linesOf(answer), inQuotes)};
}

std::string RecordedRun::turnsJson(const Machine& machine, ColumnWriter& writer) {
    const auto narrowed = [&](auto zero) {
        return writer.add(std::vector<decltype(zero)>(machine.turns.begin(), machine.turns.end()));
    };
    const std::size_t shapes = machine.shapes.size();
    return shapes <= std::numeric_limits<std::uint8_t>::max()    ? narrowed(std::uint8_t())
           : shapes <= std::numeric_limits<std::uint16_t>::max() ? narrowed(std::uint16_t())
                                                                 : writer.add(machine.turns);
}

std::string RecordedRun::json(const Machine& machine, ColumnWriter& writer) {
    std::string transitions;
    auto operand = machine.operands.begin();
    for (std::size_t index = 0; index < machine.config.transitions.size(); ++index) {
        const TransitionModel& each = machine.config.transitions[index];
        const Account& account = machine.accounts[index];
        auto stops = account.stops.begin();
        const auto filterJson = [&](const FilterModel& filter) {
            const std::string& left = *operand++;
            const std::string& right = *operand++;
            const auto& [stopped, nearest] = *stops++;
            return fmt::format(
                R"({{"condition":{},"operator":"{}","kind":"{}","left":{},"right":{},"stopped":{},"nearest":{}}})",
                inQuotes(printable(shownCondition(filter))), kFilterOperatorTable.lookup(filter.op),
                nameOf(kindOf(filter.valueType)), left, right, stopped,
                nearest ? std::to_string(nearest->event) : "null");
        };
        transitions += fmt::format(
            R"({}{{"name":{},"path":{},"from":{},"to":{},"type":"{}","filters":{},"actions":{},"tried":{},"fired":{},)"
            R"("why":{}}})",
            index == 0 ? "" : ",", inQuotes(lastPartOf(each)), inQuotes(each.place.path),
            machine.stateNumbers.at(each.from), machine.stateNumbers.at(each.to), nameOf(each.event),
            jsonArray(each.filters, filterJson),
            jsonArray(each.actions, [](const ActionModel& action) { return inQuotes(shownName(action.name)); }),
            account.tried, account.fired, account.lines);
    }
    const auto shapeJson = [](const Shape* shape) {
        return jsonArray(*shape, [](char32_t number) { return std::to_string(static_cast<std::uint32_t>(number)); });
    };
    const std::string turns = turnsJson(machine, writer);
    const std::string drawn =
        writer.members("at", machine.drawnAt, "number", machine.drawnNumbers, "text", machine.drawnTexts);
    return fmt::format(
        R"({{"label":{},"number":{},"states":{},"transitions":[{}],"turns":{},"shapes":{},"drawn":{{{}}}}})",
        inQuotes(machine.title.label), machine.title.number,
        jsonArray(machine.states, [](const std::string& name) { return inQuotes(shownName(name)); }), transitions,
        turns, jsonArray(machine.shapes, shapeJson), drawn);
}

std::string RecordedRun::encoded(const PagePicture& picture) {
    ColumnWriter writer;
    std::string machinesJson;
    for (Machine& each : machines) {
        endTurns(each, events.count());
        machinesJson += (machinesJson.empty() ? "" : ",") + json(each, writer);
    }
    const std::string linesJson = writer.members("at", lines.positions, "machine", lines.machines, "step", lines.steps,
                                                 "kind", lines.kinds, "text", lines.texts);
    const auto unchanged = [](std::string_view text) { return text; };
    std::string json = fmt::format(
        R"({{{},"texts":{},"shownTexts":{},"wholeStart":{},"machines":[{}],"lines":{{{}}},"lineTexts":{},"picture":{},"noPicture":{}}})",
        events.json(writer), events.texts.json(unchanged), events.texts.json(shownQuoted), hasWholeStart, machinesJson,
        linesJson, lineTexts.json(unchanged), inQuotes(picture.svg), inQuotes(picture.whyNone));
    ColumnWriter head;
    head.add(std::vector<std::uint32_t>{static_cast<std::uint32_t>(json.size())});
    json.resize((json.size() + ColumnWriter::kAlignment - 1) / ColumnWriter::kAlignment * ColumnWriter::kAlignment);
    return head.bytes() + json + writer.bytes();
}

}  // namespace Brenta::OS::VIG::Tool
