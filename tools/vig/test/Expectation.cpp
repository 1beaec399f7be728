// A test expects two lists, of triggers and of log lines, each of them whole and in order, and a few single facts. Were
// the lists compared place by place, then after one missing trigger nothing would be as expected. So a list that
// differs is aligned with what happened, as texts are by a diff: of all ways to make one of the other, the one with the
// fewest things that are missing, unexpected or different. A thing is as expected if it has all the fields that the
// test names; of one that is not, only the fields that differ are shown, as expected and as they are. The first thing
// that is not as expected is what the failure is explained by.

#include "tools/vig/test/Expectation.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "tools/vig/words/PriorityName.h"
#include "tools/vig/words/Text.h"
#include "vig/ResponseProperty.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostRows = 20;
constexpr std::size_t kMostUnexpected = 1000;  // of a list that are kept beside as many as are expected
constexpr std::size_t kMostShownOfField = 500;
constexpr std::size_t kMostShownBefore = 40;  // what differs, of a longer field

using Field = std::pair<std::string, std::string>;
using Fields = std::vector<Field>;

// An expected and an actual thing stand side by side in it; one of them may be missing.
struct Row {
    std::optional<std::size_t> expected;
    std::optional<std::size_t> actual;
    bool equal;
};

// The cheapest ways to make the rest of one list of the rest of another, for a part of both of them: each thing
// missing, unexpected or different costs the same.
class CostTable {
  public:
    static constexpr std::size_t kMostAtOnce = 256;

    // The part begins with both rests. Where it ends before a list does, what has no counterpart in it may have one in
    // the next.
    CostTable(std::size_t expectedRest, std::size_t actualRest, const auto& equal)
        : height(std::min(expectedRest, kMostAtOnce)),
          width(std::min(actualRest, kMostAtOnce)),
          isWhole(height == expectedRest && width == actualRest),
          costs((height + 1) * (width + 1)) {
        for (std::size_t i = height + 1; i-- > 0;) {
            for (std::size_t j = width + 1; j-- > 0;) {
                if (i < height && j < width) {
                    at(i, j) = std::min({at(i + 1, j + 1) + (equal(i, j) ? 0 : 1), at(i + 1, j) + 1, at(i, j + 1) + 1});
                } else if ((i < height || height == expectedRest) && (j < width || width == actualRest)) {
                    at(i, j) = static_cast<std::uint32_t>(height - i + width - j);
                }
            }
        }
    }

    std::uint32_t& at(std::size_t expected, std::size_t actual) { return costs[expected * (width + 1) + actual]; }

    const std::size_t height;
    const std::size_t width;
    const bool isWhole;

  private:
    std::vector<std::uint32_t> costs;
};

// Finds the cheapest way to make the actual list of the expected one, in order. For all of two long lists, the table
// would have the size of their product; so one part is aligned after the other.
std::vector<Row> aligned(std::size_t expectedCount, std::size_t actualCount, const auto& equal) {
    std::vector<Row> rows;
    for (std::size_t i = 0, j = 0; i < expectedCount || j < actualCount;) {
        if (i < expectedCount && j < actualCount && equal(i, j)) {  // in a test that passes, always
            rows.push_back({i++, j++, true});
            continue;
        }
        CostTable table(expectedCount - i, actualCount - j,
                        [&](std::size_t y, std::size_t x) { return equal(i + y, j + x); });
        const std::size_t most = table.isWhole ? table.height + table.width : CostTable::kMostAtOnce / 2;
        std::size_t y = 0;
        std::size_t x = 0;
        for (std::size_t step = 0; step < most && (y < table.height || x < table.width); ++step) {
            const bool both = y < table.height && x < table.width;
            const bool same = both && equal(i + y, j + x);
            if (both && table.at(y, x) == table.at(y + 1, x + 1) + (same ? 0 : 1)) {
                rows.push_back({i + y++, j + x++, same});
            } else if (y < table.height && table.at(y, x) == table.at(y + 1, x) + 1) {
                rows.push_back({i + y++, std::nullopt, false});
            } else {
                rows.push_back({std::nullopt, j + x++, false});
            }
        }
        i += y;
        j += x;
    }
    return rows;
}

std::string list(const std::vector<std::string>& entries) {
    return "[" + joined(entries, ", ", inQuotes) + "]";
}

