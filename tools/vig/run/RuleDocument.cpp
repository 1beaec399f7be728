#include "tools/vig/run/RuleDocument.h"

#include <host/Host.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <mutex>
#include <utility>

#include "tools/vig/document/Registry.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/trace/Tracer.h"
#include "vig/ResponseProperty.h"
#include "vig/VIGManager.h"
#include "vig/parsers/VIGResponseParser.h"

namespace Brenta::OS::VIG::Tool {

// Here the manager's threads leave a delivery for the thread that drives the machines.
class RuleDocument::Slot {
  public:
    Slot() : event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    void put(Delivery delivery) {
        const std::lock_guard lock(mutex);
        latest = std::move(delivery);
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = write(event.get(), &one, sizeof one);
    }

    std::optional<Delivery> take() {
        const std::lock_guard lock(mutex);
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t got = read(event.get(), &count, sizeof count);
        return std::exchange(latest, std::nullopt);
    }

    const Descriptor event;

  private:
    std::mutex mutex;
    std::optional<Delivery> latest;  // guarded by mutex
};

// Remembers what the parser found, which a delivery does not say.
class RuleDocument::Manager : public VIGManager {
  public:
    Manager(std::function<double()> source, const Tracer* watcher) : draw(std::move(source)), tracer(watcher) {}
    ~Manager() override { stop(); }

    std::vector<std::unique_ptr<VIGConfig>> parseResponse(const std::string& response) const override {
        auto result = VIGResponseParser().parseFromString(response, registry());
        lastError = result.error;
        lastText = response;
        return result.value ? std::move(*result.value) : std::vector<std::unique_ptr<VIGConfig>>();
    }

    // REQUIRES: called from within a delivery, of which there is one at a time.
    Delivery delivery(std::vector<std::unique_ptr<VIGConfig>> configs) const {
        return {lastError, std::move(configs), std::move(lastText)};
    }

  private:
    VIGParserConfig registry() const {
        auto drawing = withDraws(createParserConfig(), draw);
        return tracer != nullptr ? tracer->registryFrom(drawing) : drawing;
    }

    const std::function<double()> draw;
    const Tracer* const tracer;
    mutable VIGParseError lastError = VIGParseError::Ok;
    mutable std::string lastText;
};

RuleDocument::RuleDocument(const std::string& path, std::function<double()> draw, const Tracer* tracer)
    : slot(std::make_unique<Slot>()) {
    host::bindProperty(kNamespace, kResponseKey, path);
    manager = std::make_unique<Manager>(std::move(draw), tracer);
    manager->registerCallback([&to = *slot, &from = *manager](std::vector<std::unique_ptr<VIGConfig>>&& configs) {
        to.put(from.delivery(std::move(configs)));
    });
}

RuleDocument::~RuleDocument() = default;

int RuleDocument::descriptor() const {
    return slot->event.get();
}

std::optional<Delivery> RuleDocument::take() {
    return slot->take();
}

void RuleDocument::close() {
    manager.reset();
}

}  // namespace Brenta::OS::VIG::Tool
