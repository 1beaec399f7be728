#include "tools/vig/test/TestFile.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <limits>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "tools/vig/document/DocumentText.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/document/StrictJson.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/events/EventReader.h"
#include "tools/vig/events/LineReader.h"
#include "tools/vig/events/RecordParser.h"
#include "tools/vig/findings/RefusalSearch.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/FileText.h"
#include "tools/vig/test/Series.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/PriorityName.h"
#include "tools/vig/words/Text.h"
#include "vig/EventTypeNames.h"
#include "vig/parsers/FilterParser.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using PropertyKey = std::pair<Property::Kind, std::string_view>;

constexpr PropertyKey kKinds[] = {{Property::Kind::TriggerOnlyIf, "trigger_only_if"},
                                  {Property::Kind::BetweenTriggers, "between_triggers"},
                                  {Property::Kind::AtMost, "at_most"},
                                  {Property::Kind::CanReach, "can_reach"},
                                  {Property::Kind::CannotReach, "cannot_reach"}};

class TestFileReader {
  public:
    TestFileReader(const DocumentText& document, const Draws& draws, const Interruption& interruption,
                   std::vector<std::string>& errors)
        : document(document),
          draws(draws),
          interruption(interruption),
          errors(errors),
          isStrict(errors.empty()),
          check(document, errors),
          series(document, check),
          folder(std::filesystem::path(document.source().name()).parent_path()) {}

    TestFile read() {
        TestFile file{document.source().name(), {}, {}, {}, {}};
        const Json::Value& root = document.root();
        if (root.isObject() && root.isMember("configs") && !root.isMember("rules")) {
            check.complain(root, "", "is a rule document, which a file of tests names under \"rules\"");
            return file;
        }
        // Editors find the schema by "$schema".
        if (!check.isObject(root, "", {"rules", "tests", "properties", "$schema"})) {
            return file;
        }
        if (check.hasMember(root, "rules", "")) {
            file.rules = fileAt(root["rules"], "rules").value_or("");
        }
        if (!root.isMember("tests") && !root.isMember("properties") && !check.isMisspelt("", "tests") &&
            !check.isMisspelt("", "properties")) {
            check.complain(root, "", "neither \"tests\" nor \"properties\" are there");
        }
        someOf(root, "tests", "", "there is no test",
               [&](const auto& each, const auto& place) { keep(file.tests, testCase(each, place)); });
        someOf(root, "properties", "", "there is no property",
               [&](const auto& each, const auto& place) { keep(file.properties, property(each, place)); });
        for (const auto& [name, events] : eventFiles) {
            file.eventFiles.push_back(name);
        }
        return file;
    }

  private:
    // Of a file with mistakes no test runs, and what would be kept of each mistake is much larger than its text.
    template <typename Value>
    void keep(std::vector<Value>& values, Value value) {
        if (errors.empty()) {
            values.push_back(std::move(value));
        }
    }

    // Calls `visit` with each element of an array, if the object has one of that name, and with its path.
    void forEachOf(const Json::Value& object, const std::string& key, const std::string& path, const auto& visit) {
        const std::string place = StrictJson::member(path, key);
        if (object.isMember(key) && check.isArray(object[key], place)) {
            StrictJson::forEach(object[key], place, visit);
        }
    }

    // Does the same, and complains of an array without elements.
    void someOf(const Json::Value& object, const std::string& key, const std::string& path, const std::string& ifNone,
                const auto& visit) {
        forEachOf(object, key, path, visit);
        if (object.isMember(key) && object[key].isArray() && object[key].empty()) {
            check.complain(object[key], StrictJson::member(path, key), ifNone);
        }
    }

    // Returns the name, which no other test or property has.
    std::string uniqueName(const Json::Value& json, const std::string& path, const std::string& what) {
        std::string name = check.requiredText(json, "name", path).value_or("");
        if (json["name"].isString() && !names.insert(name).second) {
            check.complain(json["name"], StrictJson::member(path, "name"),
                           "there is another " + what + " " + shownQuoted(name));
        }
        return name;
    }

    // Returns the path of a file that the value names. If it cannot be read, complains and returns nothing.
    std::optional<std::string> fileAt(const Json::Value& json, const std::string& path) {
        const auto name = check.text(json, path);
        if (!name) {
            return std::nullopt;
        }
        std::string found = (folder / *name).string();
        const std::string problem = name->empty() ? "there is no name" : whyUnreadable(found);
        if (problem.empty()) {
            return found;
        }
        const bool isElsewhere = found != *name && whyUnreadable(*name).empty();
        check.complain(json, path,
                       (name->empty() ? "" : shownName(found) + ": ") + problem +
                           (isElsewhere ? "; paths are relative to the file of tests" : ""));
        return std::nullopt;
    }

