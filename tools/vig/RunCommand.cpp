#include "tools/vig/RunCommand.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>

#include "tools/vig/Descriptor.h"
#include "tools/vig/EventReader.h"
#include "tools/vig/Progress.h"
#include "tools/vig/Text.h"

namespace tool {

namespace {

// In bytes, 0 if it is not known before the end.
std::uint64_t sizeOf(int file) {
    struct stat status = {};
    const bool known = fstat(file, &status) == 0 && S_ISREG(status.st_mode);
    return known ? static_cast<std::uint64_t>(status.st_size) : 0;
}

// Returns the status of the last read.
EventReader::Status offerAll(EventReader& reader, RuleRun& ruleRun, Progress& progress) {
    RuleSession& session = ruleRun.session();
    EventRecord record;
    while (!ruleRun.mustStop()) {
        const auto status = reader.next(record);
        if (status != EventReader::Status::Record) {
            return status;
        }
        session.offer(record);
        progress.update(session.eventCount(), reader.bytesRead());
    }
    return EventReader::Status::Interrupted;
}

}  // namespace

int replay(const RunOptions& options, const Console& console, const Interruption& interruption, Trace* trace) {
    const bool fromInput = options.events == "-";
    const Descriptor file(fromInput ? dup(console.in) : open(options.events.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) {
        if (interruption.requested()) {
            return kExitInterrupted;
        }
        console.complain((fromInput ? "standard input" : options.events) + ": " + systemError(errno));
        return kExitUnusable;
    }
    RuleRun ruleRun(options, console, interruption);
    if (trace != nullptr) {
        ruleRun.observe(*trace);
    }
    if (const auto status = ruleRun.begin(RuleSession::Changes::Ignore)) {
        return *status;
    }
    Progress progress(console.err, sizeOf(file.get()));
    ruleRun.output().beforeWriting([&] { progress.clear(); });
    EventReader reader(file.get(), fromInput ? "<stdin>" : options.events, interruption, [&] {
        ruleRun.output().flush();
        progress.showIfDue(ruleRun.session().eventCount(), reader.bytesRead());
    });
    const auto status = offerAll(reader, ruleRun, progress);
    progress.clear();
    if (status == EventReader::Status::Failed) {
        ruleRun.complainAfterOutput(reader.error());
        return kExitUnusable;
    }
    return ruleRun.finish(interruption.requested() ? kExitInterrupted : kExitDone, std::nullopt);
}

int run(const RunOptions& options, const Console& console, const Interruption& interruption) {
    return replay(options, console, interruption, nullptr);
}

}  // namespace tool
