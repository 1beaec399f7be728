#include "tools/vig/run/RuleSession.h"

#include <host/Host.h>
#include <poll.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "tools/vig/document/ParseErrorText.h"
#include "tools/vig/io/FileText.h"
#include "vig/ResponseProperty.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// That is longer than the manager looks for the device configuration.
constexpr int kLongestWaitMs = 40'000;
constexpr std::chrono::seconds kLongestSubscription{2};

bool isPipe(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

// Returns why the device configuration has no document, which it does not say.
std::string whyAbsent(const std::string& path) {
    std::error_code ignored;
    const std::string reason = whyUnreadable(path);
    return !reason.empty() || std::filesystem::file_size(path, ignored) < host::kTooManyBytes || ignored
               ? reason
               : "too large: 1 GiB or more";
}

std::string explain(VIGParseError error) {
    if (error == VIGParseError::Ok) {
        return {};
    }
    const ParseErrorText& text = textOf(error);
    return "refused (" + std::string(text.name) + "): " + std::string(text.meaning);
}

}  // namespace

RuleSession::RuleSession(std::string rulesPath, const Draws& draws, AttributeSet contextAttributes, Report& report,
                         Trace* trace)
    : path(std::move(rulesPath)),
      draw(draws.source()),
      context(std::move(contextAttributes)),
      report(report),
      tracer(trace != nullptr ? std::make_unique<Tracer>(*trace) : nullptr),
      group(context, report, tracer.get()),
      services(group) {}

RuleSession::Loading RuleSession::load(Changes later, const Interruption& interruption) {
    reason = isStandardInput(path) ? "" : whyUnreadable(path);
    if (!reason.empty()) {
        return Loading::Unreadable;
    }
    if ((isStandardInput(path) || isPipe(path)) && !copyPipe(interruption)) {
        return interruption.requested() ? Loading::Interrupted : Loading::Unreadable;
    }
    deliveries.emplace(pipeCopy ? pathOf(*pipeCopy) : path, draw, tracer.get());
    pollfd sources[] = {{deliveries->descriptor(), POLLIN, 0}, {interruption.descriptor(), POLLIN, 0}};
    while (poll(sources, 2, kLongestWaitMs) < 0 && !interruption.requested()) {
    }
    if (interruption.requested()) {
        return Loading::Interrupted;
    }
    auto delivery = deliveries->take();
    if (!delivery) {
        reason = "the device configuration did not deliver it";
        return Loading::Unreadable;
    }
    if (later == Changes::Ignore || delivery->error != VIGParseError::Ok) {
        deliveries->close();
    } else {
        // The manager listens for changes only after it has delivered: until then a saved document goes unnoticed.
        services.awaitLine(kListeningMessage, kLongestSubscription);
    }
    services.passOnLines();
    return adopt(std::move(*delivery));
}

// The manager's thread would read the pipe to its end, whatever happens meanwhile.
bool RuleSession::copyPipe(const Interruption& interruption) {
    auto copy = copyInMemory(path, interruption, reason);
    if (copy) {
        pipeCopy.emplace(std::move(*copy));
    }
    return pipeCopy.has_value();
}

bool RuleSession::update() {
    auto delivery = deliveries->take();
    group.leaveEvent();
    services.passOnLines();
    if (!delivery) {
        return false;
    }
    adopt(std::move(*delivery));
    report.delivery({group.eventCount(), path, group.size(), reason});
    group.start();
    return true;
}

RuleSession::Loading RuleSession::adopt(Delivery delivery) {
    reason = explain(delivery.error);
    const bool isRefused = !reason.empty();
    refusedText.reset();
    if (isRefused) {
        refusedText.emplace(nameOfInput(path), std::move(delivery.text));
    }
    // An absent document reads as one without configurations.
    if (!isRefused && delivery.configs.empty()) {
        reason = whyAbsent(pipeCopy ? pathOf(*pipeCopy) : path);
    }
    if (reason.empty()) {
        model.reset();
        text = std::move(delivery.text);
    }
    group.adopt(tracer && reason.empty() ? tracer->watch(document(), delivery.configs) : std::move(delivery.configs));
    return reason.empty() ? Loading::Done : isRefused ? Loading::Refused : Loading::Unreadable;
}

const DocumentModel& RuleSession::document() {
    return model ? *model : model.emplace(nameOfInput(path), std::move(text));
}

}  // namespace Brenta::OS::VIG::Tool
