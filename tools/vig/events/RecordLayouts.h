#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "tools/vig/events/EventRecord.h"

namespace Brenta::OS::VIG::Tool {

// It is how a line of a recording looks, whatever its values: the bytes between them, and where each of them goes. It
// holds a record of its own, of which only the values change from line to line.
class RecordLayout {
  public:
    // Returns the layout of a line that is the record. REQUIRES: nothing in it is escaped.
    static RecordLayout of(std::string_view line, const EventRecord& record);

    // Returns the record that a line is. Returns null if the bytes between its values are others, or if one of the
    // values needs a closer look: it may be wrong then. `seen` becomes the number of bytes that were looked at.
    const EventRecord* read(std::string_view line, std::size_t& seen);

    bool isSameAs(const RecordLayout& other) const;

  private:
    enum class Member : std::uint8_t { Device, TimeMs, TimeoutId, Uint64, Int64, Double, Bool, String };

    // It stands behind bytes that are the same in each line, and goes to a place among the attributes of its kind.
    struct Slot {
        Member member;
        std::size_t place;

        bool operator==(const Slot&) const = default;
    };

    // Bytes are compared eight at once, of the last eight only those that the mask covers.
    struct Constant {
        std::size_t firstWord;
        std::size_t size;
        std::uint64_t lastMask;

        bool operator==(const Constant&) const = default;
    };

    explicit RecordLayout(const EventRecord& like);

    std::optional<Slot> slotOf(const std::vector<std::string_view>& keys) const;
    void addConstant(std::string_view bytes);
    bool skip(const Constant& constant, const char*& at, const char* end) const;
    bool readValue(const Slot& slot, const char*& at, const char* end);

    std::vector<std::uint64_t> words;
    std::vector<Constant> constants;  // one before each slot, and one at the end
    std::vector<Slot> slots;
    EventRecord record;
};

// It remembers the layouts of the last lines, so that a recording whose lines look alike need not be parsed as JSON.
// Where looking for them costs more than it saves, it soon stops to look for a while.
class RecordLayouts {
  public:
    RecordLayouts();

    // Returns the record that a line is, valid until the next call; null if none of the layouts fits.
    // REQUIRES: LineReader::PADDING bytes after the line may be read.
    const EventRecord* read(std::string_view line) { return letPass > 0 ? nullptr : find(line); }

    // Is told of each line that was not read here and is a record: that one.
    void remember(std::string_view line, const EventRecord& record) {
        if (letPass > 0) {
            --letPass;
        } else {
            learn(line, record);
        }
    }

  private:
    struct Known {
        RecordLayout layout;
        std::size_t next;       // the place of the layout that the line after one of this layout had
        std::uint64_t lastHit;  // the larger, the later
    };

    const EventRecord* find(std::string_view line);
    const EventRecord* readAs(std::size_t place, std::string_view line);
    void learn(std::string_view line, const EventRecord& record);
    void add(RecordLayout layout);
    void pauseIfSpent();

    std::vector<Known> known;
    std::size_t last = 0;  // the place of the layout of the last line that fitted one
    std::uint64_t hits = 0;
    std::int64_t savings;     // what lines that fitted have saved, less what was spent on others
    std::size_t pause = 0;    // so many lines are let pass when that is used up
    std::size_t letPass = 0;  // so many are still to be
};

}  // namespace Brenta::OS::VIG::Tool
