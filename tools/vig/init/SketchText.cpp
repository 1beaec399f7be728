// The machine of a sketch waits in one state until the attribute is above the limit, counts in further states how often
// that is so, and acts. Where it has a way back, it waits in the state after that for the release limit, and for a
// second, higher limit. On a share of the devices only, it draws once, when it starts. All shapes are this one, with
// parts left out.
//
// The tests go through all of its states, and are at each limit and just above it. What they expect is what the same
// machine does here, in a few lines.

#include "tools/vig/init/SketchText.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/Text.h"
#include "vig/functions/DoubleFunctions.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr int kConfigId = 1;

// It is one transition.
struct Way {
    enum class Condition {
        Over,     // the limit
        AtMost,   // the limit
        Heard,    // an event of the process, whatever the value
        Drawn,    // on entering the state, with that probability
        Entered,  // on entering the state
    };

    std::string from;
    std::string to;
    Condition condition;
    Decimal limit = {};
    bool acts = false;

    bool isOnEntering() const { return condition == Condition::Drawn || condition == Condition::Entered; }
};

std::string counted(std::uint32_t times) {
    return times == 1 ? "once" : times == 2 ? "twice" : fmt::format("{} times", times);
}

std::string firstState(const Sketch& sketch) {
    return sketch.share ? "watching" : "start";
}

std::vector<Way> waysOf(const Sketch& sketch) {
    using Condition = Way::Condition;
    std::vector<Way> ways;
    const std::string first = firstState(sketch);
    if (sketch.share) {
        ways.push_back({"start", first, Condition::Drawn, *sketch.share});
        ways.push_back({"start", "end", Condition::Entered});
    }
    const std::string after = sketch.release || sketch.second ? "collected" : "end";
    std::string state = first;
    for (std::uint32_t time = 1; time <= sketch.times; ++time) {
        const bool isLast = time == sketch.times;
        const std::string next = isLast ? after : "over " + counted(time);
        ways.push_back({state, next, Condition::Over, sketch.limit, isLast});
        if (state != first) {
            ways.push_back({state, first, Condition::Heard});
        }
        state = next;
    }
    const std::string last = sketch.release ? "critical" : "end";
    if (sketch.release) {
        ways.push_back({after, first, Condition::AtMost, *sketch.release});
    }
    if (sketch.second) {
        ways.push_back({after, last, Condition::Over, *sketch.second, true});
    }
    if (sketch.second && sketch.release) {
        ways.push_back({last, first, Condition::AtMost, *sketch.release});
    }
    return ways;
}

std::string filter(std::string_view operation, std::string_view valueType, std::string_view kind, std::string_view name,
                   std::string_view constant) {
    return fmt::format(R"(
                {{
                  "operator": "{}",
                  "value_type": "{}",
                  "operand1": {{ "type": "{}", "value": {} }},
                  "operand2": {{ "type": "constant", "value": {} }}
                }})",
                       operation, valueType, kind, inQuotes(name), inQuotes(constant));
}

std::string filtersOf(const Way& way, const Sketch& sketch) {
    std::vector<std::string> filters;
    if (!way.isOnEntering() && !sketch.process.empty()) {
        filters.push_back(filter("==", "string", "envvar", "processName", sketch.process));
    }
    const std::string_view valueType = sketch.isDouble ? "double" : "integer";
    switch (way.condition) {
        case Way::Condition::Over:
            filters.push_back(filter(">", valueType, "envvar", sketch.attribute, way.limit.text()));
            break;
        case Way::Condition::AtMost:
            filters.push_back(filter("<=", valueType, "envvar", sketch.attribute, way.limit.text()));
            break;
        case Way::Condition::Drawn: {
            const auto* const draw = std::ranges::find(kDoubleFunctions, true, &DoubleFunction::isRandom);
            filters.push_back(filter("<", "double", "function", draw->name, way.limit.text()));
            break;
        }
        case Way::Condition::Heard:
        case Way::Condition::Entered:
            break;
    }
    return filters.empty() ? "[]" : fmt::format("[{}\n              ]", fmt::join(filters, ","));
}

// It is an event of a test.
struct Heartbeat {
    bool isOfProcess;
    Decimal value;
};

using Heartbeats = std::vector<Heartbeat>;

// Goes the ways of a machine.
class Walk {
  public:
    Walk(std::vector<Way> all, bool isDrawn) : ways(std::move(all)) {
        go([&](const Way& way) { return way.condition == Way::Condition::Drawn ? isDrawn : way.isOnEntering(); });
    }

