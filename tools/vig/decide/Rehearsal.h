#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/vig/decide/Behaviour.h"
#include "tools/vig/document/RuleModel.h"
#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/run/MachineGroup.h"
#include "tools/vig/run/PlatformServices.h"
#include "tools/vig/trace/Report.h"
#include "tools/vig/trace/Trace.h"
#include "tools/vig/trace/Tracer.h"
#include "tools/vig/trace/Witness.h"

namespace Brenta::OS::VIG::Tool {

// So much effort costs an event that is offered to a machine in the library, and a move.
inline constexpr std::uint64_t kEffortOfOffer = 50;

// It is what a machine does that others see, as a line.
struct Deed {
    enum class Kind { Trigger, Log };

    std::uint64_t event;
    Kind kind;
    std::string text;  // all that was asked for, or logged

    bool operator==(const Deed&) const = default;
};

// It tells people what the machine did with a recording.
struct Account {
    Witness witness;
    std::vector<Deed> deeds;
    std::string state;                     // in which it waits at the end
    std::vector<std::string> explanation;  // of the last event, or of the start if there is none; printable
};

// Has the library play what was decided: nothing is shown that did not happen there. It stands in for the platform as
// long as it lives, so that nothing else may; used on one thread.
class Rehearsal final : private Trace, private NoReport {
  public:
    // `machines` are of configurations that the library accepts; the context is that of every machine. Both must
    // outlive it, and so must the document of the machines.
    Rehearsal(std::span<const ConfigModel> machines, const AttributeSet& context);
    Rehearsal(const Rehearsal&) = delete;
    Rehearsal& operator=(const Rehearsal&) = delete;

    std::size_t size() const { return group.size(); }

    // Lets all machines start anew and offers them the events of the plan, which is one for that machine. The others
    // draw numbers of their own.
    Witness play(std::size_t machine, const Plan& plan);
    Account giveAccount(std::size_t machine, const Plan& plan);

    // Plays it as well, and passes on what all machines do.
    void show(std::size_t machine, const Plan& plan, Trace& steps, Report& lines);

  private:
    void loaded(const DocumentModel& document) override;
    void offered(const EventRecord& record) override;
    void step(const Step& step) override;
    void trigger(const TriggerLine& line) override;
    void log(const LogLine& line) override;

    double draw();

    Tracer tracer;
    MachineGroup group;
    PlatformServices services;
    std::size_t played = 0;                        // the machine in question
    const std::vector<double>* numbers = nullptr;  // that it is to draw for the event
    std::size_t drawn = 0;                         // so many of them
    Witness witness;
    std::optional<Account> account;  // if one is to be given
    Trace* alsoTrace = nullptr;      // if it is shown
    Report* alsoReport = nullptr;
};

}  // namespace Brenta::OS::VIG::Tool
