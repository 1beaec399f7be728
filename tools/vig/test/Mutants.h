#pragma once

#include <json/value.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/vig/document/RuleModel.h"

namespace Brenta::OS::VIG::Tool {

// It is a small change of a document that an author could make by mistake.
struct Mutant {
    // The transition of that index becomes this one, or is lost.
    using Change = std::pair<std::size_t, std::optional<TransitionModel>>;

    const ConfigModel* config;
    std::size_t machine;
    Place place;
    std::string what;                                // "`a > 1` became `a >= 1`"
    std::vector<Change> changes;                     // of at most two transitions
    std::shared_ptr<const Json::Value> filter = {};  // of the one filter that is not as it was, if there is one
};

// Calls `visit` with each mutant of the document, in its order, until it returns false. What it is given refers to the
// document.
void forEachMutant(const DocumentModel& document, const std::function<bool(const Mutant&)>& visit);

// Returns the change of the transition, or null.
const Mutant::Change* changeOf(const Mutant& mutant, std::size_t transition);

// Return what the mutant makes of its configuration, and of the document as text.
ConfigModel configOf(const Mutant& mutant);
std::string textOf(const Mutant& mutant, const DocumentModel& document);

}  // namespace Brenta::OS::VIG::Tool
