#include "tools/vig/run/Selection.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>

#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::string_view kEventKey = "event";  // as records have it
constexpr std::size_t kMostMachinesShown = 50;

template <typename Number>
std::optional<Number> read(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::string readMachine(const std::string& text, std::optional<SelectionOptions::Machine>& machine) {
    constexpr std::string_view kId = "id=";
    const bool isId = text.starts_with(kId);
    const auto number = read<std::int64_t>(std::string_view(text).substr(isId ? kId.size() : 0));
    if (!number || (!isId && *number < 0)) {
        return "expected the place of a machine, from 0, or id=NUMBER of its configuration, got " +
               (text.empty() ? "nothing" : text);
    }
    machine = {*number, isId};
    return {};
}

std::string readWhere(const std::string& text, std::vector<SelectionOptions::Attribute>& where) {
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos || sign == 0) {
        return "expected ATTRIBUTE=VALUE, such as processName=camera, got " + (text.empty() ? "nothing" : text);
    }
    where.push_back({text.substr(0, sign), text.substr(sign + 1)});
    if (where.back().name == kEventKey && std::ranges::find(kEventNames, where.back().value) == kEventNames.end()) {
        return "there is no event " + inQuotes(where.back().value) + suggestion(where.back().value, kEventNames);
    }
    return {};
}

std::string readLimit(const std::string& text, std::optional<SelectionOptions::Limit>& limit) {
    if (const auto number = read<std::int64_t>(text); number && *number >= 0) {
        limit = {*number, false};
    } else if (const auto time = durationOf(text)) {
        limit = {time->count(), true};
    } else {
        return "expected the number of an event, or a time with its unit such as 500ms, 8s or 2m, got " +
               (text.empty() ? "nothing" : text);
    }
    return {};
}

// Returns whether the event has the attribute, or nothing if it has none of that name.
std::optional<bool> has(const EventRecord& record, const SelectionOptions::Attribute& wanted) {
    if (wanted.name == kEventKey) {
        return nameOf(record.type) == wanted.value;
    }
    std::optional<bool> found;
    const auto look = [&]<typename T>(const std::optional<T>& value, const auto& wantedValue) {
        if (value) {
            found = found.value_or(false) || (wantedValue && *value == *wantedValue);
        }
    };
    const AttributeSet& attributes = record.attributes;
    look(attributes.find<std::string_view>(wanted.name), std::optional<std::string_view>(wanted.value));
    look(attributes.find<std::int64_t>(wanted.name), read<std::int64_t>(wanted.value));
    look(attributes.find<std::uint64_t>(wanted.name), read<std::uint64_t>(wanted.value));
    look(attributes.find<double>(wanted.name), read<double>(wanted.value));
    if (const auto value = attributes.find<bool>(wanted.name)) {
        found = found.value_or(false) || wanted.value == (*value ? "true" : "false");
    }
    return found;
}

}  // namespace

void addSelection(Verb& verb, SelectionOptions& options) {
    verb.option("--machine", "MACHINE", "Tells of one machine only: its place, from 0, or id=NUMBER",
                [&options](const std::string& text) { return readMachine(text, options.machine); });
    verb.repeated("--where", "ATTRIBUTE=VALUE",
                  "Tells only of events with that attribute, such as processName=camera, or event=TYPE; repeated, all "
                  "must hold",
                  [&options](const std::string& text) { return readWhere(text, options.where); });
    verb.option("--from", "WHEN", "Tells only of what comes from then on: the number of an event, or a time such as 8s",
                [&options](const std::string& text) { return readLimit(text, options.from); });
    verb.option("--to", "WHEN", "Tells only of what comes up to then, likewise",
                [&options](const std::string& text) { return readLimit(text, options.to); });
}

Selection::Selection(const SelectionOptions& options)
    : options(options),
      timeMs(std::numeric_limits<std::int64_t>::min()),
      having(options.where.size()),
      isChosen(options.where.empty() && isWithin()) {}

std::vector<std::string> Selection::loaded(const DocumentModel& document) {
    if (!options.machine) {
        return {};
    }
    const auto [number, isId] = *options.machine;
    std::vector<std::string> lines = {fmt::format("there is no machine {}{}; there {}", isId ? "with the id " : "",
                                                  number, document.configs.empty() ? "are none" : "are:")};
    for (std::size_t i = 0; i < document.configs.size(); ++i) {
        const std::int64_t id = document.configs[i].id;
        if (isId ? id == number : static_cast<std::int64_t>(i) == number) {
            place = i;
            return {};
        }
        if (i < kMostMachinesShown) {
            lines.push_back(fmt::format("  {} (id {})", i, id));
        }
    }
    if (document.configs.size() > kMostMachinesShown) {
        lines.push_back(fmt::format("  and {} more", document.configs.size() - kMostMachinesShown));
    }
    return lines;
}

bool Selection::isWithin() const {
    const auto now = [this](const SelectionOptions::Limit& limit) {
        return limit.isTime ? timeMs : static_cast<std::int64_t>(number);
    };
    return (!options.from || now(*options.from) >= options.from->value) &&
           (!options.to || now(*options.to) <= options.to->value);
}

void Selection::next(const EventRecord& record) {
    ++number;
    // An event without a time comes at the time of the one before.
    timeMs = record.timeMs.value_or(timeMs);
    hasTime = hasTime || record.timeMs;
    isChosen = isWithin();
    for (std::size_t i = 0; i < options.where.size(); ++i) {
        const auto holds = Tool::has(record, options.where[i]);
        having[i] += holds ? 1 : 0;
        isChosen = isChosen && holds.value_or(false);
    }
    chosen += isChosen ? 1 : 0;
}

std::string Selection::note() const {
    if (number == 0 || chosen > 0) {
        return {};
    }
    const bool needsTime = (options.from && options.from->isTime) || (options.to && options.to->isTime);
    if (needsTime && !hasTime) {
        return "no event has a \"time_ms\": write the numbers of events with --from and --to";
    }
    for (std::size_t i = 0; i < options.where.size(); ++i) {
        if (having[i] == 0) {
            return "no event has an attribute " + inQuotes(options.where[i].name);
        }
    }
    return fmt::format("none of {} events is chosen by --where, --from and --to", number);
}

}  // namespace Brenta::OS::VIG::Tool