// Returns those fields that the trigger does not have like that.
ExpectedTrigger unmet(ExpectedTrigger expected, const TriggerLine& actual) {
    const auto drop = [](auto& field, const auto& value) {
        if (field && *field == value) {
            field.reset();
        }
    };
    drop(expected.name, actual.name);
    drop(expected.process, actual.processName);
    drop(expected.config, actual.machine.configId);
    drop(expected.event, static_cast<std::int64_t>(actual.event));
    drop(expected.metadata, actual.metadata);
    std::erase_if(expected.metadataContains, [&](const std::string& entry) {
        return std::ranges::find(actual.metadata, entry) != actual.metadata.end();
    });
    return expected;
}

Fields fieldsOf(const ExpectedTrigger& trigger) {
    Fields fields;
    const auto add = [&](const char* name, const auto& value, const auto& render) {
        if (value) {
            fields.emplace_back(name, render(*value));
        }
    };
    const auto number = [](std::int64_t value) { return std::to_string(value); };
    add("name", trigger.name, inQuotes);
    add("process", trigger.process, inQuotes);
    add("config", trigger.config, number);
    add("event", trigger.event, number);
    add("metadata", trigger.metadata, list);
    if (!trigger.metadataContains.empty()) {
        fields.emplace_back("metadata_contains", list(trigger.metadataContains));
    }
    return fields;
}

Fields fieldsOf(const TriggerLine& trigger) {
    return {{"name", inQuotes(trigger.name)},
            {"process", trigger.processName ? inQuotes(*trigger.processName) : "none"},
            {"config", std::to_string(trigger.machine.configId)},
            {"event", std::to_string(trigger.event)},
            {"metadata", list(trigger.metadata)}};
}

// A message says little without its priority.
const ExpectedLog& unmet(const ExpectedLog& expected, const Observed::Log& /*actual*/) {
    return expected;
}

bool isMet(const ExpectedTrigger& expected, const TriggerLine& actual) {
    return fieldsOf(unmet(expected, actual)).empty();
}

bool isMet(const ExpectedLog& expected, std::string_view message, std::string_view priority) {
    return expected.message == message && (!expected.priority || *expected.priority == priority);
}

bool isMet(const ExpectedLog& expected, const Observed::Log& actual) {
    return isMet(expected, actual.message, actual.priority);
}

Fields fieldsOf(const ExpectedLog& log) {
    Fields fields = {{"message", inQuotes(log.message)}};
    if (log.priority) {
        fields.emplace_back("priority", *log.priority);
    }
    return fields;
}

Fields fieldsOf(const Observed::Log& log) {
    return {{"message", inQuotes(log.message)}, {"priority", log.priority}, {"event", std::to_string(log.event)}};
}

std::size_t commonBeginning(const Field& left, const Field& right) {
    return static_cast<std::size_t>(std::ranges::mismatch(left.second, right.second).in1 - left.second.begin());
}

// A text of the field may have any length. What it has in common with another one, at the beginning, is no news.
std::string shown(const Field& field, std::size_t inCommon) {
    const std::string_view text = field.second;
    const bool isCut = text.size() > kMostShownOfField && inCommon > kMostShownBefore;
    const std::size_t begin = isCut ? characterStart(text, inCommon - kMostShownBefore) : 0;
    return field.first + (isCut ? " …" : " ") + printable(shortened(text.substr(begin), kMostShownOfField));
}

std::string line(char mark, const Fields& fields) {
    std::string text = fmt::format("    {}", mark);
    for (const auto& field : fields) {
        text += "  " + shown(field, 0);
    }
    return text;
}

// Adds the fields given, as expected and as they are, one below the other, and which event it was.
void addPair(std::vector<std::string>& lines, const Fields& expected, const Fields& actual) {
    const auto find = [](const Fields& fields, std::string_view name) {
        return std::ranges::find(fields, name, [](const auto& each) -> std::string_view { return each.first; });
    };
    const bool hasEvent = find(expected, "event") != expected.end();
    std::string expectedText = "    -";
    std::string actualText = "    +";
    for (const auto& field : expected) {
        const Field& other = *find(actual, field.first == "metadata_contains" ? "metadata" : field.first);
        const std::size_t inCommon = commonBeginning(field, other);
        const std::string left = shown(field, inCommon);
        const std::string right = shown(other, inCommon);
        const std::size_t width = std::max(charactersIn(left), charactersIn(right));
        const bool isLast = &field == &expected.back();
        expectedText += fmt::format("  {:<{}}", left, isLast ? 0 : width);
        actualText += fmt::format("  {:<{}}", right, isLast && hasEvent ? 0 : width);
    }
    lines.push_back(expectedText);
    lines.push_back(hasEvent ? actualText : actualText + "  (event " + find(actual, "event")->second + ")");
}

