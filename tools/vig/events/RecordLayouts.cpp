#include "tools/vig/events/RecordLayouts.h"

#include <simdjson.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

#include "tools/vig/events/EventNames.h"
#include "tools/vig/events/JsonNumber.h"
#include "tools/vig/events/LineReader.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostLayouts = 32;
constexpr std::size_t kLongestLine = std::size_t{1} << 14;  // what is remembered, and read so, stays small
constexpr std::size_t kLongestPause = 1023;

// What is saved and spent is counted in bytes that were looked at in vain; the factors are measured.
constexpr std::int64_t kSavedByHit = 2;
constexpr std::int64_t kCostOfRemembering = 10;
constexpr std::int64_t kMostSavings = std::int64_t{1} << 18;  // enough to learn many layouts at the beginning

constexpr std::size_t kWord = sizeof(std::uint64_t);
static_assert(LineReader::PADDING >= kWord);

// The first byte is the lowest.
std::uint64_t wordAt(const char* at) {
    std::uint64_t word;
    std::memcpy(&word, at, kWord);
    if constexpr (std::endian::native == std::endian::big) {
        word = __builtin_bswap64(word);
    }
    return word;
}

constexpr std::uint64_t everyByte(std::uint8_t byte) {
    return byte * UINT64_C(0x0101010101010101);
}

constexpr std::uint64_t kHighBits = everyByte(0x80);

// Returns a word in which the lowest bit that is set belongs to the first byte that is less; the limit is at most 0x80.
constexpr std::uint64_t firstLess(std::uint64_t word, std::uint8_t limit) {
    return (word - everyByte(limit)) & ~word & kHighBits;
}

constexpr std::uint64_t firstEqual(std::uint64_t word, std::uint8_t byte) {
    return firstLess(word ^ everyByte(byte), 1);
}

bool isDigit(char each) {
    return each >= '0' && each <= '9';
}

// Each of the following moves `at` over a value and returns true, or returns false.

template <typename T>
[[gnu::always_inline]] inline bool readInteger(const char*& at, const char* end, T& value) {
    const char* const digits = at + (std::is_signed_v<T> && *at == '-' ? 1 : 0);
    if (*digits == '0' && isDigit(digits[1])) {
        return false;
    }
    const auto [behind, error] = std::from_chars(at, end, value);
    at = behind;
    return error == std::errc();
}

bool readDouble(const char*& at, const char* end, double& value) {
    const std::string_view rest(at, static_cast<std::size_t>(end - at));
    const std::string_view token = rest.substr(0, rest.find_first_not_of("+-.0123456789Ee"));
    at += token.size();
    return toDouble(token, value) == std::errc();
}

bool readBool(const char*& at, const char* end, bool& value) {
    const std::string_view rest(at, static_cast<std::size_t>(end - at));
    value = rest.starts_with("true");
    at += value ? 4 : 5;
    return value || rest.starts_with("false");
}

// The value ends before the quote. The line feed behind the line ends it, too.
bool readString(const char*& at, std::string_view& value) {
    const char* const begin = at;
    std::uint64_t high = 0;
    for (;; at += kWord) {
        const std::uint64_t word = wordAt(at);
        const std::uint64_t ends = firstEqual(word, '"') | firstEqual(word, '\\') | firstLess(word, ' ');
        high |= word & kHighBits;
        if (ends != 0) {
            at += std::countr_zero(ends) / 8;
            value = std::string_view(begin, static_cast<std::size_t>(at - begin));
            return *at == '"' && (high == 0 || simdjson::validate_utf8(value));
        }
    }
}

// Returns how many bytes a token at the beginning of a text has that is well-formed: a string with its quotes, in which
// nothing is escaped, a number, true or false.
std::size_t sizeOfToken(std::string_view text) {
    return text.front() == '"' ? text.find('"', 1) + 1 : text.find_first_of(" \t\r\n,}");
}

template <typename T>
void addNames(const AttributeSet& from, AttributeSet& to) {
    from.forEach<T>([&](std::string_view name, T) { to.add<T>(name, T()); });
}

}  // namespace

