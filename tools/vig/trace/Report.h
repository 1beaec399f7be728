#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "rulesengine/EventType.h"

namespace Brenta::OS::VIG::Tool {

struct Step;
struct WhyNot;

// Names a machine by its place in the document and the id of its configuration.
struct MachineName {
    std::size_t index;
    std::int64_t configId;
};

// The following say what happened, in the words of the report. "event" is the number of the event, counted from 1, and
// 0 while a document is loaded and its machines are started.

struct TriggerLine {
    std::uint64_t event;
    MachineName machine;
    std::string name;
    std::optional<std::string> processName;
    std::vector<std::string> metadata;
};

struct LogLine {
    std::uint64_t event;
    int priority;  // one of android_LogPriority
    std::string_view tag;
    std::string_view message;
    std::optional<std::size_t> machine = {};  // by its place, if one was at work: the others are the library's own
};

struct MoveLine {
    std::uint64_t event;
    MachineName machine;
    std::string_view from;
    std::string_view to;
};

// It says that a document was delivered again while its events went on.
struct DeliveryLine {
    std::uint64_t event;  // the last one before
    std::string_view document;
    std::size_t configurations;
    std::string_view refusal;  // empty if it was accepted
};

struct Summary {
    struct Machine {
        MachineName name;
        std::int64_t payloadId;
        std::string_view state;
    };

    // Only a live run has it.
    struct Sampling {
        std::uint64_t samples;
        std::map<RulesEngine::EventType, std::uint64_t> eventsByType;
    };

    std::uint64_t events;
    std::uint64_t triggers;
    std::vector<Machine> machines;
    std::optional<Sampling> sampling;
};

// Is told everything that a run has to tell, in the order in which it happened.
class Report {
  public:
    virtual ~Report() = default;

    virtual void trigger(const TriggerLine& line) = 0;
    virtual void log(const LogLine& line) = 0;
    virtual void move(const MoveLine& line) = 0;
    virtual void delivery(const DeliveryLine& line) = 0;
    virtual void explain(const Step& step) = 0;

    // Tells after them of how many events steps were explained, of how many that were chosen.
    virtual void explained(std::uint64_t events, std::uint64_t of) = 0;

    virtual void whyNot(const WhyNot& answer) = 0;
    virtual void end(const Summary& summary) = 0;
};

// Tells nobody anything. Whoever wants a part of a run derives from it.
class NoReport : public Report {
  public:
    void trigger(const TriggerLine& /*line*/) override {}
    void log(const LogLine& /*line*/) override {}
    void move(const MoveLine& /*line*/) override {}
    void delivery(const DeliveryLine& /*line*/) override {}
    void explain(const Step& /*step*/) override {}
    void explained(std::uint64_t /*events*/, std::uint64_t /*of*/) override {}
    void whyNot(const WhyNot& /*answer*/) override {}
    void end(const Summary& /*summary*/) override {}
};

}  // namespace Brenta::OS::VIG::Tool