    void hear(const Heartbeat& heartbeat) {
        ++event;
        go([&](const Way& way) {
            const bool isMet = way.condition == Way::Condition::Heard ||
                               (way.condition == Way::Condition::Over && heartbeat.value > way.limit) ||
                               (way.condition == Way::Condition::AtMost && heartbeat.value <= way.limit);
            return heartbeat.isOfProcess && isMet;
        });
    }

    std::string state = "start";
    int moves = 0;
    std::vector<int> actions;  // numbers of the events

  private:
    void go(const auto& isOpen) {
        const auto way =
            std::ranges::find_if(ways, [&](const Way& each) { return each.from == state && isOpen(each); });
        if (way != ways.end()) {
            state = way->to;
            ++moves;
            if (way->acts) {
                actions.push_back(event);
            }
        }
    }

    const std::vector<Way> ways;
    int event = 0;
};

void add(Heartbeats& heartbeats, bool isOfProcess, const Decimal& value, std::uint32_t times = 1) {
    heartbeats.insert(heartbeats.end(), times, {isOfProcess, value});
}

// Returns the way to each action and back, with all that is not enough for it.
Heartbeats allOf(const Sketch& sketch) {
    const Decimal over = sketch.above(sketch.limit);
    Heartbeats beats;
    add(beats, true, sketch.limit);
    // Counts that are too small come small and large by turns: a machine that does not forget one acts on the next.
    for (std::uint32_t few = 1; 2 * few <= sketch.times; ++few) {
        add(beats, true, over, few);
        add(beats, true, sketch.limit);
        if (2 * few < sketch.times) {
            add(beats, true, over, sketch.times - few);
            add(beats, true, sketch.limit);
        }
    }
    add(beats, true, over, sketch.times);
    if (!sketch.release && !sketch.second) {
        add(beats, true, over, sketch.times);
    }
    if (sketch.release) {
        add(beats, true, sketch.above(*sketch.release));
        add(beats, true, over, sketch.times);
        add(beats, true, *sketch.release);
        add(beats, true, over, sketch.times);
    }
    if (sketch.second) {
        add(beats, true, *sketch.second);
        add(beats, true, sketch.above(*sketch.second));
    }
    if (sketch.second && sketch.release) {
        add(beats, true, sketch.above(*sketch.release));
        add(beats, true, over, sketch.times);
        add(beats, true, *sketch.release);
    }
    return beats;
}

// Returns the way to each action, with events of another process in each state.
Heartbeats ofOthersToo(const Sketch& sketch) {
    const Decimal over = sketch.above(sketch.limit);
    Heartbeats beats;
    add(beats, false, over);
    for (std::uint32_t time = 1; time < sketch.times; ++time) {
        add(beats, true, over);
        add(beats, false, over);
        add(beats, false, sketch.limit);
    }
    add(beats, true, over);
    if (sketch.release) {
        add(beats, false, *sketch.release);
    }
    if (sketch.second) {
        add(beats, false, sketch.above(*sketch.second));
        add(beats, true, sketch.above(*sketch.second));
    }
    if (sketch.second && sketch.release) {
        add(beats, false, *sketch.release);
    }
    return beats;
}

// Returns the values as a series tells them.
std::string valuesOf(const Heartbeats& beats, const auto& render) {
    std::vector<std::pair<std::string, std::size_t>> runs;
    for (const Heartbeat& each : beats) {
        const std::string value = render(each);
        if (runs.empty() || runs.back().first != value) {
            runs.emplace_back(value, 0);
        }
        ++runs.back().second;
    }
    return joined(runs, " ", [](const auto& run) {
        return run.second == 1 ? run.first : fmt::format("{}x{}", run.first, run.second);
    });
}

// Returns the names of the processes: one for all events, or one for each of them.
std::string processesOf(const Heartbeats& beats, const Sketch& sketch) {
    const bool isOne = std::ranges::all_of(beats, &Heartbeat::isOfProcess);
    const bool isWord = sketch.process.find(' ') == std::string::npos;
    if (isOne) {
        return isWord ? inQuotes(sketch.process) : "[" + inQuotes(sketch.process) + "]";
    }
    const std::string other = sketch.process == "gallery" ? "player" : "gallery";
    const auto name = [&](const Heartbeat& each) { return each.isOfProcess ? sketch.process : other; };
    // A process that is called like a repetition would be one.
    if (isWord && !sketch.process.starts_with('x')) {
        return inQuotes(joined(beats, " ", name));
    }
    return "[" + joined(beats, ", ", [&](const Heartbeat& each) { return inQuotes(name(each)); }) + "]";
}

