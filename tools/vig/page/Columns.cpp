#include "tools/vig/page/Columns.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/vig/events/EventNames.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

std::uint32_t NumberedTexts::numberOf(std::string_view text) {
    auto found = numbers.find(text);
    if (found == numbers.end()) {
        found = numbers.emplace(text, static_cast<std::uint32_t>(texts.size())).first;
        texts.emplace_back(found->first);
        bytes += text.size();
    }
    return found->second;
}

std::string ColumnWriter::reference(const char* kind, std::size_t bits, std::size_t begin, std::size_t count) {
    return fmt::format(R"({{"type":"{}{}","at":{},"count":{}}})", kind, bits, begin, count);
}

std::uint32_t EventColumns::typeOf(EventType type) {
    const auto found = std::ranges::find(knownTypes, type);
    const auto index = static_cast<std::uint32_t>(found - knownTypes.begin());
    if (found == knownTypes.end()) {
        knownTypes.push_back(type);
        tables.emplace_back();
    }
    return index;
}

void EventColumns::begin(std::uint32_t number, EventType type) {
    // It has a number and a type, and may have a time and a timeout.
    constexpr std::size_t kBytesOfEvent = sizeof(std::uint32_t) + 1 + 2 * (sizeof(std::int64_t) + 1);
    numbers.push_back(number);
    types.push_back(static_cast<std::uint8_t>(typeOf(type)));
    Table& table = tables[types.back()];
    ++table.rows;
    bytes += kBytesOfEvent + table.bytesOfRow;
}

void EventColumns::addStart() {
    begin(0, EventType::EnteringState);
}

void EventColumns::add(std::uint32_t number, const EventRecord& record) {
    const std::size_t position = count();
    begin(number, record.type);
    if (record.timeMs) {
        times.set(position, *record.timeMs);
    }
    if (record.timeoutId) {
        timeouts.set(position, *record.timeoutId);
    }
    Table& table = tables[types.back()];
    addAttributes<std::uint64_t>(table, record.attributes);
    addAttributes<std::int64_t>(table, record.attributes);
    addAttributes<double>(table, record.attributes);
    addAttributes<bool>(table, record.attributes);
    addAttributes<std::string_view>(table, record.attributes);
}

template <typename T>
void EventColumns::addAttributes(Table& table, const AttributeSet& attributes) {
    constexpr std::size_t kBytesOfValue = sizeof(Stored<T>) + 1;
    auto& columns = std::get<Columns<T>>(table.columns);
    attributes.forEach<T>([&](std::string_view name, T value) {
        auto column = columns.find(name);
        if (column == columns.end()) {
            column = columns.emplace(name, OptionalColumn<Stored<T>>()).first;
            table.bytesOfRow += kBytesOfValue;
            bytes += table.rows * kBytesOfValue;
        }
        if constexpr (std::is_same_v<T, std::string_view>) {
            column->second.set(table.rows - 1, texts.numberOf(value));
        } else {
            column->second.set(table.rows - 1, value);
        }
    });
}

std::string EventColumns::json(ColumnWriter& writer) {
    std::string all = fmt::format(R"("events":{{"count":{},)", count());
    all += writer.members("number", numbers, "type", types);
    const auto appendOptional = [&](std::string_view name, OptionalColumn<std::int64_t>& column) {
        all += fmt::format(R"(,"{}":)", name);
        all += column.isEmpty() ? std::string("null") : "{" + column.json(count(), writer) + "}";
    };
    appendOptional("time", times);
    appendOptional("timeout", timeouts);
    all += R"(},"types":)" + jsonArray(knownTypes, [](EventType type) { return inQuotes(Tool::nameOf(type)); });
    all += R"(,"tables":[)";
    for (Table& each : tables) {
        all += (&each == &tables.front() ? "" : ",") + json(each, writer);
    }
    return all + "]" + R"(,"names":)" + names.json(shownName);
}

std::string EventColumns::json(Table& table, ColumnWriter& writer) {
    std::string all;
    appendJson<std::string_view>(all, table, "string", writer);
    appendJson<std::int64_t>(all, table, "int64", writer);
    appendJson<std::uint64_t>(all, table, "uint64", writer);
    appendJson<double>(all, table, "double", writer);
    appendJson<bool>(all, table, "bool", writer);
    return "[" + all + "]";
}

template <typename T>
void EventColumns::appendJson(std::string& json, Table& table, std::string_view kind, ColumnWriter& writer) {
    for (auto& [name, column] : std::get<Columns<T>>(table.columns)) {
        json += fmt::format(R"({}{{"name":{},"kind":"{}",{}}})", json.empty() ? "" : ",", nameOf(name), kind,
                            column.json(table.rows, writer));
    }
}

}  // namespace Brenta::OS::VIG::Tool
