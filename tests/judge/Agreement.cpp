#include <fmt/core.h>
#include <host/Host.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/Documents.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/events/LineReader.h"
#include "tools/vig/events/RecordParser.h"
#include "tools/vig/run/Draws.h"
#include "tools/vig/run/PlatformServices.h"
#include "vig/parsers/VIGResponseParser.h"

// agreement OLD NEW VALUES EVENTS CONTEXT: offers so many random events to each two machines of the rule documents that
// have the same id, or to one without a counterpart and one that does nothing; fewer if they take too long. VALUES are
// event records, all with the same attributes; an event has some of these, each with its value in any of the records.
// While an event is offered, the k-th draw is the same for both. Prints for each pair its id, the number of events, and
// after how many at least they were seen to differ: events that a record holds, and then events of any kind; -1 if they
// were not.

namespace {

using namespace Brenta::OS::VIG;
using namespace Brenta::OS::VIG::Tool;
using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::RulesEngine::FiniteStateMachine;

std::vector<EventRecord> recordsIn(const char* file) {
    std::vector<EventRecord> records;
    std::istringstream lines(support::textOf(file));
    RecordParser parser;
    for (std::string line; std::getline(lines, line);) {
        const std::string padded = line + std::string(LineReader::PADDING, '\n');
        const EventRecord* const record = parser.parse(std::string_view(padded).substr(0, line.size()));
        if (record == nullptr) {
            std::abort();
        }
        records.push_back(*record);
    }
    return records;
}

// What a machine asks the trigger service for, and what it logs.
struct Done {
    std::vector<android::String16> requests;
    std::string lines;

    bool operator==(const Done&) const = default;
};

// It collects that.
class Seen final : public PlatformServices::Receiver {
  public:
    void onLog(int priority, std::string_view /*tag*/, std::string_view message) override {
        done.lines += fmt::format("{}:{}\n", priority, message);
    }
    void onTrigger(const vendor::orlan::velora::TriggerContext& request) override {
        done.requests.push_back(request.triggerName);
        std::ranges::transform(*request.metadata, std::back_inserter(done.requests),
                               [](const auto& each) { return *each; });
    }

    // Returns what there was since the last call.
    Done take() { return std::exchange(done, {}); }

  private:
    Done done;
};

// It makes random events and draws of what records have.
class Source {
  public:
    explicit Source(std::vector<EventRecord> values) : records(std::move(values)) {}

    std::size_t below(std::size_t bound) { return random() % bound; }

    // Only an event that no record holds may have an infinity or NaN.
    EventRecord event(bool recordable) {
        EventRecord event{any().type, {}, 1, {}};
        const auto add = [&]<typename T>(const auto& changed) {
            records.front().attributes.forEach<T>([&](auto name, auto) {
                if (below(5) != 0) {
                    event.attributes.add<T>(name, changed(*any().attributes.find<T>(name)));
                }
            });
        };
        constexpr double kInfinity = std::numeric_limits<double>::infinity();
        constexpr double kOthers[] = {kInfinity, -kInfinity, std::numeric_limits<double>::quiet_NaN()};
        add.operator()<std::uint64_t>(std::identity());
        add.operator()<std::int64_t>(std::identity());
        add.operator()<std::string_view>(std::identity());
        add.operator()<double>([&](double value) { return recordable || below(4) != 0 ? value : kOthers[below(3)]; });
        return event;
    }

    double draw() {
        double found = std::uniform_real_distribution<>()(random);
        any().attributes.forEach<double>(
            [&](auto, double value) { found = Draws::canBe(value) && below(2) == 0 ? value : found; });
        return found;
    }

  private:
    const EventRecord& any() { return records[below(records.size())]; }

    const std::vector<EventRecord> records;
    std::mt19937_64 random;
};

// It has the machines of both documents, which draw the same.
class Pairs {
  public:
    Pairs(const char* const* documents, std::vector<EventRecord> values, AttributeSet contextAttributes)
        : source(std::move(values)), context(std::move(contextAttributes)), services(seen) {
        for (std::size_t which = 0; which < 2; ++which) {
            configs[which] = VIGResponseParser().parseFromString(support::textOf(documents[which]), registry).value;
            for (const auto& config : *configs[which]) {
                FiniteStateMachine* const machine = config->getConfigPayload()->getFiniteStateMachine();
                machine->setContext(std::make_unique<RecordedContext>(context));
                pairs.try_emplace(config->getConfigId(), Pair{&idle, &idle}).first->second[which] = machine;
            }
        }
        seen.take();
    }

    void compareAll(std::size_t events) {
        for (const auto& [id, pair] : pairs) {
            offered = 0;
            const std::int64_t recordable = leastDifference(pair, events / 2, true);
            const std::int64_t any = recordable == -1 ? leastDifference(pair, events, false) : recordable;
            fmt::print("{} {} {} {}\n", id, offered, recordable, any);
        }
    }

  private:
    using Pair = std::array<FiniteStateMachine*, 2>;

    // Starts the machines again and again, for some events each time, until there have been so many events. There
    // cannot be so many where an endless circle moves a thousand times by each.
    std::int64_t leastDifference(const Pair& pair, std::size_t events, bool recordable) {
        const std::clock_t end = std::clock() + 2 * CLOCKS_PER_SEC;
        std::int64_t least = -1;
        while (offered < events && std::clock() < end) {
            const auto length = static_cast<std::int64_t>(1 + source.below(12));
            bool same = doTheSame(pair, [](auto& machine) { machine.enterState(machine.getStateByName("start")); });
            std::int64_t event = 0;
            for (; same && event < length; ++event, ++offered) {
                const EventRecord record = source.event(recordable);
                same = doTheSame(pair, [&](auto& machine) { offer(machine, record); });
            }
            least = same || (least != -1 && least < event) ? least : event;
        }
        return least;
    }

    static void offer(FiniteStateMachine& machine, const EventRecord& record) {
        if (record.type == EventType::Timeout) {
            machine.onEvent(RecordedTimeoutEvent(record.attributes, *record.timeoutId));
        } else {
            machine.onEvent(RecordedEvent(record.attributes, record.type));
        }
    }

    bool doTheSame(const Pair& pair, const auto& act) {
        Done done[2];
        draws.clear();
        for (std::size_t which = 0; which < 2; ++which) {
            drawn = 0;
            act(*pair[which]);
            done[which] = seen.take();
        }
        return done[0] == done[1];
    }

    double draw() {
        if (drawn == draws.size()) {
            draws.push_back(source.draw());
        }
        return draws[drawn++];
    }

    Source source;
    const AttributeSet context;
    Seen seen;
    PlatformServices services;
    std::size_t offered = 0;    // events to a pair
    std::vector<double> draws;  // since the event was offered
    std::size_t drawn = 0;      // so many of them by the machine that is at work
    const VIGParserConfig registry = withDraws(libraryRegistry(), [this] { return draw(); });
    std::unique_ptr<std::vector<std::unique_ptr<VIGConfig>>> configs[2];
    FiniteStateMachine idle;
    std::map<std::int64_t, Pair> pairs;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 6) {
        return 2;
    }
    const AttributeSet context = recordsIn(argv[5]).front().attributes;
    Pairs(argv + 1, recordsIn(argv[3]), context).compareAll(std::stoul(argv[4]));
    return 0;
}
