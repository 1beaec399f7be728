#pragma once

namespace Brenta::OS::VIG {

// The rule document is this string property of the device configuration.
inline constexpr const char* kNamespace = "korvel_vig";
inline constexpr const char* kResponseKey = "vig_response";

}  // namespace Brenta::OS::VIG
