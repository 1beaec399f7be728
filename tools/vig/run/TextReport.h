#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "tools/vig/io/Output.h"
#include "tools/vig/trace/Report.h"

namespace Brenta::OS::VIG::Tool {

// Aligned lines for a person, with a summary at the end. Whatever comes from documents and events is shown without
// what a terminal would act on.
class TextReport : public Report {
  public:
    TextReport(Output& target, bool withColours) : output(target), coloured(withColours) {}

    void trigger(const TriggerLine& line) override;
    void log(const LogLine& line) override;
    void move(const MoveLine& line) override;
    void delivery(const DeliveryLine& line) override;
    void explain(const Step& step) override;
    void whyNot(const WhyNot& answer) override;
    void end(const Summary& summary) override;

  private:
    std::string inColour(std::string_view colour, std::string_view text) const;
    void row(std::uint64_t event, std::string_view what, std::string_view colour, std::string_view who,
             std::string_view detail);
    void writeTriggerCounts();

    Output& output;
    const bool coloured;
    bool headed = false;
    std::map<std::string, std::uint64_t, std::less<>> triggersByName;  // bounded
    std::uint64_t otherTriggers = 0;
};

}  // namespace Brenta::OS::VIG::Tool
