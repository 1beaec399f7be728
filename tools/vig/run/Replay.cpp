#include "tools/vig/run/Replay.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <string>

#include "tools/vig/events/EventReader.h"
#include "tools/vig/run/RunCommand.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// In bytes, 0 if it is not known before the end.
std::uint64_t sizeOf(int file) {
    struct stat status = {};
    const bool known = fstat(file, &status) == 0 && S_ISREG(status.st_mode);
    return known ? static_cast<std::uint64_t>(status.st_size) : 0;
}

}  // namespace

Replay::Replay(const RunOptions& runOptions, const Console& streams, const Interruption& interruptedBy)
    : options(runOptions),
      console(streams),
      interruption(interruptedBy),
      file(openEvents(options.events, console)),
      openError(errno),
      rules(options, console, interruption) {}

std::optional<int> Replay::begin() {
    if (file.isOpen()) {
        return rules.begin(RuleSession::Changes::Ignore);
    }
    if (interruption.requested()) {
        return kExitInterrupted;
    }
    console.complain(whyEventsNotOpened(options.events, openError));
    return kExitUnusable;
}

std::optional<int> Replay::offerAll() {
    Progress progress(console.err, sizeOf(file.get()));
    rules.output().beforeWriting([&] { progress.clear(); });
    EventReader reader(file.get(), nameOfEvents(options.events), interruption, [&] {
        rules.output().flush();
        progress.showIfDue(rules.session().eventCount(), reader.bytesRead());
    });
    const auto status = offerEach(reader, progress);
    progress.clear();
    rules.output().beforeWriting({});
    if (status != EventReader::Status::Failed) {
        return std::nullopt;
    }
    rules.complainAfterOutput(reader.error());
    return kExitUnusable;
}

// Returns the status of the last read.
EventReader::Status Replay::offerEach(EventReader& reader, Progress& progress) {
    RuleSession& session = rules.session();
    EventRecord record;
    while (!rules.mustStop()) {
        const auto status = reader.next(record);
        if (status != EventReader::Status::Record) {
            return status;
        }
        session.offer(record);
        progress.update(session.eventCount(), reader.bytesRead());
    }
    return EventReader::Status::Interrupted;
}

int Replay::finish() {
    return rules.finish(interruption.requested() ? kExitInterrupted : kExitDone, std::nullopt);
}

}  // namespace Brenta::OS::VIG::Tool