// Compares two lists, the second of which had `count` elements, and tells where they differ. Returns the first row that
// is not equal.
std::optional<Row> compareLists(std::vector<std::string>& lines, std::string_view what, const auto& expected,
                                const auto& actual, std::uint64_t count) {
    const auto equal = [&](std::size_t i, std::size_t j) { return isMet(expected[i], actual[j]); };
    const std::vector<Row> rows = aligned(expected.size(), actual.size(), equal);
    const auto first = std::ranges::find(rows, false, &Row::equal);
    if (first == rows.end()) {
        return std::nullopt;
    }
    lines.push_back(fmt::format("  {}: expected {} (-), got {} (+)", what, expected.size(), count));
    if (const auto same = std::ranges::count(rows, true, &Row::equal); same > 0) {
        lines.push_back(fmt::format("      {} as expected", same));
    }
    std::uint64_t differing = 0;
    for (const Row& row : rows) {
        if (row.equal || ++differing > kMostRows) {
            continue;
        }
        if (row.expected && row.actual) {
            const auto& other = actual[*row.actual];
            addPair(lines, fieldsOf(unmet(expected[*row.expected], other)), fieldsOf(other));
        } else if (row.expected) {
            lines.push_back(line('-', fieldsOf(expected[*row.expected])));
        } else {
            lines.push_back(line('+', fieldsOf(actual[*row.actual])));
        }
    }
    differing += count - actual.size();
    if (differing > kMostRows) {
        lines.push_back(fmt::format("      and {} more", differing - kMostRows));
    }
    return *first;
}

void compareTriggers(const Expectation& expected, const Observed& actual, Mismatch& mismatch) {
    const auto row = compareLists(mismatch.lines, "triggers", expected.triggers, actual.triggers, actual.triggerCount);
    if (row && row->actual) {
        const TriggerLine& trigger = actual.triggers[*row->actual];
        mismatch.first = Divergence{Divergence::Kind::Event, trigger.event, trigger.machine.index};
    } else if (row) {
        mismatch.first =
            Divergence{.kind = Divergence::Kind::MissingTrigger, .config = expected.triggers[*row->expected].config};
    }
}

void compareLogs(const Expectation& expected, const Observed& actual, Mismatch& mismatch) {
    const auto row = compareLists(mismatch.lines, "log", expected.logs, actual.logs, actual.logCount);
    if (row && !mismatch.first) {
        mismatch.first = row->actual ? Divergence{Divergence::Kind::Event, actual.logs[*row->actual].event,
                                                  actual.logs[*row->actual].machine}
                                     : Divergence{Divergence::Kind::MissingLog};
    }
}

std::string shownMove(const Observed::Move& move) {
    return fmt::format("{} -> {}  (event {})", shownName(move.from), shownName(move.to), move.event);
}

void addMoves(std::vector<std::string>& lines, const Observed::State& state) {
    if (state.moves == 0) {
        lines.push_back("      its machine has not moved");
    }
    if (state.moves > state.lastMoves.size()) {
        lines.push_back(fmt::format("      {} moves before", state.moves - state.lastMoves.size()));
    }
    for (const Observed::Move& each : state.lastMoves) {
        lines.push_back("    +  " + shownMove(each));
    }
}

