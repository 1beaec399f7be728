#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vig/parsers/VIGConfig.h"
#include "vig/parsers/VIGParseError.h"

namespace Brenta::OS::VIG::Tool {

class Tracer;

// It is one delivery of a rule document.
struct Delivery {
    VIGParseError error;  // Ok, or why there are no configurations
    std::vector<std::unique_ptr<VIGConfig>> configs;
    std::string text;  // of the document
};

// It follows a rule document in a file, on the way that it takes on a device: the file is the response property of the
// device configuration, and a manager delivers it. Used on one thread.
class RuleDocument {
  public:
    // Asks for the first delivery. The machines of documents draw from `draw`. With a tracer, which must then outlive
    // the object, documents are parsed so that it can watch their machines. REQUIRES: whyUnreadable(path) says nothing.
    RuleDocument(const std::string& path, std::function<double()> draw, const Tracer* tracer);
    RuleDocument(const RuleDocument&) = delete;
    RuleDocument& operator=(const RuleDocument&) = delete;
    ~RuleDocument();

    // The descriptor is readable while a delivery waits.
    int descriptor() const;

    // Returns the latest delivery since the last call, if any: a change of the file brings another one.
    std::optional<Delivery> take();

    // Ends the deliveries. Nothing logs on behalf of the document afterwards.
    void close();

  private:
    class Manager;
    class Slot;

    const std::unique_ptr<Slot> slot;
    std::unique_ptr<Manager> manager;
};

}  // namespace Brenta::OS::VIG::Tool
