#include "tools/vig/CatalogueCommand.h"

#include <cerrno>

#include "tools/vig/Catalogue.h"
#include "tools/vig/EventInput.h"
#include "tools/vig/Output.h"
#include "tools/vig/Text.h"

namespace tool {

int catalogue(const CatalogueOptions& options, const Console& console, const Interruption& interruption) {
    const bool fromInput = isStandardInput(options.events);
    const Descriptor file = openEvents(options.events, console);
    if (!file.isOpen()) {
        if (interruption.requested()) {
            return kExitInterrupted;
        }
        console.complain((fromInput ? "standard input" : options.events) + ": " + systemError(errno));
        return kExitUnusable;
    }
    EventReader reader(file.get(), fromInput ? "<stdin>" : options.events, interruption, [] {});
    Catalogue learned;
    switch (learnFrom(reader, learned)) {
        case EventReader::Status::Failed:
            console.say(reader.error());
            return kExitUnusable;
        case EventReader::Status::Interrupted:
            return kExitInterrupted;
        case EventReader::Status::Record:
        case EventReader::Status::End:
            break;
    }
    Output output(console.out);
    output.write(learned.text());
    output.flush();
    if (output.failed() && !output.readerIsGone()) {
        console.complain("standard output: " + systemError(output.failure()));
        return kExitUnusable;
    }
    return kExitDone;
}

}  // namespace tool