    std::size_t lineOf(const Json::Value& json) const {
        return document.source().positionOf(document.placeOf(json, {}).begin).line;
    }

    TestCase testCase(const Json::Value& json, const std::string& path) {
        TestCase test;
        if (!check.isObject(json, path, {"name", "events", "series", "seed", "draws", "context", "expect"})) {
            return test;
        }
        test.line = lineOf(json);
        test.name = uniqueName(json, path, "test");
        test.draws = drawsOf(json, path);
        test.events = eventsOf(json, path);
        if (json.isMember("context")) {
            test.context = context(json["context"], StrictJson::member(path, "context"));
        }
        if (check.hasMember(json, "expect", path)) {
            test.expect = expectation(json["expect"], StrictJson::member(path, "expect"));
        }
        return test;
    }

    Draws drawsOf(const Json::Value& json, const std::string& path) {
        const std::string place = StrictJson::member(path, "draws");
        if (json.isMember("seed") && json.isMember("draws")) {
            check.complain(json["draws"], place, "not together with \"seed\"");
        }
        constexpr std::int64_t kMostSeed = std::numeric_limits<std::uint32_t>::max();
        if (const auto seed = check.optionalInteger(json, "seed", path, 0, kMostSeed)) {
            return {static_cast<std::uint32_t>(*seed)};
        }
        if (!json.isMember("draws")) {
            return draws;
        }
        Draws own;
        someOf(json, "draws", path, "there is no draw", [&](const Json::Value& each, const std::string& placeOfOne) {
            own.numbers.push_back(each.isNumeric() ? each.asDouble() : -1);
            if (!Draws::canBe(own.numbers.back())) {
                check.complain(each, placeOfOne, "expected " + std::string(Draws::NUMBER));
            }
        });
        return own;
    }

    TestEvents eventsOf(const Json::Value& test, const std::string& path) {
        const auto events = std::make_shared<std::vector<EventRecord>>();
        const std::string place = StrictJson::member(path, "events");
        if (test.isMember("series")) {
            const std::string placeOfSeries = StrictJson::member(path, "series");
            if (test.isMember("events")) {
                check.complain(test["series"], placeOfSeries, "not together with \"events\"");
            }
            *events = series.read(test["series"], placeOfSeries);
        } else if (!check.isMisspelt(path, "series") && check.hasMember(test, "events", path)) {
            const Json::Value& json = test["events"];
            if (json.isString()) {
                return eventsOfFile(json, place);
            }
            if (!json.isArray()) {
                check.complainOfKind(json, place, "an array of event records or the name of a file of them");
                return events;
            }
            OneDevice device;
            StrictJson::forEach(json, place, [&](const auto& each, const auto& placeOfOne) {
                const Place range = document.placeOf(each, placeOfOne);
                const std::string text = document.source().text().substr(range.begin, range.end - range.begin);
                EventRecord event = record(text, each, placeOfOne);
                if (!device.accepts(event)) {
                    check.complain(each, placeOfOne, device.mistakeIn(event));
                } else if (!event.isEnd) {
                    keep(*events, std::move(event));
                }
            });
        }
        return events;
    }

    TestEvents eventsOfFile(const Json::Value& json, const std::string& path) {
        const auto events = std::make_shared<std::vector<EventRecord>>();
        const auto name = fileAt(json, path);
        if (!name) {
            return events;
        }
        if (const auto known = eventFiles.find(*name); known != eventFiles.end()) {
            return known->second;
        }
        const Descriptor file(open(name->c_str(), O_RDONLY | O_CLOEXEC));
        if (!file.isOpen()) {
            check.complain(json, path, shownName(*name) + ": " + systemError(errno));
            return events;
        }
        eventFiles.emplace(*name, events);
        EventReader reader(file.get(), *name, EventReader::Devices::One, interruption, [] {});
        auto status = reader.next();
        for (; status == EventReader::Status::Record; status = reader.next()) {
            events->push_back(reader.record());
        }
        if (status == EventReader::Status::Failed) {
            check.add(json, reader.error());
        }
        return events;
    }

    EventRecord record(std::string json, const Json::Value& at, const std::string& path) {
        if (!isStrict) {
            return {};
        }
        const std::size_t size = json.size();
        json += "\n" + std::string(LineReader::PADDING, ' ');
        const EventRecord* const read = records.parse(std::string_view(json).substr(0, size));
        if (read == nullptr) {
            check.complain(at, path, records.error());
            return {};
        }
        return *read;
    }

    // Reads the attributes of a record without its event.
    AttributeSet context(const Json::Value& json, const std::string& path) {
        const StrictJson::Keys kinds(kKindNames.begin(), kKindNames.end());
        if (!check.isObject(json, path, kinds) || !StrictJson::hasOnly(json, kinds)) {
            return {};
        }
        const Place range = document.placeOf(json, path);
        const std::string attributes = document.source().text().substr(range.begin + 1, range.end - range.begin - 1);
        return record((json.empty() ? R"({"event":"Test")" : R"({"event":"Test",)") + attributes, json, path)
            .attributes;
    }

