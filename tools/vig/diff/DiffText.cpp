#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>

#include "tools/vig/diff/DiffWriters.h"
#include "tools/vig/diff/MachinePairs.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostLinesOnTop = 32;     // so that they are one screen
constexpr std::size_t kMostEventsShown = 12;    // the last ones of a recording
constexpr std::size_t kMostIdsNamed = 12;       // of configurations of which there is nothing else to say
constexpr std::size_t kMostLinesOfEither = 40;  // of what a machine did; a circle makes a thousand
constexpr std::size_t kWidestColumn = 72;       // wider ones stand one under the other

std::string counted(std::size_t number, const std::string& word) {
    return fmt::format("{} {}{}", number, word, number == 1 ? "" : "s");
}

std::string shown(const Value& value) {
    if (const auto* const text = std::get_if<std::string>(&value)) {
        return shownQuoted(*text);
    }
    const auto* const integer = std::get_if<std::int64_t>(&value);
    return integer != nullptr ? fmt::format("{}", *integer) : fmt::format("{}", std::get<double>(value));
}

// Integers have neighbours, so that each bound can be one of the values.
std::optional<Scale::Bound> included(const std::optional<Scale::Bound>& bound, int inwards) {
    if (bound && !bound->isIncluded && std::holds_alternative<std::int64_t>(bound->value)) {
        return Scale::Bound{std::get<std::int64_t>(bound->value) + inwards, true};
    }
    return bound;
}

std::string wordsFor(const Extent& extent) {
    const std::string name = shownName(extent.name);
    if (!extent.example) {
        return "no " + name;
    }
    const auto least = included(extent.least, 1);
    const auto most = included(extent.most, -1);
    if (least && most && least->isIncluded && most->isIncluded && least->value == most->value) {
        return name + " " + shown(least->value);
    }
    if (std::holds_alternative<std::string>(*extent.example) || (!least && !most)) {
        return name + " such as " + shown(*extent.example);
    }
    const auto isInfinite = [](const Value& value) {
        const auto* const number = std::get_if<double>(&value);
        return number != nullptr && std::isinf(*number);
    };
    const bool hasLeast = least && !isInfinite(least->value);
    const bool hasMost = most && !isInfinite(most->value);
    if (hasLeast && hasMost) {
        return fmt::format("{} {}{} to {}{}", name, least->isIncluded ? "" : "above ", shown(least->value),
                           most->isIncluded ? "" : "below ", shown(most->value));
    }
    if (hasLeast) {
        return fmt::format("{} {}{}{}", name, least->isIncluded ? "" : "above ", shown(least->value),
                           least->isIncluded ? " or more" : "");
    }
    return fmt::format("{} {}{}{}", name, most->isIncluded ? "" : "below ", shown(most->value),
                       most->isIncluded ? " or less" : "");
}

std::string verbFor(const std::vector<std::string_view>& old, const std::vector<std::string_view>& changed,
                    const std::string& verb) {
    return old.empty()                   ? verb
           : changed.empty()             ? "no longer " + verb
           : changed.size() > old.size() ? verb + " more"
           : changed.size() < old.size() ? verb + " less"
                                         : verb + " otherwise";
}

const char* wordFor(const ConfigDiff& config) {
    if (config.isOnlyIn(0)) {
        return "removed";
    }
    if (config.isOnlyIn(1)) {
        return "new";
    }
    switch (config.status()) {
        case ConfigDiff::Status::Changed:
            return "changed";
        case ConfigDiff::Status::Undecided:
            return "not decided";
        case ConfigDiff::Status::Unchanged:
            break;
    }
    return "unchanged";
}

std::string when(const MachineDiff& diff) {
    return diff.events == 0 ? "at the start" : "by event " + std::to_string(diff.events);
}

// Counts the configurations: "1 changed, 2 unchanged".
std::string countsOf(const DocumentDiff& diff) {
    std::vector<std::string> counts;
    for (const char* const word : {"changed", "new", "removed", "not decided", "unchanged"}) {
        const auto count = std::ranges::count_if(
            diff.configs, [&](const ConfigDiff& each) { return wordFor(each) == std::string_view(word); });
        if (count > 0) {
            counts.push_back(fmt::format("{} {}", count, word));
        }
    }
    return counts.empty() ? "no configurations" : fmt::format("{}", fmt::join(counts, ", "));
}

std::string unchangedIdsOf(const DocumentDiff& diff) {
    std::vector<std::string> ids;
    std::size_t others = 0;
    for (const ConfigDiff& each : diff.configs) {
        if (wordFor(each) != std::string_view("unchanged")) {
            continue;
        }
        if (ids.size() < kMostIdsNamed) {
            ids.push_back(labelOf(each));
        } else {
            ++others;
        }
    }
    return fmt::format("{}{}", fmt::join(ids, ", "), others == 0 ? "" : fmt::format(" and {} others", others));
}

