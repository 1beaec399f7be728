#pragma once

#include <vendor/orlan/velora/TriggerContext.h>

#include <functional>
#include <string>
#include <string_view>

// The seam test acts on a platform with these, which the platform's folder defines in a file SeamDriver.cpp.
namespace seam {

// Gives all later messages of the log to the receiver, on the thread that logs them.
void sendLogTo(std::function<void(std::string_view message)> receiver);

// Makes the text the property "vig_response" of the namespace "korvel_vig". The device configuration is available
// afterwards, and its listeners are told.
void setResponse(const std::string& document);

// Registers "vendor.orlan.velora.ITrigger/default", a service that gives what it is asked for to the receiver.
void addTriggerService(std::function<void(const vendor::orlan::velora::TriggerContext&)> receiver);

}  // namespace seam