// The strings are empty, so that dropStrings() leaves nothing of them.
RecordLayout::RecordLayout(const EventRecord& like)
    : record{.type = like.type, .timeMs = like.timeMs, .timeoutId = like.timeoutId, .isEnd = like.isEnd} {
    addNames<std::uint64_t>(like.attributes, record.attributes);
    addNames<std::int64_t>(like.attributes, record.attributes);
    addNames<double>(like.attributes, record.attributes);
    addNames<bool>(like.attributes, record.attributes);
    addNames<std::string_view>(like.attributes, record.attributes);
}

// The line is known to be a record, so that it is enough to tell its tokens apart.
RecordLayout RecordLayout::of(std::string_view line, const EventRecord& record) {
    RecordLayout layout(record);
    std::vector<std::string_view> keys;  // of the objects that the place is in
    bool isValue = false;
    std::size_t constant = 0;  // where the bytes begin that follow the last value
    for (std::size_t at = 0; at < line.size();) {
        switch (line[at]) {
            case '{':
                keys.emplace_back();
                isValue = false;
                ++at;
                continue;
            case '}':
                keys.pop_back();
                ++at;
                continue;
            case ':':
            case ',':
                isValue = line[at] == ':';
                ++at;
                continue;
            case ' ':
            case '\t':
            case '\r':
            case '\n':
                ++at;
                continue;
            default:
                break;
        }
        const std::size_t quote = line[at] == '"' ? 1 : 0;
        const std::string_view text = line.substr(at + quote, sizeOfToken(line.substr(at)) - 2 * quote);
        const std::size_t begin = at + quote;
        at = begin + text.size() + quote;
        if (!isValue) {
            keys.back() = text;
        } else if (const auto slot = layout.slotOf(keys)) {
            layout.addConstant(line.substr(constant, begin - constant));
            layout.slots.push_back(*slot);
            constant = begin + text.size();
        }
    }
    layout.addConstant(line.substr(constant));
    return layout;
}

// The values that have no slot are the name of the event and that a device has ended, which are constants of the
// layout.
std::optional<RecordLayout::Slot> RecordLayout::slotOf(const std::vector<std::string_view>& keys) const {
    if (keys.size() == 1) {
        return keys[0] == "device"       ? std::optional(Slot{Member::Device, 0})
               : keys[0] == "time_ms"    ? std::optional(Slot{Member::TimeMs, 0})
               : keys[0] == "timeout_id" ? std::optional(Slot{Member::TimeoutId, 0})
                                         : std::nullopt;
    }
    const AttributeSet& attributes = record.attributes;
    switch (static_cast<AttributeKind>(std::ranges::find(kKindNames, keys[0]) - kKindNames.begin())) {
        case AttributeKind::Uint64:
            return Slot{Member::Uint64, attributes.placeOf<std::uint64_t>(keys[1])};
        case AttributeKind::Int64:
            return Slot{Member::Int64, attributes.placeOf<std::int64_t>(keys[1])};
        case AttributeKind::Double:
            return Slot{Member::Double, attributes.placeOf<double>(keys[1])};
        case AttributeKind::Bool:
            return Slot{Member::Bool, attributes.placeOf<bool>(keys[1])};
        case AttributeKind::String:
            return Slot{Member::String, attributes.placeOf<std::string_view>(keys[1])};
    }
    return std::nullopt;
}

bool RecordLayout::isSameAs(const RecordLayout& other) const {
    return words == other.words && constants == other.constants && slots == other.slots;
}

void RecordLayout::addConstant(std::string_view bytes) {
    const std::size_t count = (bytes.size() + kWord - 1) / kWord;
    const std::size_t first = words.size();
    const std::size_t inLast = bytes.size() - (count - 1) * kWord;
    const std::uint64_t mask = ~std::uint64_t{0} >> 8 * (kWord - inLast);
    std::string padded(bytes);
    padded.resize(count * kWord);
    for (std::size_t i = 0; i < count; ++i) {
        words.push_back(wordAt(padded.data() + i * kWord));
    }
    constants.push_back({first, bytes.size(), mask});
}

