#include "tools/vig/RuleSession.h"

#include <host/Utf8.h>
#include <poll.h>

#include <chrono>
#include <memory>
#include <utility>

#include "tools/vig/RecordedEvents.h"
#include "vig/actions/PseudoRandomGenerator.h"

namespace tool {

using Brenta::OS::RulesEngine::Event;
using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::RulesEngine::State;
using Brenta::OS::VIG::PseudoRandomGenerator;
using Brenta::OS::VIG::VIGParseError;

namespace {

// Longer than the manager looks for the device configuration.
constexpr int kLongestWaitMs = 40'000;
constexpr std::chrono::seconds kLongestSubscription{2};

std::string explain(VIGParseError error) {
    switch (error) {
        case VIGParseError::InvalidJson:
            return "refused (InvalidJson): the text is not JSON";
        case VIGParseError::InvalidResponse:
            return "refused (InvalidResponse): the root must be an object whose \"configs\" is an array";
        case VIGParseError::InvalidConfig:
            return "refused (InvalidConfig): a configuration must be an object with a 64-bit number \"id\" and an "
                   "object \"payload\"";
        case VIGParseError::InvalidConfigPayload:
            return "refused (InvalidConfigPayload): a payload must be an object with a 32-bit number \"id\" and an "
                   "object \"data\"";
        case VIGParseError::InvalidFsm:
            return "refused (InvalidFsm): a state machine is invalid";
        case VIGParseError::Ok:
            break;
    }
    return {};
}

}  // namespace

RuleSession::RuleSession(std::string rulesPath, std::uint32_t seed, AttributeSet contextAttributes, Report& target,
                         Trace* trace)
    : path(std::move(rulesPath)), context(std::move(contextAttributes)), report(target), services(*this) {
    if (trace != nullptr) {
        tracer.emplace(*trace);
    }
    PseudoRandomGenerator::ofProcess().seed(seed);
}

RuleSession::Loading RuleSession::load(Changes later, const Interruption& interruption) {
    reason = RuleDocument::whyUnreadable(path);
    if (!reason.empty()) {
        return Loading::Unreadable;
    }
    document.emplace(path, tracer ? &*tracer : nullptr);
    pollfd sources[] = {{document->descriptor(), POLLIN, 0}, {interruption.descriptor(), POLLIN, 0}};
    while (poll(sources, 2, kLongestWaitMs) < 0 && !interruption.requested()) {
    }
    if (interruption.requested()) {
        return Loading::Interrupted;
    }
    auto delivery = document->take();
    if (!delivery) {
        reason = "the device configuration did not deliver it";
        return Loading::Unreadable;
    }
    if (later == Changes::Ignore || delivery->error != VIGParseError::Ok) {
        document->close();
    } else {
        // The manager listens for changes only after it has delivered: until then a saved document goes unnoticed.
        services.awaitLine("ViG device config is available now.", kLongestSubscription);
    }
    services.passOnLines();
    adopt(std::move(*delivery));
    if (isGone) {
        return Loading::Unreadable;
    }
    start();
    return reason.empty() ? Loading::Done : Loading::Refused;
}

bool RuleSession::update() {
    auto delivery = document->take();
    current = 0;
    services.passOnLines();
    if (!delivery) {
        return false;
    }
    adopt(std::move(*delivery));
    report.delivery({events, path, configs.size(), reason});
    start();
    return true;
}

void RuleSession::adopt(Delivery delivery) {
    reason = explain(delivery.error);
    // The device configuration reads a file that is not there as a document without configurations.
    isGone = reason.empty() && delivery.configs.empty() && !RuleDocument::whyUnreadable(path).empty();
    if (isGone) {
        reason = RuleDocument::whyUnreadable(path);
    }
    machines.clear();
    configs = tracer && reason.empty() ? tracer->watch(path, std::move(delivery.text), delivery.configs)
                                       : std::move(delivery.configs);
    for (const auto& config : configs) {
        auto* const payload = config->getConfigPayload();
        auto* const machine = payload->getFiniteStateMachine();
        machine->setContext(std::make_unique<RecordedContext>(context));
        const MachineName name{machines.size(), config->getConfigId()};
        machines.push_back({machine, name, payload->getConfigPayloadId(), machine->getCurrentState()});
    }
}

void RuleSession::start() {
    current = 0;
    for (const Machine& each : machines) {
        driven = &each;
        if (tracer) {
            tracer->begin(current, EventType::EnteringState, std::nullopt, each.name, each.state->getName(), true);
        }
        each.machine->start();
        if (tracer) {
            tracer->end();
        }
    }
    reportMoves();
}

void RuleSession::offer(const EventRecord& record) {
    current = ++events;
    if (record.type == EventType::Timeout) {
        drive(RecordedTimeoutEvent(record.attributes, *record.timeoutId), record.timeMs);
    } else {
        drive(RecordedEvent(record.attributes, record.type), record.timeMs);
    }
}

void RuleSession::drive(const Event& event, std::optional<std::int64_t> timeMs) {
    for (const Machine& each : machines) {
        driven = &each;
        if (tracer) {
            tracer->begin(current, event.type, timeMs, each.name, each.state->getName(), false);
        }
        each.machine->onEvent(event);
        if (tracer) {
            tracer->end();
        }
    }
    reportMoves();
}

// After all that the event has caused: the report lists moves last.
void RuleSession::reportMoves() {
    for (Machine& each : machines) {
        State* const reached = each.machine->getCurrentState();
        if (reached != each.state) {
            report.move({current, each.name, each.state->getName(), reached->getName()});
            each.state = reached;
        }
    }
}

Summary RuleSession::summary() const {
    Summary result{events, triggers, {}, std::nullopt};
    for (const Machine& each : machines) {
        result.machines.push_back({each.name, each.payloadId, each.state->getName()});
    }
    return result;
}

void RuleSession::onLog(int priority, std::string_view tag, std::string_view message) {
    report.log({current, priority, tag, message});
}

void RuleSession::onTrigger(const vendor::orlan::velora::TriggerContext& request) {
    ++triggers;
    TriggerLine line{current, driven->name, host::toUtf8(request.triggerName), std::nullopt, {}};
    if (request.processName) {
        line.processName = host::toUtf8(*request.processName);
    }
    if (request.metadata) {
        for (const auto& entry : *request.metadata) {
            line.metadata.push_back(entry ? host::toUtf8(*entry) : std::string());
        }
    }
    report.trigger(line);
}

}  // namespace tool
