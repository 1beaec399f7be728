#include "tools/vig/catalogue/Catalogue.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "tools/vig/document/StrictJson.h"
#include "tools/vig/io/FileText.h"
#include "tools/vig/words/Text.h"
#include "vig/EventTypeNames.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

constexpr const char* kBuiltIn = R"({
  "events": {
    "ProcessMemoryHeartBeat": { "int64": ["pid", "vmRssKB", "vmSwapKB"], "string": ["processName"] },
    "ProcessCpuHeartBeat": { "int64": ["pid"], "double": ["cpuAvgUtilization"], "string": ["processName"] },
    "SystemMemoryHeartBeat": {
      "int64": ["anonPagesKB", "buffersKB", "cachedKB", "dirtyKB", "mappedKB", "memAvailableKB", "memFreeKB",
                "memTotalKB", "shmemKB", "slabKB", "swapCachedKB", "swapFreeKB", "swapTotalKB"],
      "double": ["psiFullAvg10", "psiFullAvg300", "psiFullAvg60", "psiSomeAvg10", "psiSomeAvg300", "psiSomeAvg60"]
    },
    "ZramHeartBeat": {
      "uint64": ["hugePages", "hugePagesSinceBoot", "memLimitBytes", "memUsedMaxBytes", "memUsedTotalBytes",
                 "numCompressedDataBytes", "origDataBytes", "pagesCompacted", "samePages"],
      "string": ["device"]
    }
  }
})";

std::string textOf(const CataloguedAttributes& attributes, const std::string& indentation) {
    std::vector<std::string> kinds;
    for (std::size_t kind = 0; kind < kKindNames.size(); ++kind) {
        std::vector<std::string_view> names;
        for (const auto& [name, known] : attributes) {
            if (known.has(static_cast<AttributeKind>(kind))) {
                names.push_back(name);
            }
        }
        if (!names.empty()) {
            kinds.push_back(
                fmt::format("\n{}  {}: [{}]", indentation, inQuotes(kKindNames[kind]), joined(names, ", ", inQuotes)));
        }
    }
    return kinds.empty() ? "{}" : fmt::format("{{{}\n{}}}", fmt::join(kinds, ","), indentation);
}

bool haveKind(const CataloguedAttributes& attributes, std::string_view name, AttributeKind kind) {
    const auto found = attributes.find(name);
    return found != attributes.end() && found->second.has(kind);
}

}  // namespace

std::string KindSet::text() const {
    std::vector<std::string_view> names;
    for (std::size_t kind = 0; kind < kKindNames.size(); ++kind) {
        if (bits.test(kind)) {
            names.push_back(kKindNames[kind]);
        }
    }
    return fmt::format("{}", fmt::join(names, " and "));
}

// Fills a catalogue from a document, of which nothing may be ignored.
class Catalogue::Filling {
  public:
    Filling(const DocumentText& text, Catalogue& result, std::vector<std::string>& errors)
        : json(text, errors), catalogue(result) {}

    void readAll(const Json::Value& root) {
        if (!json.isObject(root, "", {"extends", "events", "context"})) {
            return;
        }
        if (const auto extended = json.optionalText(root, "extends", "")) {
            catalogue = builtIn();
            if (*extended != "built-in") {
                json.complain(root["extends"], "extends", "expected \"built-in\"");
            }
        }
        if (root.isMember("events")) {
            readEvents(root["events"]);
        }
        if (root.isMember("context")) {
            readKinds(root["context"], "context", catalogue.contextAttributes);
        }
    }

  private:
    void readEvents(const Json::Value& types) {
        if (!json.isObject(types, "events", {kEventNames.begin(), kEventNames.end()})) {
            return;
        }
        for (const std::string& name : types.getMemberNames()) {
            const EventType type = kEventTypeNames.reverseLookup(name).value_or(EventType{});
            readKinds(types[name], StrictJson::member("events", name), catalogue.events[type]);
        }
    }

    void readKinds(const Json::Value& kinds, const std::string& path, CataloguedAttributes& attributes) {
        if (!json.isObject(kinds, path, {kKindNames.begin(), kKindNames.end()})) {
            return;
        }
        for (std::size_t kind = 0; kind < kKindNames.size(); ++kind) {
            const std::string key(kKindNames[kind]);
            if (kinds.isMember(key)) {
                for (const std::string& name : json.texts(kinds[key], StrictJson::member(path, key))) {
                    attributes[name].add(static_cast<AttributeKind>(kind));
                }
            }
        }
    }

    StrictJson json;
    Catalogue& catalogue;
};

