#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/trace/Tally.h"

namespace Brenta::OS::VIG::Tool {

// Returns all transitions of the machine, or of the document.
std::vector<TransitionPlace> allTransitions(const DocumentModel& document, std::optional<std::size_t> machine);

// Returns the transitions that people call by a name: a JSON path, its last part such as "transitions[5]", which each
// machine may have, or "from -> to". With a machine, only those of that one.
std::vector<TransitionPlace> transitionsCalled(std::string_view name, const DocumentModel& document,
                                               std::optional<std::size_t> machine);

// Returns what to say of a name by which none is called: in the first line that there is no such transition, and in the
// others how those are called that there are.
std::vector<std::string> unknownTransition(const std::string& name, const DocumentModel& document,
                                           std::optional<std::size_t> machine);

// Returns the last part of the path: "transitions[5]".
std::string_view lastPartOf(const TransitionModel& transition);

}  // namespace Brenta::OS::VIG::Tool
