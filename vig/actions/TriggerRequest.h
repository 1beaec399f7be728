#pragma once

#include <utils/String16.h>

#include <optional>
#include <string_view>
#include <vector>

#include "rulesengine/Event.h"

namespace Brenta::OS::VIG {

// The trigger actions have this in common. All of it runs on the thread that drives the machine.

// The directory of services has the trigger service under this name.
inline constexpr const char* kTriggerService = "vendor.orlan.velora.ITrigger/default";

using TriggerMetadata = std::vector<std::optional<android::String16>>;

// Appends one entry. What is not valid UTF-8 in the text, and each NUL, is sent as U+FFFD.
void appendEntry(TriggerMetadata& metadata, std::string text);

// Appends "name:value" for every attribute that the event lists in its keys.
void appendAttributes(TriggerMetadata& metadata, const RulesEngine::Event& event);

// Asks the trigger service for a collection named `namePrefix` followed by the event's "processName", with U+FFFD in
// place of a NUL and of what is not valid UTF-8. Blocks for the lookup of the service and the call. Where the event,
// the service or the metadata (an empty list) does not serve, writes a line to the log and calls nothing; what the
// service answers is ignored.
void requestTrigger(const char* namePrefix, TriggerMetadata (*synthesizeMetadata)(const RulesEngine::Event&),
                    const RulesEngine::Event& event);

}  // namespace Brenta::OS::VIG