[[gnu::always_inline]] inline bool RecordLayout::skip(const Constant& constant, const char*& at,
                                                      const char* end) const {
    if (static_cast<std::size_t>(end - at) < constant.size) {
        return false;
    }
    const std::uint64_t* word = words.data() + constant.firstWord;
    const char* const behind = at + constant.size;
    for (; at + kWord < behind; at += kWord) {
        if (wordAt(at) != *word++) {
            return false;
        }
    }
    const bool isSame = ((wordAt(at) ^ *word) & constant.lastMask) == 0;
    at = behind;
    return isSame;
}

[[gnu::always_inline]] inline bool RecordLayout::readValue(const Slot& slot, const char*& at, const char* end) {
    AttributeSet& attributes = record.attributes;
    std::string_view text;
    switch (slot.member) {
        case Member::Device:
            if (!readString(at, text)) {
                return false;
            }
            record.device = text;
            return !text.empty();
        case Member::TimeMs:
            return readInteger(at, end, *record.timeMs);
        case Member::TimeoutId:
            return readInteger(at, end, *record.timeoutId);
        case Member::Uint64:
            return readInteger(at, end, attributes.valueAt<std::uint64_t>(slot.place));
        case Member::Int64:
            return readInteger(at, end, attributes.valueAt<std::int64_t>(slot.place));
        case Member::Double:
            return readDouble(at, end, attributes.valueAt<double>(slot.place));
        case Member::Bool:
            return readBool(at, end, attributes.valueAt<bool>(slot.place));
        case Member::String:
            if (!readString(at, text)) {
                return false;
            }
            attributes.replaceString(slot.place, text);
            return true;
    }
    return false;
}

const EventRecord* RecordLayout::read(std::string_view line, std::size_t& seen) {
    const char* at = line.data();
    const char* const end = at + line.size();
    record.attributes.dropStrings();
    bool fits = true;
    for (std::size_t i = 0; fits && i < slots.size(); ++i) {
        fits = skip(constants[i], at, end) && readValue(slots[i], at, end);
    }
    fits = fits && skip(constants.back(), at, end) && at == end;
    seen = static_cast<std::size_t>(at - line.data());
    return fits ? &record : nullptr;
}

RecordLayouts::RecordLayouts() : savings(kMostSavings) {}

const EventRecord* RecordLayouts::find(std::string_view line) {
    if (known.empty() || line.size() > kLongestLine) {
        return nullptr;
    }
    const std::size_t guess = known[last].next;
    const EventRecord* record = readAs(guess, line);
    for (std::size_t place = 0; record == nullptr && place < known.size(); ++place) {
        record = place == guess ? nullptr : readAs(place, line);
    }
    // A line that fits none is learnt from first.
    if (record != nullptr) {
        pauseIfSpent();
    }
    return record;
}

const EventRecord* RecordLayouts::readAs(std::size_t place, std::string_view line) {
    std::size_t seen = 0;
    const EventRecord* const record = known[place].layout.read(line, seen);
    if (record == nullptr) {
        savings -= static_cast<std::int64_t>(seen);
        return nullptr;
    }
    known[last].next = place;
    known[place].lastHit = ++hits;
    last = place;
    savings += kSavedByHit * static_cast<std::int64_t>(line.size());
    if (savings > kMostSavings) {
        savings = kMostSavings;
        pause = 0;
    }
    return record;
}

void RecordLayouts::pauseIfSpent() {
    if (savings < 0) {
        savings = 0;
        letPass = pause;
        pause = std::min(2 * pause + 1, kLongestPause);
    }
}

void RecordLayouts::learn(std::string_view line, const EventRecord& record) {
    // What is escaped is never read by a layout.
    if (line.size() <= kLongestLine && line.find('\\') == std::string_view::npos) {
        savings -= kCostOfRemembering * static_cast<std::int64_t>(line.size());
        add(RecordLayout::of(line, record));
    }
    pauseIfSpent();
}

void RecordLayouts::add(RecordLayout layout) {
    if (std::ranges::any_of(known, [&](const Known& each) { return each.layout.isSameAs(layout); })) {
        return;
    }
    if (known.size() < kMostLayouts) {
        known.push_back({std::move(layout), known.size(), hits});
    } else {
        const auto place = std::ranges::min_element(known, {}, &Known::lastHit) - known.begin();
        known[static_cast<std::size_t>(place)] = {std::move(layout), static_cast<std::size_t>(place), hits};
    }
}

}  // namespace Brenta::OS::VIG::Tool