void compareStates(const Expectation& expected, const Observed& actual, Mismatch& mismatch) {
    for (const auto& [config, name] : expected.states) {
        const auto found = actual.states.find(config);
        if (found == actual.states.end()) {
            mismatch.lines.push_back(fmt::format("  state of configuration {}: there is none", config));
        } else if (found->second.name != name) {
            const Field expectedState = {"expected", inQuotes(name)};
            const Field state = {"got", inQuotes(found->second.name)};
            const std::size_t inCommon = commonBeginning(expectedState, state);
            mismatch.lines.push_back(fmt::format("  state of configuration {}: {}, {}", config,
                                                 shown(expectedState, inCommon), shown(state, inCommon)));
            addMoves(mismatch.lines, found->second);
            if (!mismatch.first) {
                mismatch.first = Divergence{.kind = Divergence::Kind::State, .config = config, .state = name};
                if (const auto& moves = found->second.lastMoves; !moves.empty()) {
                    mismatch.first->event = moves.back().event;
                    mismatch.first->machine = moves.back().machine.index;
                }
            }
        }
    }
}

void compareMoves(const Expectation& expected, const Observed& actual, std::vector<std::string>& lines) {
    if (!expected.moves || *expected.moves == actual.moves) {
        return;
    }
    lines.push_back(fmt::format("  moves: expected {}, got {}", *expected.moves, actual.moves));
    for (const Observed::Move& each : actual.firstMoves) {
        lines.push_back(fmt::format("    +  config {}  {}", each.machine.configId, shownMove(each)));
    }
    const auto shownMoves = static_cast<std::int64_t>(actual.firstMoves.size());
    if (actual.moves > shownMoves) {
        lines.push_back(fmt::format("      and {} more", actual.moves - shownMoves));
    }
}

}  // namespace

void Observed::trigger(const TriggerLine& line) {
    ++triggerCount;
    if (triggers.size() < expectation.triggers.size() + kMostUnexpected) {
        triggers.push_back(line);
    }
}

void Observed::log(const LogLine& line) {
    if (line.message == kListeningMessage) {
        return;
    }
    ++logCount;
    if (logs.size() < expectation.logs.size() + kMostUnexpected) {
        logs.push_back({line.event, std::string(priorityName(line.priority)), std::string(line.message), line.machine});
    }
}

void Observed::move(const MoveLine& line) {
    ++moves;
    const Move move = {line.event, line.machine, std::string(line.from), std::string(line.to)};
    if (firstMoves.size() < kMostRows) {
        firstMoves.push_back(move);
    }
    State& state = machines[line.machine.index];
    ++state.moves;
    state.lastMoves.push_back(move);
    if (state.lastMoves.size() > kMostRows) {
        state.lastMoves.pop_front();
    }
}

void Observed::end(const Summary& summary) {
    for (const Summary::Machine& machine : summary.machines) {
        State& state = machines[machine.name.index];
        state.name = machine.state;
        states.emplace(machine.name.configId, state);
    }
}

void ExpectationCheck::begin(const Expectation& expected) {
    *this = ExpectationCheck();
    expectation = &expected;
    hasFailed = false;
}

void ExpectationCheck::trigger(const TriggerLine& line) {
    hasFailed = hasFailed || triggers == expectation->triggers.size() || !isMet(expectation->triggers[triggers], line);
    ++triggers;
}

void ExpectationCheck::log(const LogLine& line) {
    if (line.message == kListeningMessage) {
        return;
    }
    hasFailed = hasFailed || logs == expectation->logs.size() ||
                !isMet(expectation->logs[logs], line.message, priorityName(line.priority));
    ++logs;
}

void ExpectationCheck::move(const MoveLine& /*line*/) {
    ++moves;
    hasFailed = hasFailed || moves > expectation->moves.value_or(moves);
}

void ExpectationCheck::end(const Summary& summary) {
    const auto isReached = [&](const ExpectedState& expected) {
        const auto found = std::ranges::find(summary.machines, expected.config,
                                             [](const Summary::Machine& each) { return each.name.configId; });
        return found != summary.machines.end() && found->state == expected.state;
    };
    hasFailed = hasFailed || triggers != expectation->triggers.size() || logs != expectation->logs.size() ||
                moves != expectation->moves.value_or(moves) || !std::ranges::all_of(expectation->states, isReached);
}

Mismatch compare(const Expectation& expected, const Observed& actual) {
    Mismatch mismatch;
    compareTriggers(expected, actual, mismatch);
    compareLogs(expected, actual, mismatch);
    compareStates(expected, actual, mismatch);
    compareMoves(expected, actual, mismatch.lines);
    return mismatch;
}

}  // namespace Brenta::OS::VIG::Tool
