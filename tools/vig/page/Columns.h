#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

#include "rulesengine/EventType.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

// It has texts, and numbers each of them when it comes for the first time, from 0.
class NumberedTexts {
  public:
    std::uint32_t numberOf(std::string_view text);

    // Returns how many bytes they have.
    std::size_t size() const { return bytes; }

    // Returns them in order, as a JSON array, each as `render` shows it.
    std::string json(const auto& render) const {
        return jsonArray(texts, [&](std::string_view text) { return inQuotes(render(text)); });
    }

  private:
    std::map<std::string, std::uint32_t, std::less<>> numbers;
    std::vector<std::string_view> texts;  // the keys
    std::size_t bytes = 0;
};

// Writes columns of numbers one behind the other, in little endian, each where numbers of its size may begin.
// Two of them are never written by the arguments of one call, whose order is each compiler's own.
class ColumnWriter {
  public:
    // Writes columns, each after its name, in order. Returns members of a JSON object: where each is and of which type.
    template <typename T, typename... Others>
    std::string members(std::string_view name, const std::vector<T>& column, const Others&... others) {
        std::string json = inQuotes(name) + ":" + add(column);
        if constexpr (sizeof...(others) > 0) {
            json += "," + members(others...);
        }
        return json;
    }

    // Returns where the column is and of which type, as JSON.
    template <typename T>
    std::string add(const std::vector<T>& column) {
        const std::size_t begin = all.size();
        using Bits =
            std::conditional_t<sizeof(T) == 1, std::uint8_t,
                               std::conditional_t<sizeof(T) == 2, std::uint16_t,
                                                  std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>>>;
        for (const T& each : column) {
            const auto bits = std::bit_cast<Bits>(each);
            for (std::size_t byte = 0; byte < sizeof(T); ++byte) {
                all += static_cast<char>(bits >> (8 * byte));
            }
        }
        all.resize((all.size() + kAlignment - 1) / kAlignment * kAlignment);
        const char* const kind = std::is_floating_point_v<T> ? "f" : std::is_signed_v<T> ? "i" : "u";
        return reference(kind, 8 * sizeof(T), begin, column.size());
    }

    const std::string& bytes() const { return all; }

    static constexpr std::size_t kAlignment = 8;

  private:
    static std::string reference(const char* kind, std::size_t bits, std::size_t begin, std::size_t count);

    std::string all;
};

// It has a number for some of the rows of a table.
template <typename T>
class OptionalColumn {
  public:
    // Rows are set in order, and may be left out.
    void set(std::size_t row, T value) {
        values.resize(row);
        values.push_back(value);
        present.resize(row);
        present.push_back(1);
    }

    bool isEmpty() const { return values.empty(); }

    // Returns the members "values" and "present" of a JSON object. The table has so many rows.
    std::string json(std::size_t rows, ColumnWriter& writer) {
        values.resize(rows);
        present.resize(rows);
        const bool isWhole = std::ranges::count(present, 0) == 0;
        return isWhole ? writer.members("values", values) + R"(,"present":null)"
                       : writer.members("values", values, "present", present);
    }

  private:
    std::vector<T> values;
    std::vector<std::uint8_t> present;
};

// It has events by columns: a table for each type of event, with a column for each attribute.
class EventColumns {
  public:
    // Adds the event of the number that reports give it: of the record, or the start of the machines.
    void add(std::uint32_t number, const EventRecord& record);
    void addStart();

    std::size_t count() const { return numbers.size(); }

    // Returns about how many bytes they take. A column takes as many for an event without the attribute.
    std::size_t size() const { return bytes + texts.size() + names.size(); }

    // Returns the index of the type among the types of the recording.
    std::uint32_t typeOf(RulesEngine::EventType type);

    // Returns the number that the name of an attribute has.
    std::uint32_t nameOf(std::string_view name) { return names.numberOf(name); }

    // Returns members of a JSON object: "events", "types", "tables", "names".
    std::string json(ColumnWriter& writer);

    // Strings of events, and what is shown like them.
    NumberedTexts texts;

  private:
    template <typename T>
    using Stored = std::conditional_t<std::is_same_v<T, std::string_view>, std::uint32_t,
                                      std::conditional_t<std::is_same_v<T, bool>, std::uint8_t, T>>;

    template <typename T>
    using Columns = std::map<std::string, OptionalColumn<Stored<T>>, std::less<>>;

    struct Table {
        std::size_t rows = 0;
        std::size_t bytesOfRow = 0;
        std::tuple<Columns<std::uint64_t>, Columns<std::int64_t>, Columns<double>, Columns<bool>,
                   Columns<std::string_view>>
            columns = {};
    };

    void begin(std::uint32_t number, RulesEngine::EventType type);
    template <typename T>
    void addAttributes(Table& table, const AttributeSet& attributes);
    template <typename T>
    void appendJson(std::string& json, Table& table, std::string_view kind, ColumnWriter& writer);
    std::string json(Table& table, ColumnWriter& writer);

    std::vector<std::uint32_t> numbers;
    std::vector<std::uint8_t> types;
    OptionalColumn<std::int64_t> times;
    OptionalColumn<std::int64_t> timeouts;
    std::vector<RulesEngine::EventType> knownTypes;
    std::vector<Table> tables;  // by the index of the type
    NumberedTexts names;
    std::size_t bytes = 0;
};

}  // namespace Brenta::OS::VIG::Tool
