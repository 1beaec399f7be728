#include "tools/vig/test/Series.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/document/NumberMeaning.h"
#include "tools/vig/document/Units.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"
#include "vig/EventTypeNames.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

constexpr std::int64_t kMostPause = 366LL * 24 * 60 * 60 * 1000;
constexpr StrictJson::Keys::value_type kOwnKeys[] = {"event", "every_ms", "timeout_id"};

// The kind of an attribute is the index of its value.
using Value = std::variant<std::uint64_t, std::int64_t, double, bool, std::string>;
static_assert(std::variant_size_v<Value> == kKindNames.size());

// A value that so many events have, one after the other.
struct Run {
    Value value;
    std::size_t events;
};

struct Attribute {
    std::string name;
    AttributeKind kind;
    Place place;
    std::vector<Run> runs = {};
    std::size_t events = 0;
};

// It is a part of a text, and where it stands.
struct Word {
    std::string_view text;
    Place place;
};

std::string_view describe(AttributeKind kind) {
    constexpr std::string_view kNames[] = {"an unsigned 64-bit integer", "a signed 64-bit integer", "a number",
                                           "true or false", "a string"};
    return kNames[static_cast<std::size_t>(kind)];
}

template <typename Number>
std::optional<Value> numberOf(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(static_cast<double>(number))) {
        return std::nullopt;
    }
    return number;
}

// Returns nothing if the text is no value of the kind.
std::optional<Value> valueOf(AttributeKind kind, std::string_view text) {
    switch (kind) {
        case AttributeKind::Uint64:
            return numberOf<std::uint64_t>(text);
        case AttributeKind::Int64:
            return numberOf<std::int64_t>(text);
        case AttributeKind::Double:
            return numberOf<double>(text);
        case AttributeKind::Bool:
            return text == "true" || text == "false" ? std::optional<Value>(text == "true") : std::nullopt;
        case AttributeKind::String:
            break;
    }
    return std::string(text);
}

// Returns the number behind the x in "x3", and nothing if the text is something else.
std::optional<std::size_t> repetition(std::string_view text) {
    std::size_t times = 0;
    if (!text.starts_with('x') || text.find_first_not_of("0123456789", 1) != std::string_view::npos) {
        return std::nullopt;
    }
    const auto [end, error] = std::from_chars(text.data() + 1, text.data() + text.size(), times);
    if (error == std::errc::result_out_of_range) {
        return std::numeric_limits<std::size_t>::max();
    }
    return error == std::errc() ? std::optional(times) : std::nullopt;
}

// Reads the attributes of one series.
class AttributeReader {
  public:
    AttributeReader(const DocumentText& document, StrictJson& check) : document(document), check(check) {}

    // Returns them in the order of the text.
    std::vector<Attribute> read(const Json::Value& json, const std::string& path, EventType type) {
        for (const std::string& key : json.getMemberNames()) {
            const std::string place = StrictJson::member(path, key);
            const auto kind = std::ranges::find(kKindNames, key);
            if (kind != kKindNames.end()) {
                readGroup(json[key], place, static_cast<AttributeKind>(kind - kKindNames.begin()));
            } else if (std::ranges::count(kOwnKeys, key) == 0) {
                readKnown(json[key], key, place, type);
            }
        }
        std::ranges::sort(attributes, {}, [](const Attribute& each) { return each.place.begin; });
        return std::move(attributes);
    }

  private:
    void readGroup(const Json::Value& json, const std::string& path, AttributeKind kind) {
        if (!json.isObject()) {
            check.complainOfKind(json, path, "an object");
            return;
        }
        for (const std::string& name : json.getMemberNames()) {
            add(json[name], {name, kind, document.placeOf(json[name], StrictJson::member(path, name))});
        }
    }

    void readKnown(const Json::Value& json, const std::string& name, const std::string& path, EventType type) {
        for (std::size_t kind = 0; kind < kKindNames.size(); ++kind) {
            if (Catalogue::builtIn().promises(type, name, static_cast<AttributeKind>(kind))) {
                return add(json, {name, static_cast<AttributeKind>(kind), document.placeOf(json, path)});
            }
        }
        StrictJson::Keys names(std::begin(kOwnKeys), std::end(kOwnKeys));
        if (const CataloguedAttributes* const known = Catalogue::builtIn().find(type)) {
            for (const auto& [each, kinds] : *known) {
                names.push_back(each);
            }
        }
        std::string mend = suggestion(name, names);
        if (const auto other = Catalogue::builtIn().eventWith(name); other && mend.empty()) {
            mend = fmt::format("; {} events have it", *other);
        }
        if (mend.empty()) {
            mend = "; put one that vig does not know under its kind, as in \"int64\": { … }";
        }
        check.complain(json, path,
                       fmt::format("{} events have no attribute {}{}", nameOf(type), shownQuoted(name), mend));
    }

