#pragma once

#include <vendor/orlan/velora/ITrigger.h>

#include <memory>
#include <string>
#include <vector>

// The test acts on the platform with these, from any thread.
namespace minimal {

// Returns the messages logged so far.
std::vector<std::string> logged();

// A null one takes the service out.
void setTriggerService(std::shared_ptr<vendor::orlan::velora::ITrigger> service);

// Changes the rule document and tells the listeners, on the calling thread.
void setResponse(const std::string& document);

// Returns once somebody listens.
void waitForListener();

}  // namespace minimal
