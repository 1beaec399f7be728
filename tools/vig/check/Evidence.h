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

    // Returns what happens when the plan is played, if that confirms the claim; otherwise a fault is noted. Without a
    // plan, there is nothing to show.
    std::shared_ptr<const Witness> show(std::size_t machine, const std::optional<Plan>& plan, std::string_view claim,
                                        const std::function<bool(const Witness&)>& confirms);

    // Holds the claims that the library did not confirm, which are faults of the tool.
    std::vector<std::string> faults;

  private:
    const std::span<const ConfigModel> machines;
    const bool haveDraws;
    const AttributeSet emptyContext;
    std::optional<Rehearsal> rehearsal = {};  // as soon as something is to be shown
    std::size_t rehearsed = 0;                // the machine, if it is there alone
};

}  // namespace Brenta::OS::VIG::Tool
