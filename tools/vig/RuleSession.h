#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "rulesengine/FiniteStateMachine.h"
#include "tools/vig/AttributeSet.h"
#include "tools/vig/EventRecord.h"
#include "tools/vig/Interruption.h"
#include "tools/vig/PlatformServices.h"
#include "tools/vig/Report.h"
#include "tools/vig/RuleDocument.h"
#include "tools/vig/trace/Tracer.h"

namespace tool {

// The machines of a rule document at work: started when the document is delivered, offered one event after the other,
// with everything that they do in the report. Used on one thread; one object at a time.
class RuleSession final : private PlatformServices::Receiver {
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

    // Why the latest document was refused or cannot be read; empty if it was accepted.
    const std::string& problem() const { return reason; }

    // Readable while a changed document waits for update(), if changes are followed.
    int changesDescriptor() const { return document->descriptor(); }

    // Reports what other threads have logged. Puts the machines of a changed document, if there is one, in the place
    // of the previous ones: none if it is refused. Returns whether there was one.
    bool update();

    void offer(const EventRecord& record);

    std::uint64_t eventCount() const { return events; }

    // Of everything since the beginning; `sampling` is empty.
    Summary summary() const;

  private:
    struct Machine {
        Brenta::OS::RulesEngine::FiniteStateMachine* machine;
        MachineName name;
        std::int64_t payloadId;
        Brenta::OS::RulesEngine::State* state;  // as it has been reported
    };

    void onLog(int priority, std::string_view tag, std::string_view message) override;
    void onTrigger(const vendor::orlan::velora::TriggerContext& context) override;

    void adopt(Delivery delivery);
    void start();
    void drive(const Brenta::OS::RulesEngine::Event& event, std::optional<std::int64_t> timeMs);
    void reportMoves();

    const std::string path;
    const AttributeSet context;
    Report& report;
    PlatformServices services;
    std::optional<Tracer> tracer;
    std::optional<RuleDocument> document;
    std::vector<std::unique_ptr<Brenta::OS::VIG::VIGConfig>> configs;
    std::vector<Machine> machines;
    std::string reason;
    bool isGone = false;  // the document can no longer be read
    std::uint64_t events = 0;
    std::uint64_t triggers = 0;
    std::uint64_t current = 0;        // the event that is being offered
    const Machine* driven = nullptr;  // and the machine to which it is offered
};

}  // namespace tool
