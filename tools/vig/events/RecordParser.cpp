#include "tools/vig/events/RecordParser.h"

#include <simdjson.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "tools/vig/events/EventNames.h"
#include "tools/vig/events/JsonNumber.h"
#include "tools/vig/events/LineReader.h"
#include "tools/vig/events/RecordLayouts.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"
#include "vig/base/Utf8.h"
#include "vig/parsers/JsonTokens.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;
namespace ondemand = simdjson::ondemand;

static_assert(LineReader::PADDING >= simdjson::SIMDJSON_PADDING);

namespace {

constexpr auto kMembers = std::to_array<std::string_view>(
    {"event", "time_ms", "timeout_id", "uint64", "int64", "double", "bool", "string", "device", "ended"});
constexpr unsigned kEventBit = 1U << 0;
constexpr unsigned kDeviceBit = 1U << 8;
constexpr unsigned kEndedBit = 1U << 9;

template <typename T>
constexpr std::string_view kExpected;
template <>
constexpr std::string_view kExpected<std::uint64_t> = "an unsigned 64-bit integer";
template <>
constexpr std::string_view kExpected<std::int64_t> = "a signed 64-bit integer";
template <>
constexpr std::string_view kExpected<double> = "a number";
template <>
constexpr std::string_view kExpected<bool> = "true or false";
template <>
constexpr std::string_view kExpected<std::string_view> = "a string";
template <>
constexpr std::string_view kExpected<ondemand::object> = "an object";

// Returns a key as it stands in a message.
std::string named(std::string_view key) {
    const bool plain = !key.empty() && std::all_of(key.begin(), key.end(), [](char each) {
        return each > ' ' && each < '\x7F' && each != '"' && each != '\\' && each != '.' && each != ':';
    });
    return plain ? shownName(key) : shownQuoted(key);
}

// Tells whether the text is a number of the kind, which can only be out of its range then.
template <typename T>
bool isNumber(std::string_view token) {
    constexpr bool isInteger = std::is_integral_v<T> && !std::is_same_v<T, bool>;
    if constexpr (std::is_same_v<T, double> || isInteger) {
        return isJsonNumber(token) && (!isInteger || token.find_first_of(".eE") == std::string_view::npos);
    } else {
        return false;
    }
}

// Returns the token of a value without the white space around it.
std::string_view trimmed(std::string_view token) {
    constexpr std::string_view kSpace = " \t\r\n";
    token.remove_prefix(std::min(token.find_first_not_of(kSpace), token.size()));
    return token.substr(0, token.find_last_not_of(kSpace) + 1);
}

// Returns the value as it stands in a message.
std::string shown(std::string_view token) {
    token = trimmed(token);
    if (withoutByteOrderMark(token).size() < token.size()) {
        return "a byte order mark";
    }
    switch (token.empty() ? '\0' : token.front()) {
        case '{':
            return "an object";
        case '[':
            return "an array";
        case '\0':
        case '}':
        case ']':
        case ',':
        case ':':
            return "nothing";
        default:
            return shortened(token, kMostShownOfName);
    }
}

template <typename T>
simdjson::error_code convert(ondemand::value value, T& converted) {
    return value.get(converted);
}

// The library refuses the one number that is unsigned with a sign.
template <>
simdjson::error_code convert(ondemand::value value, std::uint64_t& converted) {
    const auto code = value.get(converted);
    if (code && trimmed(value.raw_json_token()) == "-0") {
        converted = 0;
        return simdjson::SUCCESS;
    }
    return code;
}

// The library misreads many fractions of more than 19 digits, takes some that are too large for a double, and refuses
// zeros with a long exponent, so that it is not asked at all.
template <>
simdjson::error_code convert(ondemand::value value, double& converted) {
    const std::errc error = toDouble(trimmed(value.raw_json_token()), converted);
    return error == std::errc()                   ? simdjson::SUCCESS
           : error == std::errc::invalid_argument ? simdjson::INCORRECT_TYPE
                                                  : simdjson::NUMBER_ERROR;
}

std::string_view describe(simdjson::error_code code) {
    switch (code) {
        case simdjson::UTF8_ERROR:
            return "invalid UTF-8";
        case simdjson::UNESCAPED_CHARS:
            return "a control character in a string has to be escaped";
        case simdjson::UNCLOSED_STRING:
            return "a string is not closed";
        case simdjson::STRING_ERROR:
            return "a string has an invalid escape";
        default:
            return "invalid JSON: a brace, comma, colon, key or value is missing or too many";
    }
}

}  // namespace