std::string testOf(const Sketch& sketch, const std::string& name, const Heartbeats& beats, bool isDrawn) {
    Walk walk(waysOf(sketch), isDrawn);
    for (const Heartbeat& each : beats) {
        walk.hear(each);
    }
    std::string text = fmt::format(
        R"(
    {{
      "name": {},
      "series": {{
        "event": "{}",{}
        "{}": "{}"
      }},)",
        inQuotes(name), nameOf(sketch.event),
        sketch.process.empty() ? std::string()
                               : fmt::format("\n        \"processName\": {},", processesOf(beats, sketch)),
        sketch.attribute, valuesOf(beats, [](const Heartbeat& each) { return each.value.text(); }));
    if (sketch.share) {
        text += fmt::format("\n      \"draws\": [{}],", (isDrawn ? sketch.share->below() : *sketch.share).text());
    }
    std::string triggers;
    if (startsCollection(sketch.action) && !walk.actions.empty()) {
        triggers = fmt::format("\n        \"triggers\": [ {} ],", joined(walk.actions, ", ", [&](int event) {
                                   const std::string process =
                                       sketch.process.empty() ? "" : "\"process\": " + inQuotes(sketch.process) + ", ";
                                   return fmt::format("{{ {}\"event\": {} }}", process, event);
                               }));
    }
    return text + fmt::format(R"(
      "expect": {{{}
        "states": {{ "{}": "{}" }},
        "moves": {}
      }}
    }})",
                              triggers, kConfigId, walk.state, walk.moves);
}

std::string subjectOf(const Sketch& sketch) {
    return sketch.attribute + (sketch.process.empty() ? "" : " of " + shownName(sketch.process));
}

std::string timesOf(const Sketch& sketch) {
    return sketch.times == 1 ? "" : fmt::format(" {} in a row", counted(sketch.times));
}

}  // namespace

std::string summaryOf(const Sketch& sketch) {
    const std::string unit(unitOf(sketch));
    const auto shown = [&](const Decimal& number) { return number.text() + (unit.empty() ? "" : " " + unit); };
    std::string text =
        fmt::format("{} when {} is above {}{}", sketch.action, subjectOf(sketch), shown(sketch.limit), timesOf(sketch));
    if (sketch.second) {
        text += fmt::format(", and once more when it is above {}", shown(*sketch.second));
    }
    text +=
        sketch.release ? fmt::format("; anew once it has been at {} or less", shown(*sketch.release)) : "; never anew";
    return sketch.share ? text + fmt::format("; on {} % of the devices", sketch.share->times(100)->text()) : text;
}

std::string documentOf(const Sketch& sketch) {
    const std::vector<Way> ways = waysOf(sketch);
    const std::string transitions = joined(ways, ",", [&](const Way& way) {
        return fmt::format(
            R"(
            {{
              "from_state": "{}",
              "to_state": "{}",
              "event": "{}",
              "filters": {},
              "actions": [{}]
            }})",
            way.from, way.to, nameOf(way.isOnEntering() ? RulesEngine::EventType::EnteringState : sketch.event),
            filtersOf(way, sketch), way.acts ? fmt::format(" {{ \"name\": \"{}\" }} ", sketch.action) : std::string());
    });
    return fmt::format(R"({{
  "configs": [
    {{
      "id": {},
      "payload": {{
        "id": 1,
        "data": {{
          "transitions": [{}
          ]
        }}
      }}
    }}
  ]
}}
)",
                       kConfigId, transitions);
}

std::string testsOf(const Sketch& sketch, const std::string& rules) {
    std::string name = "above the limit" + timesOf(sketch) + " it acts";
    name += sketch.second ? ", above the second one once more" : "";
    name += sketch.release ? ", and anew only after the release limit" : ", and never again";
    std::vector<std::string> tests = {testOf(sketch, name, allOf(sketch), true)};
    if (!sketch.process.empty()) {
        tests.push_back(
            testOf(sketch, "another process changes nothing, whatever the state", ofOthersToo(sketch), true));
    }
    if (sketch.share) {
        tests.push_back(testOf(sketch, "a device that was not drawn does nothing", allOf(sketch), false));
    }
    return fmt::format("{{\n  \"rules\": {},\n  \"tests\": [{}\n  ]\n}}\n", inQuotes(rules), fmt::join(tests, ","));
}

}  // namespace Brenta::OS::VIG::Tool
