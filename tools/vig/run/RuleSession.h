#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/MachineGroup.h"
#include "tools/vig/run/PlatformServices.h"
#include "tools/vig/run/RuleDocument.h"
#include "tools/vig/trace/Report.h"
#include "tools/vig/trace/Tracer.h"

namespace Brenta::OS::VIG::Tool {

// The machines of a rule document at work: started when the document is delivered, offered one event after the other,
// with everything that they do in the report. Used on one thread; one object at a time.
class RuleSession final {
  public:
    enum class Loading { Done, Refused, Unreadable, Interrupted };
    enum class Changes { Ignore, Follow };

    // `seed` is that of the random function. Every machine's context has the attributes given. `trace`, which may be
    // null, is told what the machines decide; it changes nothing of what they do. It and the report must outlive the
    // session.
    RuleSession(std::string rulesPath, std::uint32_t seed, AttributeSet contextAttributes, Report& target,
                Trace* trace);
    RuleSession(const RuleSession&) = delete;
    RuleSession& operator=(const RuleSession&) = delete;

    // Waits for the document and starts its machines. `interruption` ends the waiting.
    Loading load(Changes later, const Interruption& interruption);

    // The same without starting the machines, for whoever wants only the document.
    Loading receive(Changes later, const Interruption& interruption);

    const AttributeSet& contextAttributes() const { return context; }

    // Why the latest document was refused or cannot be read; empty if it was accepted.
    const std::string& problem() const { return reason; }

    // Readable while a changed document waits for update(), if changes are followed.
    int changesDescriptor() const { return document->descriptor(); }

    // Reports what other threads have logged. Puts the machines of a changed document, if there is one, in the place
    // of the previous ones: none if it is refused. Returns whether there was one.
    bool update();

    void offer(const EventRecord& record) { group.offer(record); }

    std::uint64_t eventCount() const { return group.eventCount(); }

    // Of everything since the beginning; `sampling` is empty.
    Summary summary() const { return group.summary(); }

  private:
    bool copyPipe(const Interruption& interruption);
    void adopt(Delivery delivery);

    const std::string path;
    const AttributeSet context;
    Report& report;
    const std::unique_ptr<Tracer> tracer;  // null if nobody wants a trace
    MachineGroup group;
    PlatformServices services;
    std::optional<Descriptor> pipeCopy;  // in memory, if the document comes by a pipe
    std::optional<RuleDocument> document;
    std::string reason;
    bool isGone = false;  // the document can no longer be read
};

}  // namespace Brenta::OS::VIG::Tool