    Property property(const Json::Value& json, const std::string& path) {
        Property property;
        StrictJson::Keys keys = {"name", "config", "context"};
        for (const auto& [kind, key] : kKinds) {
            keys.push_back(key);
        }
        if (!check.isObject(json, path, keys)) {
            return property;
        }
        property.line = lineOf(json);
        property.name = uniqueName(json, path, "test or property");
        property.config = check.optionalInteger(json, "config", path, std::numeric_limits<std::int64_t>::min(),
                                                std::numeric_limits<std::int64_t>::max());
        if (json.isMember("context")) {
            property.context = context(json["context"], StrictJson::member(path, "context"));
        }
        std::vector<std::pair<Property::Kind, std::string>> given;
        for (const auto& [kind, key] : kKinds) {
            if (json.isMember(std::string(key))) {
                given.emplace_back(kind, key);
            }
        }
        const bool isMisspelt = std::ranges::any_of(
            kKinds, [&](const auto& each) { return check.isMisspelt(path, std::string(each.second)); });
        if (given.empty() && isMisspelt) {
            return property;
        }
        if (given.size() != 1) {
            const auto render = [](const auto& each) { return inQuotes(each.second); };
            check.complain(json, path, "expected exactly one of " + joined(kKinds, ", ", render));
            return property;
        }
        const auto& [kind, key] = given.front();
        property.kind = kind;
        readDemand(json, key, path, property);
        return property;
    }

    void readDemand(const Json::Value& json, const std::string& key, const std::string& path, Property& property) {
        const std::string place = StrictJson::member(path, key);
        const auto keepFilter = [&](const Json::Value& each, const std::string& placeOfOne) {
            if (auto filter = propertyFilter(each, placeOfOne)) {
                keep(property.filters, std::move(*filter));
            }
        };
        switch (property.kind) {
            case Property::Kind::TriggerOnlyIf:
                return someOf(json, key, path, "there is no filter", keepFilter);
            case Property::Kind::BetweenTriggers:
                return forEachOf(json, key, path, keepFilter);
            case Property::Kind::AtMost: {
                constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
                const Json::Value& limit = json[key];
                if (check.isObject(limit, place, {"triggers", "events"})) {
                    check.hasMember(limit, "triggers", place);
                    property.triggers = static_cast<std::uint64_t>(
                        check.optionalInteger(limit, "triggers", place, 0, kMost).value_or(0));
                    property.events = check.optionalInteger(limit, "events", place, 1, kMost);
                }
                return;
            }
            case Property::Kind::CanReach:
            case Property::Kind::CannotReach:
                break;
        }
        property.states = states(json[key], place);
        if (json[key].isObject() && json[key].empty()) {
            check.complain(json[key], place, "there is no state");
        }
        if (json.isMember("config")) {
            check.complain(json["config"], StrictJson::member(path, "config"),
                           "not together with " + inQuotes(key) + ", which says it itself");
        }
    }

    // Reads the filter as the library does, and what a property's may have besides. If it is none, complains and
    // returns nothing.
    std::optional<PropertyFilter> propertyFilter(const Json::Value& json, const std::string& path) {
        if (!check.isObject(json, path, {"operator", "value_type", "operand1", "operand2", "event"})) {
            return std::nullopt;
        }
        PropertyFilter filter{};
        if (const auto event = check.optionalText(json, "event", path)) {
            filter.event = kEventTypeNames.reverseLookup(event->c_str());
            if (!filter.event) {
                check.complain(json["event"], StrictJson::member(path, "event"),
                               "unknown event " + shownQuoted(*event) + suggestion(*event, kEventNames));
            }
        }
        bool isWhole = !check.isMisspelt(path, "operator") && !check.isMisspelt(path, "value_type");
        for (const std::string key : {"operand1", "operand2"}) {
            const std::string place = StrictJson::member(path, key);
            isWhole = isWhole && !check.isMisspelt(path, key);
            if (!json[key].isObject()) {
                continue;
            }
            check.isObject(json[key], place, {"type", "value"});
            isWhole = isWhole && !check.isMisspelt(place, "type") && !check.isMisspelt(place, "value");
            if (json[key]["type"] == "function") {
                check.complain(json[key], place, "the filter of a property has no function");
                isWhole = false;
            }
        }
        if (!isWhole) {
            return std::nullopt;
        }
        std::vector<Finding> refusals;
        searchFilter(document, json, path, registry, refusals);
        for (const Finding& each : refusals) {
            check.complain(each.place, each.message + (each.hint.empty() ? "" : "; ") + each.hint);
        }
        if (!errors.empty()) {
            return std::nullopt;
        }
        filter.model = filterModelOf(document, json, path);
        filter.model.json = nullptr;
        filter.filter = _parseFilter(json, registry);
        return filter;
    }

