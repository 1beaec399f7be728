#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "rulesengine/EventType.h"
#include "tools/vig/trace/Trace.h"
#include "vig/parsers/VIGConfig.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

class StepRecorder;

// Lets a Trace watch machines at work. The engine knows nothing of it: a watched machine has the states, filters and
// actions of the library's own one, with a filter around each filter that tells what it saw.
class Tracer {
  public:
    // `listener` must outlive it, and it must outlive the machines.
    explicit Tracer(Trace& listener);
    Tracer(const Tracer&) = delete;
    Tracer& operator=(const Tracer&) = delete;
    ~Tracer();

    // Returns the same registry with functions that tell what they return. A document has to be parsed with it. Any
    // thread.
    VIGParserConfig registryFrom(const VIGParserConfig& library) const;

    // Return watched configurations in place of those that the library made of the models, which must outlive them. Of
    // a whole document the listener is told that it is loaded.
    std::vector<std::unique_ptr<VIGConfig>> watch(std::span<const ConfigModel> models,
                                                  const std::vector<std::unique_ptr<VIGConfig>>& configs);
    std::vector<std::unique_ptr<VIGConfig>> watch(const DocumentModel& document,
                                                  const std::vector<std::unique_ptr<VIGConfig>>& configs);

    // Is to be called before an event is offered to the machines.
    void offer(const EventRecord& record);

    // Are to be called around each call that drives a machine; `raised` if the machine makes the event itself.
    void begin(std::uint64_t event, RulesEngine::EventType type, std::optional<std::int64_t> timeMs,
               MachineName machine, std::string_view state, bool raised);
    void end();

  private:
    const std::shared_ptr<StepRecorder> recorder;
};

}  // namespace Brenta::OS::VIG::Tool
