#pragma once

namespace Brenta::OS::VIG {

// The manager and the device configuration speak by these texts. The rule document is this string property of the
// device configuration.
inline constexpr const char* kNamespace = "korvel_vig";
inline constexpr const char* kResponseKey = "vig_response";

// The log says so when the manager has begun to listen for changes of it, which the tool waits for.
inline constexpr const char* kListeningMessage = "ViG device config is available now.";

}  // namespace Brenta::OS::VIG