// Returns what a machine did by the last event, and why.
std::vector<std::string> lastDeedsOf(const ConfigDiff& config, std::size_t side) {
    if (config.isOnlyIn(1 - side)) {
        return {"has no such machine"};
    }
    const Account& account = config.accounts[side];
    std::vector<std::string> lines;
    for (const Deed& each : account.deeds) {
        if (each.event == config.diff.events) {
            lines.push_back((each.kind == Deed::Kind::Trigger ? "triggers " : "logs ") +
                            excerpt(printable(each.text), 60));
        }
    }
    if (lines.empty()) {
        lines.emplace_back("neither triggers nor logs");
    }
    if (account.explanation.empty()) {
        lines.push_back(fmt::format("state {}: no transition listens", shownQuoted(config.diff.states[side])));
    }
    // It is clear which configuration is meant, and two columns need the place.
    const std::string prefix = fmt::format("configs[{}].payload.data.", config.indices[side].value_or(0));
    for (std::string each : account.explanation) {
        const std::size_t found = each.find(prefix);
        lines.push_back(found == 2 ? each.erase(found, prefix.size()) : each);
    }
    if (lines.size() > kMostLinesOfEither) {
        const std::size_t left = lines.size() - kMostLinesOfEither;
        lines.resize(kMostLinesOfEither);
        lines.push_back(fmt::format("and {} more", counted(left, "line")));
    }
    return lines;
}

// Puts two texts side by side, or one under the other where they are wide.
std::string beside(const Both<std::vector<std::string>>& texts, const std::string& indent) {
    std::size_t width = 0;
    for (const std::string& each : texts[0]) {
        width = std::max(width, charactersIn(each));
    }
    std::string all;
    if (width > kWidestColumn) {
        for (std::size_t side = 0; side < texts.size(); ++side) {
            for (const std::string& line : texts[side]) {
                all += fmt::format("{}{}  {}\n", indent, &line == &texts[side].front() ? kSides[side] : "   ", line);
            }
        }
        return all;
    }
    Both<std::vector<std::string>> columns = texts;
    for (std::size_t side = 0; side < columns.size(); ++side) {
        columns[side].emplace(columns[side].begin(), kSides[side]);
    }
    for (std::size_t index = 0; index < std::max(columns[0].size(), columns[1].size()); ++index) {
        const std::string left = index < columns[0].size() ? columns[0][index] : "";
        const std::string right = index < columns[1].size() ? columns[1][index] : "";
        const std::string line =
            fmt::format("{}{}{} | {}", indent, left, std::string(width - charactersIn(left), ' '), right);
        all += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return all;
}

// Returns the recording, as lines of event records, and the numbers that each document is to draw.
std::vector<std::string> recordingOf(const ConfigDiff& config) {
    std::vector<std::string> lines;
    const auto& events = config.diff.plan.events;
    const std::size_t first = events.size() - std::min(events.size(), kMostEventsShown);
    if (first > 0) {
        lines.push_back(fmt::format("… {} before, which --format json has", counted(first, "event")));
    }
    for (std::size_t index = first; index < events.size(); ++index) {
        lines.push_back(jsonOf(events[index]));
    }
    return lines;
}

std::vector<std::string> drawsOf(const ConfigDiff& config) {
    std::vector<std::string> lines;
    for (std::size_t side = 0; side < kSides.size(); ++side) {
        const auto& draws = config.accounts[side].witness.draws;
        if (!draws.empty()) {
            lines.push_back(fmt::format(
                "{} draws {}{}", kSides[side],
                fmt::join(draws.begin(),
                          draws.begin() + static_cast<std::ptrdiff_t>(std::min(draws.size(), kMostEventsShown)), ", "),
                draws.size() > kMostEventsShown ? ", …" : ""));
        }
    }
    if (!lines.empty()) {
        lines.insert(lines.begin(), "each number that is drawn for an event is the same in both");
    }
    return lines;
}

std::string headOf(const ConfigDiff& config) {
    return fmt::format("they differ {}{}", when(config.diff),
                       config.diff.isShortest ? "" : ", and some shorter recording was not decided");
}

bool isShown(const ConfigDiff& config) {
    return config.diff.verdict == MachineDiff::Verdict::Different;
}

std::string escaped(const std::string& text) {
    std::string html;
    for (const char each : text) {
        html += each == '&' ? "&amp;" : each == '<' ? "&lt;" : each == '>' ? "&gt;" : std::string(1, each);
    }
    return html;
}

// A table of Markdown ends its cells by a bar, and takes other signs for letters in bold.
std::string escapedInCell(const std::string& text) {
    std::string markdown;
    for (const char each : escaped(text)) {
        const bool isSign = std::string_view("|`*_[\\~").find(each) != std::string_view::npos;
        markdown += isSign ? fmt::format("&#{};", static_cast<int>(each)) : std::string(1, each);
    }
    return markdown;
}

}  // namespace

std::string labelOf(const ConfigDiff& config) {
    return config.occurrence == 0 ? fmt::format("{}", config.id)
                                  : fmt::format("{} (the {}. with this id)", config.id, config.occurrence + 1);
}

