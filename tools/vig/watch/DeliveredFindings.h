#pragma once

#include <set>
#include <string>
#include <utility>

#include "tools/vig/document/DocumentText.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// Tells what is wrong with the documents of one delivery after the other: every error, and the warnings that are new.
class DeliveredFindings {
  public:
    // Both must outlive it.
    DeliveredFindings(const Console& console, const Interruption& interruption)
        : console(console), interruption(interruption) {}

    void tell(const DocumentText& document);

  private:
    using Warning = std::pair<std::string, std::string>;  // its name, and what it says

    const Console& console;
    const Interruption& interruption;
    std::multiset<Warning> known;  // of the latest document that was accepted, and of refused ones since then
};

}  // namespace Brenta::OS::VIG::Tool