    void add(const Json::Value& json, Attribute attribute) {
        const std::string& path = attribute.place.path;
        if (json.isArray()) {
            StrictJson::forEach(json, path,
                                [&](const auto& each, const auto& place) { addWhole(each, place, attribute); });
        } else if (json.isString()) {
            addWords(json, attribute);
        } else {
            addWhole(json, path, attribute);
        }
        if (attribute.events == 0) {
            check.complain(attribute.place, "there is no value");
        }
        if (std::ranges::any_of(attributes, [&](const Attribute& each) {
                return each.kind == attribute.kind && each.name == attribute.name;
            })) {
            check.complain(attribute.place, "given twice");
        }
        attributes.push_back(std::move(attribute));
    }

    // Adds one value as it is: a number, a truth value, or a text, which may have blanks.
    void addWhole(const Json::Value& json, const std::string& path, Attribute& attribute) {
        const bool isString = attribute.kind == AttributeKind::String;
        if (isString || json.isString()) {
            const auto text = check.text(json, path);
            addValue({text.value_or(""), document.placeOf(json, path)}, attribute);
        } else if (json.isNumeric() || json.isBool()) {
            const Place place = document.placeOf(json, path);
            addValue({std::string_view(document.source().text()).substr(place.begin, place.end - place.begin), place},
                     attribute);
        } else {
            check.complainOfKind(json, path, describe(attribute.kind));
            ++attribute.events;
        }
    }

    void addWords(const Json::Value& json, Attribute& attribute) {
        const std::string text = check.text(json, attribute.place.path).value_or("");
        if (attribute.kind == AttributeKind::String && text.find(' ') == std::string::npos) {
            return addValue({text, attribute.place}, attribute);
        }
        // Without escapes, a word stands where the text says.
        const Place& whole = attribute.place;
        const bool isPlain = whole.end - whole.begin == text.size() + 2;
        for (std::size_t begin = 0; (begin = text.find_first_not_of(' ', begin)) != std::string::npos;) {
            const std::size_t end = std::min(text.find(' ', begin), text.size());
            const std::size_t offset = whole.begin + 1 + begin;
            addWord({std::string_view(text).substr(begin, end - begin),
                     isPlain ? Place{offset, offset + end - begin, whole.path} : whole},
                    attribute);
            begin = end;
        }
    }

    void addWord(const Word& word, Attribute& attribute) {
        if (const auto times = repetition(word.text); times && !attribute.runs.empty()) {
            return repeat(*times, word, attribute);
        }
        // A text may end like that itself.
        const std::size_t x = attribute.kind == AttributeKind::String ? word.text.npos : word.text.rfind('x');
        const auto times = x == 0 || x == word.text.npos ? std::nullopt : repetition(word.text.substr(x));
        addValue({word.text.substr(0, times ? x : word.text.npos), word.place}, attribute);
        if (times && !attribute.runs.empty()) {
            repeat(*times, word, attribute);
        }
    }

    void addValue(const Word& word, Attribute& attribute) {
        const auto value = valueOf(attribute.kind, word.text);
        if (!value) {
            auto meant =
                meaningOf(std::string(word.text), attribute.kind != AttributeKind::Double, unitOf(attribute.name));
            if (meant && !valueOf(attribute.kind, meant->number)) {
                meant.reset();
            }
            const bool isBool = attribute.kind == AttributeKind::Bool;
            check.complain(word.place,
                           fmt::format("expected {}{}, got {}{}", describe(attribute.kind),
                                       isBool || meant ? "" : ", or one that is repeated such as 7x3",
                                       shownQuoted(word.text), meant ? "; write " + meant->number + meant->more : ""));
        }
        attribute.runs.push_back({value.value_or(std::uint64_t{0}), 1});
        ++attribute.events;
    }

    // Lets the last value stand for so many events.
    void repeat(std::size_t times, const Word& word, Attribute& attribute) {
        if (times == 0 || times > SeriesReader::kMostEvents || attribute.runs.back().events > 1) {
            check.complain(word.place, fmt::format("a value is repeated once, from 1 to {} times, not as in {}",
                                                   SeriesReader::kMostEvents, shownQuoted(word.text)));
            return;
        }
        attribute.events += times - attribute.runs.back().events;
        attribute.runs.back().events = times;
    }

    const DocumentText& document;
    StrictJson& check;
    std::vector<Attribute> attributes;
};

// Returns how many events have those attributes. If these do not agree, complains and returns nothing.
std::optional<std::size_t> lengthOf(const std::vector<Attribute>& attributes, StrictJson& check) {
    const Attribute* first = nullptr;
    for (const Attribute& each : attributes) {
        if (each.events <= 1) {
            continue;
        }
        if (first == nullptr) {
            first = &each;
        } else if (each.events != first->events) {
            check.complain(each.place, fmt::format("has {} values, but {} has {}; an attribute has one value for all "
                                                   "events, or as many as the others",
                                                   each.events, shownQuoted(first->name), first->events));
            return std::nullopt;
        }
    }
    return first == nullptr ? 1 : first->events;
}

void addTo(AttributeSet& set, const std::string& name, const Value& value) {
    std::visit(
        [&](const auto& given) {
            using Given = std::decay_t<decltype(given)>;
            set.add<std::conditional_t<std::is_same_v<Given, std::string>, std::string_view, Given>>(name, given);
        },
        value);
}