std::vector<std::string> summaryOf(const ConfigDiff& config) {
    const MachineDiff& diff = config.diff;
    std::vector<std::string> lines;
    switch (diff.verdict) {
        case MachineDiff::Verdict::Different:
            for (const MachineDiff::Change& each : diff.changes) {
                std::string line = wordsFor(each, diff.states);
                if (std::ranges::count(lines, line) == 0) {
                    lines.push_back(std::move(line));
                }
            }
            if (diff.areOddsSame) {
                lines.push_back("only what is drawn differs: everything is as probable as before");
            }
            break;
        case MachineDiff::Verdict::Unrecordable:
            lines.push_back("only an infinity, NaN or a text that is no UTF-8 shows a difference");
            break;
        case MachineDiff::Verdict::Undecided:
            lines.push_back(fmt::format("not decided up to {}: no shorter recording shows a difference",
                                        counted(diff.events, "event")));
            break;
        case MachineDiff::Verdict::Same:
            if (!config.indices[0] || !config.indices[1]) {
                lines.emplace_back("does nothing that is seen");
            }
            break;
    }
    return lines;
}

std::string wordsFor(const MachineDiff::Change& change, const Both<std::string>& states) {
    const auto& [old, changed] = change.outcomes;
    std::string words = old.triggers != changed.triggers ? verbFor(old.triggers, changed.triggers, "triggers") : "";
    if (old.lines != changed.lines) {
        words += (words.empty() ? "" : " and ") + verbFor(old.lines, changed.lines, "logs");
    }
    words = words.empty() ? "waits in another state" : words;
    words += change.isDrawn ? ", with some draws," : "";
    if (!change.extents.empty()) {
        words += " for " + joined(change.extents, ", ", [](const Extent& each) { return wordsFor(each); });
    } else if (change.event != RulesEngine::EventType::EnteringState) {
        words += " on " + std::string(nameOf(change.event));
    }
    const std::string before = states[0] == states[1] ? "" : fmt::format(" (was {})", shownName(states[0]));
    return words + " in state " + shownName(states[1]) + before;
}

std::string textOf(const DocumentDiff& diff, const Both<std::string>& files) {
    std::string text = fmt::format("{} -> {}: {}\n", printable(files[0]), printable(files[1]), countsOf(diff));
    std::vector<std::string> top;
    for (const ConfigDiff& each : diff.configs) {
        for (const std::string& line : summaryOf(each)) {
            top.push_back(fmt::format("  {:<11}  {}  {}\n", wordFor(each), labelOf(each), line));
        }
    }
    const std::size_t left = top.size() - std::min(top.size(), kMostLinesOnTop);
    top.resize(top.size() - left);
    text += fmt::format("{}{}", fmt::join(top, ""),
                        left == 0 ? "" : fmt::format("  and {}, told below\n", counted(left, "other difference")));
    const std::string unchanged = unchangedIdsOf(diff);
    text += unchanged.empty() ? "" : fmt::format("  {:<11}  {}\n", "unchanged", unchanged);
    for (const ConfigDiff& each : diff.configs) {
        if (!isShown(each)) {
            continue;
        }
        text += fmt::format("\n{}: {}\n", labelOf(each), headOf(each));
        for (const auto& lines : {recordingOf(each), drawsOf(each)}) {
            for (const std::string& line : lines) {
                text += "  " + line + "\n";
            }
        }
        text += beside({lastDeedsOf(each, 0), lastDeedsOf(each, 1)}, "  ");
    }
    return text;
}

std::string markdownOf(const DocumentDiff& diff, const Both<std::string>& files) {
    std::string text = fmt::format("**{} → {}**: {}\n\n", escapedInCell(printable(files[0])),
                                   escapedInCell(printable(files[1])), countsOf(diff));
    text += "| configuration | | what is new |\n|---|---|---|\n";
    for (const ConfigDiff& each : diff.configs) {
        if (wordFor(each) != std::string_view("unchanged")) {
            text += fmt::format("| {} | {} | {} |\n", labelOf(each), wordFor(each),
                                joined(summaryOf(each), "<br>", escapedInCell));
        }
    }
    const std::string unchanged = unchangedIdsOf(diff);
    text += unchanged.empty() ? "" : fmt::format("| {} | unchanged | |\n", unchanged);
    for (const ConfigDiff& each : diff.configs) {
        if (!isShown(each)) {
            continue;
        }
        text += fmt::format("\n<details><summary>{}: {}</summary>\n\n", labelOf(each), headOf(each));
        const auto recording = recordingOf(each);
        if (!recording.empty()) {
            text += fmt::format("```json\n{}\n```\n", fmt::join(recording, "\n"));
        }
        text += joined(drawsOf(each), "<br>", [](const std::string& line) { return line; }) + "\n";
        text += "\n<table><tr><th>old</th><th>new</th></tr><tr>";
        for (std::size_t side = 0; side < kSides.size(); ++side) {
            text += fmt::format("<td><pre>\n{}\n</pre></td>",
                                escaped(fmt::format("{}", fmt::join(lastDeedsOf(each, side), "\n"))));
        }
        text += "</tr></table>\n</details>\n";
    }
    return text;
}

}  // namespace Brenta::OS::VIG::Tool
