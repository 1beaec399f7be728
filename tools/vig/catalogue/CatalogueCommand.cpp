#include "tools/vig/catalogue/CatalogueCommand.h"

#include <cerrno>
#include <utility>

#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/events/EventReader.h"
#include "tools/vig/io/Output.h"

namespace Brenta::OS::VIG::Tool {

std::optional<int> learnFrom(const std::string& events, const Console& console, const Interruption& interruption,
                             Catalogue& catalogue) {
    const Descriptor file = openEvents(events, console);
    if (!file.isOpen()) {
        if (interruption.requested()) {
            return kExitInterrupted;
        }
        console.say(whyEventsNotOpened(events, errno));
        return kExitUnusable;
    }
    EventReader reader(file.get(), nameOfEvents(events), EventReader::Devices::Any, interruption, [] {});
    switch (learnFrom(reader, catalogue)) {
        case EventReader::Status::Failed:
            console.say(reader.error());
            return kExitUnusable;
        case EventReader::Status::Interrupted:
            return kExitInterrupted;
        case EventReader::Status::Record:
        case EventReader::Status::End:
            break;
    }
    return std::nullopt;
}

std::optional<int> loadCatalogue(const std::string& file, const Console& console, const Interruption& interruption,
                                 Catalogue& catalogue) {
    if (file.empty()) {
        catalogue = Catalogue::builtIn();
        return std::nullopt;
    }
    std::vector<std::string> errors;
    auto read = Catalogue::readFrom(file, interruption, errors);
    if (interruption.requested()) {
        return kExitInterrupted;
    }
    if (!read) {
        for (const std::string& each : errors) {
            console.say(each);
        }
        return kExitUnusable;
    }
    catalogue = std::move(*read);
    return std::nullopt;
}

void addCatalogueFile(Verb& verb, std::string& file) {
    verb.name("--catalogue", file, "FILE",
              "The attributes of events and contexts, as `vig catalogue` prints them (default: what `vig watch`\n"
              "produces)");
}

int catalogue(const CatalogueOptions& options, const Console& console, const Interruption& interruption) {
    Catalogue learned;
    if (const auto status = learnFrom(options.events, console, interruption, learned)) {
        return *status;
    }
    Output output(console.out);
    output.write(learned.text());
    return console.finish(output, kExitDone);
}

constexpr const char* kHelp =
    R"(A catalogue tells which attributes the events of each type have, grouped by kind as in event records, and which
the machines' context has, which no recording shows. It is JSON to be edited by hand:
  {"events":{"ProcessMemoryHeartBeat":{"int64":["vmRssKB"]}},"context":{"int64":["limitKB"]}}
With "extends":"built-in" it adds to what the tool knows, else it stands in its place.

Example: what do the events of this machine have?
  vig watch rules.json --duration 10s --record trace.jsonl
  vig catalogue trace.jsonl > catalogue.json)";

void addCatalogue(CommandLine& commandLine, CatalogueOptions& options) {
    Verb verb = commandLine.addVerb("catalogue", "Prints which attributes the events of a recording have.", kHelp,
                                    catalogue, options);
    verb.argument("EVENTS", options.events, Verb::Need::Optional,
                  "The event records (default: -, which is standard input)");
}

}  // namespace Brenta::OS::VIG::Tool
