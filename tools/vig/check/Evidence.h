#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/decide/Behaviour.h"
#include "tools/vig/decide/Rehearsal.h"
#include "tools/vig/document/RuleModel.h"

namespace Brenta::OS::VIG::Tool {

// Has the library show what is claimed of the machines of a document. They run with an empty context.
class Evidence {
  public:
    // `accepted` are the machines of the configurations that the library accepts, and must outlive it.
    explicit Evidence(std::span<const ConfigModel> accepted);

    // Returns what happens when the plan is played, without the trials, if that confirms the claim; otherwise a fault
    // is noted. Without a plan, or where so much has been shown that no more is, it returns nothing.
    std::shared_ptr<const Witness> show(std::size_t machine, const std::optional<Plan>& plan, std::string_view claim,
                                        const std::function<bool(const Witness&)>& confirms);

    // Tells whether the machine draws. Then all machines play, and those that draw are best shown one after the other.
    bool isDrawing(std::size_t machine) const { return drawing[machine]; }

    // Tells whether nothing more is shown.
    bool isUsedUp() const { return effort.left == 0; }

    // Holds the claims that the library did not confirm, which are faults of the tool.
    std::vector<std::string> faults;

  private:
    const std::span<const ConfigModel> machines;
    std::vector<bool> drawing = {};  // of each machine
    Effort effort;                   // that is left for showing
    const AttributeSet emptyContext;
    std::optional<Rehearsal> rehearsal = {};      // as soon as something is to be shown
    std::span<const ConfigModel> rehearsed = {};  // the machines that play in it
};

}  // namespace Brenta::OS::VIG::Tool
