#include <host/Host.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Inputs.h"
#include "fuzz/Script.h"
#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/decide/Load.h"
#include "tools/vig/decide/Rehearsal.h"
#include "vig/parsers/VIGResponseParser.h"

// A rule document and, after the first NUL, bytes that stand for events. The library plays what was decided: each way
// to a transition leads there. And it plays the events: nothing is done that was called impossible.

namespace {

using namespace Brenta::OS::VIG::Tool;

// Returns nothing for an event that no record holds.
std::optional<EventRecord> recordOf(const reference::Event& event) {
    EventRecord record;
    record.type = fuzz::registry().getEventTypes().at(event.type);
    if (record.type == Brenta::OS::RulesEngine::EventType::EnteringState ||
        !std::ranges::all_of(event.attributes.real, [](const auto& each) { return std::isfinite(each.second); })) {
        return std::nullopt;
    }
    if (record.type == Brenta::OS::RulesEngine::EventType::Timeout) {
        record.timeoutId = event.timeoutId;
    }
    // A name that was drawn twice has no meaning in a record.
    const auto add = [&]<typename T>(const auto& values) {
        for (const auto& [name, value] : values) {
            if (!record.attributes.find<T>(name)) {
                record.attributes.add<T>(name, value);
            }
        }
        record.attributes.sort<T>();
    };
    add.operator()<std::int64_t>(event.attributes.int64);
    add.operator()<double>(event.attributes.real);
    add.operator()<std::string_view>(event.attributes.string);
    return record;
}

class Judge {
  public:
    Judge(const std::string& text, const fuzz::Script& script)
        : document({}, text), rehearsal(document.configs, context) {
        for (const reference::Event& each : script.events) {
            if (auto record = recordOf(each)) {
                events.events.push_back(std::move(*record));
            }
        }
        // Draws on both sides of what documents compare them with.
        for (std::size_t event = 0; event <= events.events.size(); ++event) {
            constexpr double kDraws[] = {0, 0.04, 0.3, 0.5, 0.7, 0.999};
            auto& draws = events.draws.emplace_back();
            for (std::size_t place = 0; place < 8; ++place) {
                draws.push_back(kDraws[(script.seed + 7 * event + 5 * place * place) % 6]);
            }
        }
    }

    void judgeAll() {
        constexpr std::size_t kMost = 4;  // machines and, of each, four times as many transitions are played
        for (std::size_t index = 0; index < std::min(document.configs.size(), kMost); ++index) {
            Effort effort{20'000'000};
            const Surroundings surroundings{fuzz::registry(), catalogue, context, effort};
            Behaviour machine(document.configs[index], surroundings);
            const std::size_t transitions = std::min(machine.config().transitions.size(), 4 * kMost);
            for (std::size_t each = 0; each < transitions; ++each) {
                if (machine.fires(each) == Answer::Yes) {
                    expect(play(index, machine, machine.routeToFire(each)).firesAtTheEnd(each), "a way leads nowhere");
                }
            }
            const Load load = worstLoad(machine);
            if (load.isDecided) {
                judge(play(index, machine, load.route), machine, load);
                if (load.distance) {
                    judge(play(index, machine, load.distanceRoute), machine, load);
                }
            }
            judge(rehearsal.play(index, events), machine, load);
        }
    }

  private:
    static void expect(bool holds, const std::string& otherwise) {
        if (!holds) {
            fuzz::fail(otherwise);
        }
    }

    Witness play(std::size_t index, Behaviour& machine, const Route& route) {
        const auto plan = machine.planFor(route);
        expect(plan.has_value(), "there is no plan for a way");
        return rehearsal.play(index, *plan);
    }

    static void judge(const Witness& seen, Behaviour& machine, const Load& load) {
        for (const Witness::Trial& each : seen.trials) {
            expect(!each.fired || machine.fires(each.transition) != Answer::No, "a dead transition fires");
        }
        const auto& asked = seen.triggers;
        expect(!load.isDecided || asked.size() <= load.most.value_or(asked.size()),
               "there are more triggers than the most");
        for (std::size_t next = 1; load.isDecided && next < asked.size(); ++next) {
            expect(load.distance && asked[next] - asked[next - 1] >= *load.distance,
                   "two triggers are nearer to each other");
        }
    }

    static const Catalogue catalogue;
    const AttributeSet context;
    const DocumentModel document;
    Rehearsal rehearsal;
    Plan events;
};

const Catalogue Judge::catalogue = Catalogue::builtIn();

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto previous = host::setLogSink([](int, std::string_view, std::string_view) {});
    constexpr std::ptrdiff_t kMostBrackets = 999;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string document(input.substr(0, input.find('\0')));
    if (std::ranges::count_if(document, [](char each) { return each == '[' || each == '{'; }) > kMostBrackets ||
        !Brenta::OS::VIG::VIGResponseParser().parseFromString(document, fuzz::registry()).value) {
        return -1;
    }
    Judge(document, fuzz::Script(document, input.substr(std::min(size, document.size() + 1)))).judgeAll();
    return 0;
}