class RecordParser::Impl {
  public:
    const EventRecord* parse(std::string_view text);

    std::string error;

  private:
    bool read(std::string_view text);
    bool readMember(std::string_view key, ondemand::value value);
    bool readEventType(ondemand::value value, EventType& type);
    bool readInteger(std::string_view key, ondemand::value value, std::optional<std::int64_t>& integer);
    bool readDevice(ondemand::value value);
    bool readEnded(ondemand::value value);
    template <typename T>
    bool readKind(std::string_view kind, ondemand::value value);
    bool checkWhole();

    template <typename T>
    bool wrongValue(const std::string& key, ondemand::value value, simdjson::error_code code);
    bool fail(std::string message) {
        error = std::move(message);
        return false;
    }
    bool malformed(simdjson::error_code code) { return fail(std::string(describe(code))); }
    bool malformed(std::string_view kind, simdjson::error_code code) {
        return fail(std::string(kind) + ": " + std::string(describe(code)));
    }

    ondemand::parser parser;
    RecordLayouts layouts;
    EventRecord record;  // of the last text that had no layout which is known
    unsigned seen = 0;   // which of kMembers the record has, one bit each
};

const EventRecord* RecordParser::Impl::parse(std::string_view text) {
    if (const EventRecord* const known = layouts.read(text)) {
        return known;
    }
    if (!read(text)) {
        return nullptr;
    }
    layouts.remember(text, record);
    return &record;
}

bool RecordParser::Impl::read(std::string_view text) {
    record.type = {};
    record.device.clear();
    record.isEnd = false;
    record.timeMs.reset();
    record.timeoutId.reset();
    record.attributes.clear();
    seen = 0;
    if (text.size() > parser.capacity()) {
        if (const auto code = parser.allocate(std::bit_ceil(text.size()))) {
            return malformed(code);
        }
    }
    const simdjson::padded_string_view padded(text.data(), text.size(), text.size() + simdjson::SIMDJSON_PADDING);
    ondemand::document document;
    if (const auto code = parser.iterate(padded).get(document)) {
        return malformed(code);
    }
    ondemand::object object;
    if (const auto code = document.get_object().get(object)) {
        return code == simdjson::INCORRECT_TYPE ? fail("expected a JSON object, got " + shown(text)) : malformed(code);
    }
    for (auto member : object) {
        std::string_view key;
        ondemand::value value;
        if (const auto code = member.unescaped_key().get(key)) {
            return malformed(code);
        }
        if (const auto code = member.value().get(value)) {
            return malformed(code);
        }
        if (!readMember(key, value)) {
            return false;
        }
    }
    const bool atEnd = document.current_location().error() == simdjson::OUT_OF_BOUNDS;
    return atEnd ? checkWhole() : fail("something follows after the object");
}

bool RecordParser::Impl::readMember(std::string_view key, ondemand::value value) {
    const auto place = std::ranges::find(kMembers, key);
    if (place == kMembers.end()) {
        return fail(named(key) + ": unknown key" + suggestion(key, kMembers));
    }
    const auto member = place - kMembers.begin();
    const unsigned bit = 1U << member;
    if ((seen & bit) != 0) {
        return fail(std::string(key) + ": given twice");
    }
    seen |= bit;
    switch (member) {
        case 0:
            return readEventType(value, record.type);
        case 1:
            return readInteger(key, value, record.timeMs);
        case 2:
            return readInteger(key, value, record.timeoutId);
        case 3:
            return readKind<std::uint64_t>(key, value);
        case 4:
            return readKind<std::int64_t>(key, value);
        case 5:
            return readKind<double>(key, value);
        case 6:
            return readKind<bool>(key, value);
        case 7:
            return readKind<std::string_view>(key, value);
        case 8:
            return readDevice(value);
        default:
            return readEnded(value);
    }
}

