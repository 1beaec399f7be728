#include "tools/vig/check/CatalogueCommand.h"

#include <cerrno>

#include "tools/vig/check/Catalogue.h"
#include "tools/vig/events/EventReader.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

std::optional<int> learnFrom(const std::string& events, const Console& console, const Interruption& interruption,
                             Catalogue& catalogue) {
    const Descriptor file = openEvents(events, console);
    if (!file.isOpen()) {
        if (interruption.requested()) {
            return kExitInterrupted;
        }
        console.complain(whyEventsNotOpened(events, errno));
        return kExitUnusable;
    }
    EventReader reader(file.get(), nameOfEvents(events), interruption, [] {});
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

int catalogue(const CatalogueOptions& options, const Console& console, const Interruption& interruption) {
    Catalogue learned;
    if (const auto status = learnFrom(options.events, console, interruption, learned)) {
        return *status;
    }
    Output output(console.out);
    output.write(learned.text());
    return console.finish(output, kExitDone);
}

}  // namespace Brenta::OS::VIG::Tool