void sort(AttributeSet& set) {
    set.sort<std::uint64_t>();
    set.sort<std::int64_t>();
    set.sort<double>();
    set.sort<bool>();
    set.sort<std::string_view>();
}

// Adds the numbers that the library's actions read of such events, as far as they are not there.
void addNeeds(std::vector<Attribute>& attributes, EventType type) {
    for (const KnownAction& action : kActions) {
        for (const ActionNeed& need : action.needs) {
            const bool isThere = std::ranges::count(attributes, need.attribute, &Attribute::name) > 0;
            const auto zero = need.kind == AttributeKind::String ? std::nullopt : valueOf(need.kind, "0");
            if (zero && !isThere && Catalogue::builtIn().promises(type, need.attribute, need.kind)) {
                attributes.push_back({std::string(need.attribute), need.kind, {}, {{*zero, 1}}, 1});
            }
        }
    }
}

// Returns the type of the events, or nothing if it is none.
std::optional<EventType> typeOf(const Json::Value& json, const std::string& path, StrictJson& check) {
    const auto name = check.requiredText(json, "event", path);
    const auto type = name ? kEventTypeNames.reverseLookup(*name) : std::nullopt;
    if (name && !type) {
        check.complain(json["event"], StrictJson::member(path, "event"),
                       "unknown event " + shownQuoted(*name) + suggestion(*name, kEventNames));
    }
    if (type == EventType::Timeout) {
        check.hasMember(json, "timeout_id", path);
    } else if (type && json.isMember("timeout_id")) {
        check.complain(json["timeout_id"], StrictJson::member(path, "timeout_id"), "only a Timeout event has one");
    }
    return type;
}

// Returns how many bytes the names and the texts of so many events have.
std::size_t bytesOf(const std::vector<Attribute>& attributes, std::size_t length) {
    std::size_t bytes = 0;
    for (const Attribute& each : attributes) {
        bytes += each.name.size() * length;
        for (const Run& run : each.runs) {
            const std::string* const text = std::get_if<std::string>(&run.value);
            bytes += text == nullptr ? 0 : text->size() * (each.events == 1 ? length : run.events);
        }
    }
    return bytes;
}

// Gives the values of an attribute to the events, of which the first one is `begin`.
void distribute(const Attribute& attribute, std::vector<EventRecord>& events, std::size_t begin) {
    const std::size_t perRun = attribute.events == 1 ? events.size() - begin : 0;  // one value is that of all events
    for (const Run& run : attribute.runs) {
        const std::size_t end = begin + std::max(run.events, perRun);
        for (; begin < end; ++begin) {
            addTo(events[begin].attributes, attribute.name, run.value);
        }
    }
}

}  // namespace

std::vector<EventRecord> SeriesReader::read(const Json::Value& json, const std::string& path) {
    std::vector<EventRecord> events;
    if (!json.isArray()) {
        readOne(json, path, events);
    } else if (json.empty()) {
        check.complain(json, path, "there is no series");
    } else {
        StrictJson::forEach(json, path, [&](const auto& each, const auto& place) { readOne(each, place, events); });
    }
    return events;
}

void SeriesReader::readOne(const Json::Value& json, const std::string& path, std::vector<EventRecord>& events) {
    if (!json.isObject()) {
        check.complainOfKind(json, path, "an object that tells a series of events");
        return;
    }
    constexpr auto kLimits = std::numeric_limits<std::int64_t>();
    EventRecord record;
    record.timeoutId = check.optionalInteger(json, "timeout_id", path, kLimits.min(), kLimits.max());
    const auto pause = check.optionalInteger(json, "every_ms", path, 0, kMostPause);
    const auto type = typeOf(json, path, check);
    if (!type) {
        return;
    }
    record.type = *type;
    std::vector<Attribute> attributes = AttributeReader(document, check).read(json, path, *type);
    const std::size_t length = lengthOf(attributes, check).value_or(0);
    if (length > kMostEvents - count) {
        check.complain(json, path, fmt::format("the series of a file have at most {} events together", kMostEvents));
        return;
    }
    bytes += bytesOf(attributes, length);
    if (bytes > kMostBytes) {
        check.complain(json, path, fmt::format("the series of a file have at most {} MB of texts", kMostBytes >> 20));
        return;
    }
    count += length;
    addNeeds(attributes, *type);
    const std::size_t begin = events.size();
    for (std::size_t index = 0; index < length; ++index) {
        if (pause) {
            record.timeMs = events.empty() ? 0 : events.back().timeMs.value_or(0) + *pause;
        }
        events.push_back(record);
    }
    if (length > 0) {
        for (const Attribute& each : attributes) {
            distribute(each, events, begin);
        }
    }
    std::for_each(events.begin() + static_cast<std::ptrdiff_t>(begin), events.end(),
                  [](EventRecord& each) { sort(each.attributes); });
}

}  // namespace Brenta::OS::VIG::Tool
