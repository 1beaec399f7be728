#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/Draws.h"
#include "tools/vig/run/MachineGroup.h"
#include "tools/vig/run/PlatformServices.h"
#include "tools/vig/run/RuleDocument.h"
#include "tools/vig/trace/Report.h"
#include "tools/vig/trace/Tracer.h"

namespace Brenta::OS::VIG::Tool {

// It has a rule document as it is delivered on a device, and its machines at work, with everything that they do in the
// report. The document is read once for each delivery: whoever wants to know more of it than its machines do asks for
// the very text that they were made of. Used on one thread; one object at a time.
class RuleSession final {
  public:
    enum class Loading { Done, Refused, Unreadable, Interrupted };
    enum class Changes { Ignore, Follow };

    // The machines of all deliveries make the draws one after the other. Every machine's context has the attributes
    // given. `trace`, which may be null, is told what the machines decide; it changes nothing of what they do. It and
    // the report must outlive the session.
    RuleSession(std::string rulesPath, const Draws& draws, AttributeSet contextAttributes, Report& report,
                Trace* trace);
    RuleSession(const RuleSession&) = delete;
    RuleSession& operator=(const RuleSession&) = delete;

    // Waits for the document. `interruption` ends the waiting.
    Loading load(Changes later, const Interruption& interruption);

    // REQUIRES: load() has returned Done.
    void start() { group.start(); }

    // Returns the latest document that was accepted. It lives until another one is, or the session ends. REQUIRES:
    // there is one.
    const DocumentModel& document();

    const AttributeSet& contextAttributes() const { return context; }

    // Returns why the latest document was refused or cannot be read; empty if it was accepted.
    const std::string& problem() const { return reason; }

    // Returns the latest document if it was refused, else nothing.
    const std::optional<DocumentText>& refused() const { return refusedText; }

    // The descriptor is readable while a changed document waits for update(), if changes are followed.
    int changesDescriptor() const { return deliveries->descriptor(); }

    // Reports what other threads have logged. Puts the machines of a changed document, if there is one, in the place
    // of the previous ones: none if it is refused. Returns whether there was one.
    bool update();

    MachineGroup& machines() { return group; }

  private:
    bool copyPipe(const Interruption& interruption);
    Loading adopt(Delivery delivery);

    const std::string path;
    const std::function<double()> draw;
    const AttributeSet context;
    Report& report;
    const std::unique_ptr<Tracer> tracer;  // null if nobody wants a trace
    std::string text;                      // of the accepted document, until `model` has it
    std::optional<DocumentModel> model;    // made when it is asked for
    MachineGroup group;
    PlatformServices services;
    std::optional<Descriptor> pipeCopy;  // in memory, if the document comes by a pipe or by standard input
    std::optional<RuleDocument> deliveries;
    std::string reason;
    std::optional<DocumentText> refusedText;
};

}  // namespace Brenta::OS::VIG::Tool
