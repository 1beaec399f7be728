#pragma once

#include <vendor/orlan/velora/ITrigger.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

// A test acts on the platform with these, from any thread.
namespace minimal {

// Gives all later messages of the log to the receiver.
void setLogReceiver(std::function<void(std::string_view message)> receiver);

// Takes the place of the one before.
void setTriggerService(std::shared_ptr<vendor::orlan::velora::ITrigger> service);

// Changes the rule document and tells the listeners, on the calling thread.
void setResponse(const std::string& document);

}  // namespace minimal