bool RecordParser::Impl::readEventType(ondemand::value value, EventType& type) {
    std::string_view name;
    if (const auto code = value.get(name)) {
        return wrongValue<std::string_view>("event", value, code);
    }
    const auto known = kEventTypeNames.reverseLookup(name);
    if (!known) {
        return fail("event: unknown event " + shownQuoted(name) + suggestion(name, kEventNames));
    }
    type = *known;
    return true;
}

bool RecordParser::Impl::readInteger(std::string_view key, ondemand::value value,
                                     std::optional<std::int64_t>& integer) {
    const auto code = value.get(integer.emplace());
    return !code || wrongValue<std::int64_t>(std::string(key), value, code);
}

bool RecordParser::Impl::readDevice(ondemand::value value) {
    std::string_view name;
    if (const auto code = value.get(name)) {
        return wrongValue<std::string_view>("device", value, code);
    }
    record.device = name;
    return !name.empty() || fail("device: expected a name, got \"\"");
}

bool RecordParser::Impl::readEnded(ondemand::value value) {
    if (const auto code = value.get(record.isEnd)) {
        return wrongValue<bool>("ended", value, code);
    }
    return record.isEnd || fail("ended: expected true, got false");
}

template <typename T>
bool RecordParser::Impl::readKind(std::string_view kind, ondemand::value value) {
    ondemand::object object;
    if (const auto code = value.get(object)) {
        return wrongValue<ondemand::object>(std::string(kind), value, code);
    }
    for (auto attribute : object) {
        std::string_view name;
        ondemand::value content;
        T converted;
        if (const auto code = attribute.unescaped_key().get(name)) {
            return malformed(kind, code);
        }
        if (const auto code = attribute.value().get(content)) {
            return malformed(kind, code);
        }
        if (const auto code = convert(content, converted)) {
            return wrongValue<T>(std::string(kind) + "." + named(name), content, code);
        }
        record.attributes.add<T>(name, converted);
    }
    const auto twice = record.attributes.sort<T>();
    return !twice || fail(std::string(kind) + "." + named(*twice) + ": given twice");
}

bool RecordParser::Impl::checkWhole() {
    if (record.isEnd) {
        return seen == (kDeviceBit | kEndedBit) || fail("ended: stands beside \"device\" and nothing else");
    }
    if ((seen & kEventBit) == 0) {
        return fail("event: missing");
    }
    if (record.type == EventType::Timeout && !record.timeoutId) {
        return fail("timeout_id: missing, which a Timeout event needs");
    }
    if (record.type != EventType::Timeout && record.timeoutId) {
        return fail("timeout_id: only a Timeout event has one");
    }
    return true;
}

template <typename T>
bool RecordParser::Impl::wrongValue(const std::string& key, ondemand::value value, simdjson::error_code code) {
    if (code == simdjson::STRING_ERROR) {
        return fail(key + ": " + std::string(describe(code)));
    }
    const std::string_view token = trimmed(value.raw_json_token());
    std::string message = key + ": expected " + std::string(kExpected<T>) + ", got " + shown(token);
    if (isNumber<T>(token)) {
        message += ", which is out of its range";
    }
    return fail(std::move(message));
}

RecordParser::RecordParser() : impl(std::make_unique<Impl>()) {}

RecordParser::~RecordParser() = default;

const EventRecord* RecordParser::parse(std::string_view text) {
    return impl->parse(text);
}

const std::string& RecordParser::error() const {
    return impl->error;
}

}  // namespace Brenta::OS::VIG::Tool
