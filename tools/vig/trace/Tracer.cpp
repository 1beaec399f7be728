// The engine does not tell why a transition did not fire, and is not to pay for somebody who asks. So a second machine
// is made of each one that the library made of the document: it has the same states and the same actions, and runs in
// the place of the first. Only its filters differ. Each one wraps the filter of the library, whose verdict it returns,
// and around those of a transition stand two that always hold: the first one is asked when the transition is tried, the
// last one when nothing keeps it from firing any more. The order in which they are asked is all that StepRecorder needs
// to put together what a state did with an event.
//
// A filter of the library tells its verdict, but not what it has compared. This is read once more afterwards, by the
// same rules, from the event and the context. Only functions are not called again, as another draw would change what
// happens: those of the registry with which a traced document is parsed note what they return.

#include "tools/vig/trace/Tracer.h"

#include <unordered_map>
#include <utility>

#include "rulesengine/EvaluationContext.h"
#include "rulesengine/Event.h"
#include "rulesengine/Filter.h"
#include "rulesengine/FuncFilter.h"
#include "rulesengine/Transition.h"
#include "tools/vig/trace/OperandReader.h"
#include "tools/vig/trace/RebuiltMachines.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EvaluationContext;
using RulesEngine::Event;
using RulesEngine::EventType;
using RulesEngine::Filter;
using RulesEngine::FuncFilter;
using RulesEngine::Transition;

// Puts steps together from what the filters of the machines tell. Used on the thread that drives them.
class StepRecorder {
  public:
    explicit StepRecorder(Trace& listener) : trace(listener) {}

    void begin(Step first) { step = std::move(first); }

    void tried(std::size_t index, const TransitionModel& transition) {
        step.attempts.push_back({index, &transition, {}, false});
    }

    void compared(Comparison comparison) { step.attempts.back().comparisons.push_back(std::move(comparison)); }

    // The machine then raises an event in the state that the transition leads to.
    void fired() {
        step.attempts.back().fired = true;
        const std::string_view target = step.attempts.back().transition->to;
        trace.step(step);
        step.attempts.clear();
        step.state = target;
        step.type = EventType::EnteringState;
        step.raised = true;
    }

    void end() {
        if (!step.raised || !step.attempts.empty()) {
            trace.step(step);
        }
    }

    std::vector<FunctionResult> results;  // of the functions that a filter has called, in order

    Trace& trace;

  private:
    Step step{};
};

namespace {

// Returns a filter that says the same as the one given.
std::shared_ptr<Filter> watched(std::shared_ptr<Filter> original, const FilterModel& model, StepRecorder& recorder) {
    return std::make_shared<FuncFilter>(
        [original = std::move(original), &model, &recorder](const EvaluationContext& context, const Event& event) {
            recorder.results.clear();
            const bool verdict = (*original)(context, event);
            OperandReader reader(recorder.results, model, context, event);
            ComparedValue left = reader.read(model.operand1.operand);
            ComparedValue right = reader.read(model.operand2.operand);
            recorder.compared({&model, std::move(left), std::move(right), verdict});
            return verdict;
        });
}

// Returns a filter that always holds and calls `tell` when it is asked.
std::shared_ptr<Filter> probe(auto tell) {
    return std::make_shared<FuncFilter>([tell](const EvaluationContext&, const Event&) {
        tell();
        return true;
    });
}

// The first filter is asked when the transition is tried, the last one when nothing keeps it from firing any more.
std::vector<std::shared_ptr<Filter>> watched(const Transition& original, std::size_t index,
                                             const TransitionModel& model, StepRecorder& recorder) {
    std::vector<std::shared_ptr<Filter>> filters;
    filters.push_back(probe([&recorder, &model, index] { recorder.tried(index, model); }));
    for (std::size_t i = 0; i < model.filters.size(); ++i) {
        filters.push_back(watched(original.getFilters()[i], model.filters[i], recorder));
    }
    filters.push_back(probe([&recorder] { recorder.fired(); }));
    return filters;
}

template <typename Function>
std::unordered_map<std::string, Function> watched(std::unordered_map<std::string, Function> functions,
                                                  const std::shared_ptr<StepRecorder>& recorder) {
    for (auto& [name, function] : functions) {
        function = [original = function, shown = name, recorder] {
            auto value = original();
            recorder->results.push_back({shown, {value}});
            return value;
        };
    }
    return functions;
}

}  // namespace

Tracer::Tracer(Trace& listener) : recorder(std::make_shared<StepRecorder>(listener)) {}

Tracer::~Tracer() = default;

VIGParserConfig Tracer::registryFrom(const VIGParserConfig& library) const {
    // Filters have no use for functions of another type.
    return VIGParserConfig(library.getEventTypes(), library.getActionFunctionFactories(),
                           watched(library.getInt64PureFunctions(), recorder),
                           watched(library.getDoublePureFunctions(), recorder),
                           watched(library.getStringPureFunctions(), recorder), {});
}

std::vector<std::unique_ptr<VIGConfig>> Tracer::watch(std::span<const ConfigModel> models,
                                                      const std::vector<std::unique_ptr<VIGConfig>>& configs) {
    return rebuilt(configs, models, [&](const Transition& transition, std::size_t config, std::size_t index) {
        return watched(transition, index, models[config].transitions[index], *recorder);
    });
}

std::vector<std::unique_ptr<VIGConfig>> Tracer::watch(const DocumentModel& document,
                                                      const std::vector<std::unique_ptr<VIGConfig>>& configs) {
    auto result = watch(document.configs, configs);
    recorder->trace.loaded(document);
    return result;
}

void Tracer::begin(std::uint64_t event, EventType type, std::optional<std::int64_t> timeMs, MachineName machine,
                   std::string_view state, bool raised) {
    recorder->begin({event, timeMs, machine, state, type, raised, {}});
}

void Tracer::offer(const EventRecord& record) {
    recorder->trace.offered(record);
}

void Tracer::end() {
    recorder->end();
}

}  // namespace Brenta::OS::VIG::Tool
