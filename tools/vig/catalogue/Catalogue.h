#pragma once

#include <bitset>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "rulesengine/EventType.h"
#include "tools/vig/document/DocumentText.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/events/EventReader.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// It has the kinds under which an attribute is known: an Int64 and a Double of one name are two attributes.
class KindSet {
  public:
    bool isEmpty() const { return bits.none(); }
    bool has(AttributeKind kind) const { return bits.test(static_cast<std::size_t>(kind)); }
    void add(AttributeKind kind) { bits.set(static_cast<std::size_t>(kind)); }
    void add(KindSet kinds) { bits |= kinds.bits; }

    // Returns the kinds as in "int64" or "int64 and double".
    std::string text() const;

  private:
    std::bitset<kKindNames.size()> bits;
};

// It has the least and the greatest number that was recorded of an attribute.
struct RecordedRange {
    double least;
    double most;
};

using CataloguedAttributes = std::map<std::string, KindSet, std::less<>>;

// It says which attributes the events of each type have, and which the machines' contexts have.
class Catalogue {
  public:
    // It has what `vig watch` produces, which includes what the library's actions read. Its context is empty. It is
    // made once, and any thread may use it.
    static const Catalogue& builtIn();

    // Reads a document of the form of text(), which may also say that it extends the built-in one. Returns nothing,
    // with "catalogue.json:3:14: error: …" for each mistake in `errors`, if it is of another form.
    static std::optional<Catalogue> read(const DocumentText& document, std::vector<std::string>& errors);

    // Does the same with a file. If it cannot be read, `errors` say why. Returns nothing either if it was
    // interrupted.
    static std::optional<Catalogue> readFrom(const std::string& path, const Interruption& interruption,
                                             std::vector<std::string>& errors);

    // Adds the attributes that an event has, as far as they are not known, and their numbers.
    void learn(const EventRecord& record);

    // Returns null if nothing is known about events of the type. EnteringState events are known to have none.
    const CataloguedAttributes* find(RulesEngine::EventType type) const;

    const CataloguedAttributes& context() const { return contextAttributes; }

    // Tell whether events of the type, or the context, are known to have the attribute under that kind.
    // Returns the name of an event type that has an attribute of that name, if any has.
    std::optional<std::string_view> eventWith(const std::string& name) const;

    bool promises(RulesEngine::EventType type, std::string_view name, AttributeKind kind) const;
    bool promisesInContext(std::string_view name, AttributeKind kind) const;

    // Returns null if no number of the attribute was learned. The kind is Int64 or Double.
    const RecordedRange* recorded(RulesEngine::EventType type, std::string_view name, AttributeKind kind) const;

    // The catalogue as JSON that read() reads back to an equal one: the types in the order of the library's table,
    // the names in byte order.
    std::string text() const;

  private:
    class Filling;

    using Ranges = std::map<std::string, RecordedRange, std::less<>>;

    template <typename Number>
    void learnNumbers(const EventRecord& record, AttributeKind kind);

    std::map<RulesEngine::EventType, CataloguedAttributes> events;
    std::map<std::pair<RulesEngine::EventType, AttributeKind>, Ranges> numbers;
    CataloguedAttributes contextAttributes;
};

// Learns from all records that come. Returns the status of the last read.
EventReader::Status learnFrom(EventReader& reader, Catalogue& catalogue);

}  // namespace Brenta::OS::VIG::Tool
