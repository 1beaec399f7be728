#pragma once

#include <vendor/orlan/velora/ITrigger.h>

#include <memory>
#include <string>
#include <vector>

// What the test does to the platform, from any thread.
namespace minimal {

// The messages logged so far.
std::vector<std::string> logged();

// Null for no service.
void setTriggerService(std::shared_ptr<vendor::orlan::velora::ITrigger> service);

// Changes the rule document and tells the listeners, on the calling thread.
void setResponse(const std::string& document);

// Returns once somebody listens.
void waitForListener();

}  // namespace minimal
