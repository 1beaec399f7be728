#pragma once

#include <string>

#include "tools/vig/io/Output.h"
#include "tools/vig/trace/Report.h"

namespace Brenta::OS::VIG::Tool {

// One JSON object a line, for programs. The shapes and the order of their keys are fixed: what is new comes last.
class JsonlReport : public Report {
  public:
    // `device` is named in every line; empty if there is only one.
    JsonlReport(Output& target, const std::string& device);

    void trigger(const TriggerLine& line) override;
    void log(const LogLine& line) override;
    void move(const MoveLine& line) override;
    void delivery(const DeliveryLine& line) override;
    void explain(const Step& step) override;
    void whyNot(const WhyNot& answer) override;
    void end(const Summary& summary) override;

  private:
    void writeLine(std::string object);

    Output& output;
    const std::string lastKey;
};

}  // namespace Brenta::OS::VIG::Tool
