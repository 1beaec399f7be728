#include "tools/vig/test/Expectation.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "tools/vig/PriorityName.h"
#include "tools/vig/Text.h"

namespace tool {

namespace {

constexpr std::string_view kAvailabilityLine = "ViG device config is available now.";
constexpr std::size_t kMostRows = 20;

using Fields = std::vector<std::pair<std::string, std::string>>;

// An expected and an actual thing that stand side by side; one of them may be missing.
struct Row {
    std::optional<std::size_t> expected;
    std::optional<std::size_t> actual;
    bool equal;
};

// The cheapest way to make the actual list of the expected one, in order: each thing missing, unexpected or different
// costs the same.
std::vector<Row> aligned(std::size_t expectedCount, std::size_t actualCount, const auto& equal) {
    std::vector<Row> rows;
    std::size_t begin = 0;  // of what differs: in a test that passes nothing does
    for (; begin < std::min(expectedCount, actualCount) && equal(begin, begin); ++begin) {
        rows.push_back({begin, begin, true});
    }
    const std::size_t width = actualCount - begin + 1;
    // Of the rest of both lists, from each place.
    std::vector<std::uint32_t> costs((expectedCount - begin + 1) * width);
    const auto cost = [&](std::size_t i, std::size_t j) -> std::uint32_t& {
        return costs[(i - begin) * width + (j - begin)];
    };
    for (std::size_t i = expectedCount + 1; i-- > begin;) {
        for (std::size_t j = actualCount + 1; j-- > begin;) {
            if (i == expectedCount || j == actualCount) {
                cost(i, j) = static_cast<std::uint32_t>(expectedCount - i + actualCount - j);
            } else {
                cost(i, j) =
                    std::min({cost(i + 1, j + 1) + (equal(i, j) ? 0 : 1), cost(i + 1, j) + 1, cost(i, j + 1) + 1});
            }
        }
    }
    for (std::size_t i = begin, j = begin; i < expectedCount || j < actualCount;) {
        const bool both = i < expectedCount && j < actualCount;
        const bool same = both && equal(i, j);
        if (both && cost(i, j) == cost(i + 1, j + 1) + (same ? 0 : 1)) {
            rows.push_back({i++, j++, same});
        } else if (i < expectedCount && cost(i, j) == cost(i + 1, j) + 1) {
            rows.push_back({i++, std::nullopt, false});
        } else {
            rows.push_back({std::nullopt, j++, false});
        }
    }
    return rows;
}

std::string list(const std::vector<std::string>& entries) {
    std::string text;
    for (const std::string& entry : entries) {
        text += (text.empty() ? "" : ", ") + quoted(entry);
    }
    return "[" + text + "]";
}

// What of the expectation the trigger does not meet.
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
    add("name", trigger.name, quoted);
    add("process", trigger.process, quoted);
    add("config", trigger.config, number);
    add("event", trigger.event, number);
    add("metadata", trigger.metadata, list);
    if (!trigger.metadataContains.empty()) {
        fields.emplace_back("metadata_contains", list(trigger.metadataContains));
    }
    return fields;
}

Fields fieldsOf(const TriggerLine& trigger) {
    return {{"name", quoted(trigger.name)},
            {"process", trigger.processName ? quoted(*trigger.processName) : "none"},
            {"config", std::to_string(trigger.machine.configId)},
            {"event", std::to_string(trigger.event)},
            {"metadata", list(trigger.metadata)}};
}

// A message says little without its priority.
ExpectedLog unmet(ExpectedLog expected, const Observed::Log& /*actual*/) {
    return expected;
}

bool isMet(const ExpectedTrigger& expected, const TriggerLine& actual) {
    return fieldsOf(unmet(expected, actual)).empty();
}

bool isMet(const ExpectedLog& expected, const Observed::Log& actual) {
    return expected.message == actual.message && (!expected.priority || *expected.priority == actual.priority);
}

Fields fieldsOf(const ExpectedLog& log) {
    Fields fields = {{"message", quoted(log.message)}};
    if (log.priority) {
        fields.emplace_back("priority", *log.priority);
    }
    return fields;
}

Fields fieldsOf(const Observed::Log& log) {
    return {{"message", quoted(log.message)}, {"priority", log.priority}, {"event", std::to_string(log.event)}};
}

std::string shown(const std::pair<std::string, std::string>& field) {
    return printable(field.first + " " + field.second);
}

std::string line(char mark, const Fields& fields) {
    std::string text = fmt::format("    {}", mark);
    for (const auto& field : fields) {
        text += "  " + shown(field);
    }
    return text;
}

// The fields given, as expected and as they are, one below the other; and which event it was.
void addPair(std::vector<std::string>& lines, const Fields& expected, const Fields& actual) {
    const auto find = [](const Fields& fields, std::string_view name) {
        return std::ranges::find(fields, name, [](const auto& each) -> std::string_view { return each.first; });
    };
    const bool hasEvent = find(expected, "event") != expected.end();
    std::string expectedText = "    -";
    std::string actualText = "    +";
    for (const auto& field : expected) {
        const std::string left = shown(field);
        const std::string right = shown(*find(actual, field.first == "metadata_contains" ? "metadata" : field.first));
        const std::size_t width = std::max(left.size(), right.size());
        const bool isLast = &field == &expected.back();
        expectedText += fmt::format("  {:<{}}", left, isLast ? 0 : width);
        actualText += fmt::format("  {:<{}}", right, isLast && hasEvent ? 0 : width);
    }
    lines.push_back(expectedText);
    lines.push_back(hasEvent ? actualText : actualText + "  (event " + find(actual, "event")->second + ")");
}

// Compares two lists and tells where they differ. Returns the first row that is not equal.
std::optional<Row> compareLists(std::vector<std::string>& lines, std::string_view what, const auto& expected,
                                const auto& actual) {
    const auto equal = [&](std::size_t i, std::size_t j) { return isMet(expected[i], actual[j]); };
    const std::vector<Row> rows = aligned(expected.size(), actual.size(), equal);
    const auto first = std::ranges::find(rows, false, &Row::equal);
    if (first == rows.end()) {
        return std::nullopt;
    }
    lines.push_back(fmt::format("  {}: expected {} (-), got {} (+)", what, expected.size(), actual.size()));
    if (const auto same = std::ranges::count(rows, true, &Row::equal); same > 0) {
        lines.push_back(fmt::format("      {} as expected", same));
    }
    std::size_t shownRows = 0;
    for (const Row& row : rows) {
        if (row.equal || ++shownRows > kMostRows) {
            continue;
        }
        if (row.expected && row.actual) {
            const auto& differing = actual[*row.actual];
            addPair(lines, fieldsOf(unmet(expected[*row.expected], differing)), fieldsOf(differing));
        } else if (row.expected) {
            lines.push_back(line('-', fieldsOf(expected[*row.expected])));
        } else {
            lines.push_back(line('+', fieldsOf(actual[*row.actual])));
        }
    }
    if (shownRows > kMostRows) {
        lines.push_back(fmt::format("      and {} more", shownRows - kMostRows));
    }
    return *first;
}

void compareTriggers(const Expectation& expected, const Observed& actual, Mismatch& mismatch) {
    const auto row = compareLists(mismatch.lines, "triggers", expected.triggers, actual.triggers);
    if (row && row->actual) {
        const TriggerLine& trigger = actual.triggers[*row->actual];
        mismatch.first = Divergence{Divergence::Kind::Event, trigger.event, trigger.machine.index};
    } else if (row) {
        mismatch.first = Divergence{Divergence::Kind::MissingTrigger};
        mismatch.first->config = expected.triggers[*row->expected].config;
    }
}

void compareLogs(const Expectation& expected, const Observed& actual, Mismatch& mismatch) {
    const auto row = compareLists(mismatch.lines, "log", expected.logs, actual.logs);
    if (!row || mismatch.first) {
        return;
    }
    mismatch.first = row->actual ? Divergence{Divergence::Kind::Event, actual.logs[*row->actual].event}
                                 : Divergence{Divergence::Kind::MissingLog};
}

void compareStates(const Expectation& expected, const Observed& actual, Mismatch& mismatch) {
    for (const ExpectedState& each : expected.states) {
        const auto found = std::ranges::find(actual.states, each.config, &Observed::State::config);
        if (found == actual.states.end()) {
            mismatch.lines.push_back(fmt::format("  state of configuration {}: there is none", each.config));
        } else if (found->state != each.state) {
            mismatch.lines.push_back(printable(fmt::format("  state of configuration {}: expected {}, got {}",
                                                           each.config, quoted(each.state), quoted(found->state))));
            if (!mismatch.first) {
                mismatch.first = Divergence{Divergence::Kind::State};
                mismatch.first->config = each.config;
                mismatch.first->state = each.state;
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
        lines.push_back(fmt::format("    +  config {}  {} -> {}  (event {})", each.config, printable(each.from),
                                    printable(each.to), each.event));
    }
    const auto shownMoves = static_cast<std::int64_t>(actual.firstMoves.size());
    if (actual.moves > shownMoves) {
        lines.push_back(fmt::format("      and {} more", actual.moves - shownMoves));
    }
}

}  // namespace

void Observed::log(const LogLine& line) {
    if (line.message != kAvailabilityLine) {
        logs.push_back({line.event, std::string(priorityName(line.priority)), std::string(line.message)});
    }
}

void Observed::move(const MoveLine& line) {
    ++moves;
    if (firstMoves.size() < kMostRows) {
        firstMoves.push_back({line.event, line.machine.configId, std::string(line.from), std::string(line.to)});
    }
}

void Observed::end(const Summary& summary) {
    for (const Summary::Machine& machine : summary.machines) {
        states.push_back({machine.name.configId, std::string(machine.state)});
    }
}

Mismatch compare(const Expectation& expected, const Observed& actual) {
    Mismatch mismatch;
    compareTriggers(expected, actual, mismatch);
    compareLogs(expected, actual, mismatch);
    compareStates(expected, actual, mismatch);
    compareMoves(expected, actual, mismatch.lines);
    return mismatch;
}

}  // namespace tool
