#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "tools/vig/trace/Trace.h"
#include "tools/vig/trace/WhyNot.h"

namespace Brenta::OS::VIG::Tool {

// Writes steps and answers as trees for people, one line an element, without what a terminal would act on. The first
// line is the root. The path of a transition is written where it is first told of; then its last part names it.
class ExplainText {
  public:
    // So many characters fit in a line, unless a name is longer.
    explicit ExplainText(std::size_t columns) : columns(columns) {}

    // A step that concerns no transition has the root alone.
    std::vector<std::string> linesOf(const Step& step);
    std::vector<std::string> linesOf(const WhyNot& answer);

  private:
    std::string nameOf(const TransitionModel& transition);
    void addAttempt(std::vector<std::string>& lines, const Attempt& attempt);
    void addComparison(std::vector<std::string>& lines, const Comparison& comparison, std::size_t width) const;
    void addUpstream(std::vector<std::string>& lines, const WhyNot& answer) const;
    void addWrapped(std::vector<std::string>& lines, const std::string& line, std::size_t hanging) const;

    const std::size_t columns;
    std::set<std::string> named;  // paths
};

// Returns a value as an explanation shows it.
std::string shownValue(const ComparedValue& compared);

// Return the same as one JSON object each, without a line end.
std::string explainJson(const Step& step);
std::string whyNotJson(const WhyNot& answer);

}  // namespace Brenta::OS::VIG::Tool