const Catalogue& Catalogue::builtIn() {
    static const Catalogue kMade = [] {
        std::vector<std::string> errors;
        return read(DocumentText("built-in", kBuiltIn), errors).value_or(Catalogue());
    }();
    return kMade;
}

std::optional<Catalogue> Catalogue::read(const DocumentText& document, std::vector<std::string>& errors) {
    Catalogue catalogue;
    errors = StrictJson::mistakesIn(document);
    if (errors.empty()) {
        Filling(document, catalogue, errors).readAll(document.root());
    }
    return errors.empty() ? std::optional(std::move(catalogue)) : std::nullopt;
}

std::optional<Catalogue> Catalogue::readFrom(const std::string& path, const Interruption& interruption,
                                             std::vector<std::string>& errors) {
    std::string problem;
    std::optional<std::string> content = readFile(path, interruption, problem);
    if (!content) {
        errors = {"vig: error: " + path + ": " + problem};
        return std::nullopt;
    }
    return read(DocumentText(path, std::move(*content)), errors);
}

void Catalogue::learn(const EventRecord& record) {
    CataloguedAttributes& attributes = events[record.type];
    for (std::size_t kind = 0; kind < kKindNames.size(); ++kind) {
        for (const std::string_view name : record.attributes.names(static_cast<AttributeKind>(kind))) {
            auto place = attributes.find(name);
            if (place == attributes.end()) {
                place = attributes.emplace(name, KindSet()).first;
            }
            place->second.add(static_cast<AttributeKind>(kind));
        }
    }
    learnNumbers<std::int64_t>(record, AttributeKind::Int64);
    learnNumbers<double>(record, AttributeKind::Double);
}

template <typename Number>
void Catalogue::learnNumbers(const EventRecord& record, AttributeKind kind) {
    auto& ranges = numbers[{record.type, kind}];
    for (const std::string_view name : record.attributes.names(kind)) {
        const auto number = static_cast<double>(record.attributes.find<Number>(name).value_or(0));
        const auto place = ranges.find(name);
        if (place == ranges.end()) {
            ranges.emplace(name, RecordedRange{number, number});
        } else {
            place->second = {std::min(place->second.least, number), std::max(place->second.most, number)};
        }
    }
}

const CataloguedAttributes* Catalogue::find(EventType type) const {
    static const CataloguedAttributes kNone;
    const auto found = events.find(type);
    if (found != events.end()) {
        return &found->second;
    }
    return type == EventType::EnteringState ? &kNone : nullptr;
}

bool Catalogue::promises(EventType type, std::string_view name, AttributeKind kind) const {
    const CataloguedAttributes* const known = find(type);
    return known != nullptr && haveKind(*known, name, kind);
}

std::optional<std::string_view> Catalogue::eventWith(const std::string& name) const {
    const auto has = [&](const auto& pair) {
        const CataloguedAttributes* const known = find(pair.first);
        return known != nullptr && known->contains(name);
    };
    const auto found = std::ranges::find_if(kEventTypeNames.pairs, has);
    return found == std::end(kEventTypeNames.pairs) ? std::nullopt : std::optional<std::string_view>(found->second);
}

bool Catalogue::promisesInContext(std::string_view name, AttributeKind kind) const {
    return haveKind(contextAttributes, name, kind);
}

const RecordedRange* Catalogue::recorded(EventType type, std::string_view name, AttributeKind kind) const {
    const auto ranges = numbers.find({type, kind});
    if (ranges == numbers.end()) {
        return nullptr;
    }
    const auto found = ranges->second.find(name);
    return found == ranges->second.end() ? nullptr : &found->second;
}

std::string Catalogue::text() const {
    std::vector<std::string> types;
    for (const auto& [type, name] : kEventTypeNames.pairs) {
        if (const auto known = events.find(type); known != events.end()) {
            types.push_back(fmt::format("\n    {}: {}", inQuotes(name), textOf(known->second, "    ")));
        }
    }
    return fmt::format("{{\n  \"events\": {{{}{}}},\n  \"context\": {}\n}}\n", fmt::join(types, ","),
                       types.empty() ? "" : "\n  ", textOf(contextAttributes, "  "));
}

EventReader::Status learnFrom(EventReader& reader, Catalogue& catalogue) {
    auto status = reader.next();
    while (status == EventReader::Status::Record) {
        if (!reader.record().isEnd) {
            catalogue.learn(reader.record());
        }
        status = reader.next();
    }
    return status;
}

}  // namespace Brenta::OS::VIG::Tool
