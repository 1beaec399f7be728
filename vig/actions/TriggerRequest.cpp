#include "vig/actions/TriggerRequest.h"

#include <binder/IServiceManager.h>
#include <fmt/format.h>
#include <utils/StrongPointer.h>
#include <vendor/orlan/velora/ITrigger.h>
#include <vendor/orlan/velora/TriggerContext.h>

#include <algorithm>
#include <string>
#include <utility>

#include "vig/base/Log.h"
#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG {

using RulesEngine::Event;
using vendor::orlan::velora::ITrigger;
using vendor::orlan::velora::TriggerContext;

namespace {

// An older one writes a whole double in the metadata as 90.0 and not as 90.
static_assert(FMT_VERSION >= 70100, "fmt 7.1 or later is needed");

// The platform makes an empty string of text that is not valid UTF-8, and ends one at a NUL, which would lose the text
// or its rest. No UTF-8 has the byte that a NUL becomes here.
android::String16 toString16(std::string text) {
    std::replace(text.begin(), text.end(), '\0', '\xFF');
    return android::String16(replaceInvalidUtf8(std::move(text)).c_str());
}

template <typename Getter>
void appendAttributesOf(Event::ValueType kind, Getter getter, TriggerMetadata& metadata, const Event& event) {
    for (const std::string_view key : event.keys(kind)) {
        if (const auto value = (event.*getter)(key)) {
            appendEntry(metadata, fmt::format("{}:{}", key, *value));
        }
    }
}

// Returns null, with a line in the log, if there is no service.
android::sp<ITrigger> findTriggerService() {
    android::sp<ITrigger> service;
    const android::status_t status = android::getService(android::String16(kTriggerService), &service);
    if (status != 0 || service == nullptr) {
        VIG_LOG_ERROR("Error while getting the service proxy: %d %s", status,
                      service == nullptr ? ", triggerService is null!" : "");
        return nullptr;
    }
    return service;
}

}  // namespace

void appendEntry(TriggerMetadata& metadata, std::string text) {
    metadata.emplace_back(toString16(std::move(text)));
}

void appendAttributes(TriggerMetadata& metadata, const Event& event) {
    appendAttributesOf(Event::ValueType::Uint64, &Event::getUint64Attr, metadata, event);
    appendAttributesOf(Event::ValueType::Int64, &Event::getInt64Attr, metadata, event);
    appendAttributesOf(Event::ValueType::Double, &Event::getDoubleAttr, metadata, event);
    appendAttributesOf(Event::ValueType::Bool, &Event::getBoolAttr, metadata, event);
    for (const std::string_view key : event.keys(Event::ValueType::String)) {
        appendEntry(metadata, fmt::format("{}:{}", key, event.getStringAttr(key)));
    }
}

void requestTrigger(const char* namePrefix, TriggerMetadata (*synthesizeMetadata)(const Event&), const Event& event) {
    const std::string_view processName = event.getStringAttr("processName");
    if (processName.empty()) {
        VIG_LOG_ERROR("Missing required attribute processName in event.");
        return;
    }
    const android::sp<ITrigger> service = findTriggerService();
    if (service == nullptr) {
        return;
    }
    TriggerContext context;
    context.processName = toString16(std::string(processName));
    context.triggerName = android::String16(namePrefix);
    context.triggerName.append(*context.processName);
    context.metadata = synthesizeMetadata(event);
    if (context.metadata->empty()) {
        VIG_LOG_ERROR("synthesizeMetadata from event failed!");
        return;
    }
    service->trigger(context);
}

}  // namespace Brenta::OS::VIG
