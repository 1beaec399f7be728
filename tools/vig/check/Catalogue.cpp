#include "tools/vig/check/Catalogue.h"

#include <algorithm>
#include <utility>

#include "tools/vig/EventNames.h"
#include "tools/vig/FileText.h"
#include "tools/vig/NearestName.h"
#include "tools/vig/Text.h"
#include "tools/vig/check/ReaderErrors.h"
#include "vig/EventTypeNames.h"

namespace tool {

using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::VIG::kEventTypeNames;

namespace {

constexpr std::array<std::string_view, 3> kMembers = {"extends", "events", "context"};

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
    std::string kinds;
    for (std::size_t kind = 0; kind < kKindNames.size(); ++kind) {
        std::string names;
        for (const auto& [name, known] : attributes) {
            if (known.has(static_cast<AttributeKind>(kind))) {
                names += (names.empty() ? "" : ", ") + quoted(name);
            }
        }
        if (!names.empty()) {
            kinds +=
                (kinds.empty() ? "\n" : ",\n") + indentation + "  " + quoted(kKindNames[kind]) + ": [" + names + "]";
        }
    }
    return kinds.empty() ? "{}" : "{" + kinds + "\n" + indentation + "}";
}

}  // namespace

std::string KindSet::text() const {
    std::string names;
    for (std::size_t kind = 0; kind < kKindNames.size(); ++kind) {
        if (bits.test(kind)) {
            names += (names.empty() ? "" : " and ") + std::string(kKindNames[kind]);
        }
    }
    return names;
}

// Fills a catalogue from a document, up to the first thing that is wrong with it.
class Catalogue::Reader {
  public:
    Reader(const DocumentText& text, Catalogue& result) : document(text), catalogue(result) {}

    bool readAll() {
        const Json::Value& root = document.root();
        if (document.report()) {
            std::vector<Diagnostic> errors;
            appendReaderErrors(document, errors);
            return fail(errors.front().place.begin, errors.front().message);
        }
        return isObject(root, "") && hasOnly(root, "", kMembers) && readExtends(root) && readEvents(root) &&
               (!root.isMember("context") || readKinds(root["context"], "context", catalogue.contextAttributes));
    }

    std::string problem;

  private:
    bool readExtends(const Json::Value& root) {
        if (!root.isMember("extends")) {
            return true;
        }
        if (root["extends"] != "built-in") {
            return fail(root["extends"], "extends", "expected \"built-in\"");
        }
        catalogue = builtIn();
        return true;
    }

    bool readEvents(const Json::Value& root) {
        if (!root.isMember("events")) {
            return true;
        }
        const Json::Value& types = root["events"];
        if (!isObject(types, "events") || !hasOnly(types, "events", kEventNames)) {
            return false;
        }
        return std::ranges::all_of(types.getMemberNames(), [&](const std::string& name) {
            const EventType type = kEventTypeNames.reverseLookup(name.c_str()).value_or(EventType{});
            return readKinds(types[name], "events." + name, catalogue.events[type]);
        });
    }

    bool readKinds(const Json::Value& kinds, const std::string& path, CataloguedAttributes& attributes) {
        if (!isObject(kinds, path) || !hasOnly(kinds, path, kKindNames)) {
            return false;
        }
        for (std::size_t kind = 0; kind < kKindNames.size(); ++kind) {
            const std::string name(kKindNames[kind]);
            if (kinds.isMember(name) &&
                !readNames(kinds[name], path + "." + name, static_cast<AttributeKind>(kind), attributes)) {
                return false;
            }
        }
        return true;
    }

    bool readNames(const Json::Value& names, const std::string& path, AttributeKind kind,
                   CataloguedAttributes& attributes) {
        if (!names.isArray()) {
            return fail(names, path, "expected an array of attribute names");
        }
        for (Json::ArrayIndex index = 0; index < names.size(); ++index) {
            if (!names[index].isString()) {
                return fail(names[index], path + "[" + std::to_string(index) + "]", "expected an attribute's name");
            }
            attributes[names[index].asString()].add(kind);
        }
        return true;
    }

    bool isObject(const Json::Value& value, const std::string& path) {
        return value.isObject() || fail(value, path, "expected an object");
    }

    bool hasOnly(const Json::Value& object, const std::string& path, std::span<const std::string_view> known) {
        for (const std::string& name : object.getMemberNames()) {
            if (std::ranges::find(known, name) == known.end()) {
                return fail(
                    object[name], path,
                    (path == "events" ? "unknown event " : "unknown key ") + quoted(name) + suggestion(name, known));
            }
        }
        return true;
    }

    bool fail(const Json::Value& value, const std::string& path, const std::string& what) {
        return fail(document.placeOf(value, path).begin, path + (path.empty() ? "" : ": ") + what);
    }

    bool fail(std::size_t place, const std::string& what) {
        const auto [line, column] = document.source().positionOf(place);
        problem =
            document.source().name() + ":" + std::to_string(line) + ":" + std::to_string(column) + ": error: " + what;
        return false;
    }

    const DocumentText& document;
    Catalogue& catalogue;
};

Catalogue Catalogue::builtIn() {
    std::string problem;
    return read(DocumentText("built-in", kBuiltIn), problem).value_or(Catalogue());
}

std::optional<Catalogue> Catalogue::read(const DocumentText& document, std::string& problem) {
    Catalogue catalogue;
    Reader reader(document, catalogue);
    if (!reader.readAll()) {
        problem = std::move(reader.problem);
        return std::nullopt;
    }
    return catalogue;
}

std::optional<Catalogue> Catalogue::readFrom(const std::string& path, std::string& problem) {
    std::optional<std::string> content = readFile(path, problem);
    if (!content) {
        problem = "vig: error: " + path + ": " + problem;
        return std::nullopt;
    }
    return read(DocumentText(path, std::move(*content)), problem);
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
}

const CataloguedAttributes* Catalogue::find(EventType type) const {
    static const CataloguedAttributes kNone;
    const auto found = events.find(type);
    if (found != events.end()) {
        return &found->second;
    }
    return type == EventType::EnteringState ? &kNone : nullptr;
}

std::string Catalogue::text() const {
    std::string types;
    for (const auto& [type, name] : kEventTypeNames.pairs) {
        if (const auto known = events.find(type); known != events.end()) {
            types += (types.empty() ? "\n    " : ",\n    ") + quoted(name) + ": " + textOf(known->second, "    ");
        }
    }
    return "{\n  \"events\": {" + types + (types.empty() ? "" : "\n  ") +
           "},\n  \"context\": " + textOf(contextAttributes, "  ") + "\n}\n";
}

EventReader::Status learnFrom(EventReader& reader, Catalogue& catalogue) {
    EventRecord record;
    auto status = reader.next(record);
    while (status == EventReader::Status::Record) {
        catalogue.learn(record);
        status = reader.next(record);
    }
    return status;
}

}  // namespace tool