    Expectation expectation(const Json::Value& json, const std::string& path) {
        Expectation expected;
        if (!check.isObject(json, path, {"triggers", "log", "states", "moves"})) {
            return expected;
        }
        forEachOf(json, "triggers", path,
                  [&](const auto& each, const auto& place) { keep(expected.triggers, trigger(each, place)); });
        forEachOf(json, "log", path,
                  [&](const auto& each, const auto& place) { keep(expected.logs, log(each, place)); });
        if (json.isMember("states")) {
            expected.states = states(json["states"], StrictJson::member(path, "states"));
        }
        expected.moves = check.optionalInteger(json, "moves", path, 0, std::numeric_limits<std::int64_t>::max());
        return expected;
    }

    ExpectedTrigger trigger(const Json::Value& json, const std::string& path) {
        ExpectedTrigger expected;
        if (!check.isObject(json, path, {"name", "process", "config", "event", "metadata", "metadata_contains"})) {
            return expected;
        }
        constexpr auto kLimits = std::numeric_limits<std::int64_t>();
        expected.name = check.optionalText(json, "name", path);
        expected.process = check.optionalText(json, "process", path);
        expected.config = check.optionalInteger(json, "config", path, kLimits.min(), kLimits.max());
        expected.event = check.optionalInteger(json, "event", path, 0, kLimits.max());
        if (json.isMember("metadata")) {
            expected.metadata = check.texts(json["metadata"], StrictJson::member(path, "metadata"));
        }
        if (json.isMember("metadata_contains")) {
            expected.metadataContains =
                check.texts(json["metadata_contains"], StrictJson::member(path, "metadata_contains"));
        }
        return expected;
    }

    ExpectedLog log(const Json::Value& json, const std::string& path) {
        if (json.isString()) {
            return {check.text(json, path).value_or(""), std::nullopt};
        }
        if (!check.isObject(json, path, {"message", "priority"})) {
            return {};
        }
        ExpectedLog expected{check.requiredText(json, "message", path).value_or(""),
                             check.optionalText(json, "priority", path)};
        StrictJson::Keys priorities;
        for (int each = ANDROID_LOG_VERBOSE; each <= ANDROID_LOG_FATAL; ++each) {
            priorities.push_back(priorityName(each));
        }
        const std::string given = expected.priority.value_or("");
        if (expected.priority && std::ranges::find(priorities, given) == priorities.end()) {
            check.complain(json["priority"], StrictJson::member(path, "priority"),
                           "unknown priority " + shownQuoted(given) + suggestion(given, priorities));
        }
        return expected;
    }

    std::vector<ExpectedState> states(const Json::Value& json, const std::string& path) {
        std::vector<ExpectedState> expected;
        if (!json.isObject()) {
            check.complainOfKind(json, path, "an object");
            return expected;
        }
        for (const std::string& key : json.getMemberNames()) {
            std::int64_t id = 0;
            const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), id);
            if (error != std::errc() || end != key.data() + key.size()) {
                check.complain(json[key], path, "expected the id of a configuration as key, got " + shownQuoted(key));
            }
            expected.push_back({id, check.text(json[key], StrictJson::member(path, key)).value_or("")});
        }
        return expected;
    }

    const DocumentText& document;
    const Draws& draws;
    const Interruption& interruption;
    std::vector<std::string>& errors;
    const bool isStrict;  // event records and contexts are read from the text, and otherwise not at all
    StrictJson check;
    SeriesReader series;
    const std::filesystem::path folder;
    const VIGParserConfig registry = libraryRegistry();
    RecordParser records;
    std::set<std::string> names;
    std::map<std::string, TestEvents> eventFiles;  // by path; several tests may share one
};

}  // namespace

std::optional<TestFile> readTestFile(const std::string& path, const Draws& draws, const Interruption& interruption,
                                     std::vector<std::string>& errors) {
    std::string problem;
    auto content = readFile(path, interruption, problem);
    if (!content) {
        errors.push_back("vig: error: " + nameOfInput(path) + ": " + problem);
        return std::nullopt;
    }
    const DocumentText document(nameOfInput(path), std::move(*content));
    std::vector<std::string> ofFile = StrictJson::mistakesIn(document);
    if (document.report()) {
        errors.insert(errors.end(), ofFile.begin(), ofFile.end());
        return std::nullopt;
    }
    TestFile file = TestFileReader(document, draws, interruption, ofFile).read();
    errors.insert(errors.end(), ofFile.begin(), ofFile.end());
    return ofFile.empty() ? std::optional(std::move(file)) : std::nullopt;
}

}  // namespace Brenta::OS::VIG::Tool
