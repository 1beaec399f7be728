#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "tools/vig/diff/Meeting.h"
#include "tools/vig/document/RuleModel.h"

namespace Brenta::OS::VIG::Tool {

// The old document comes first wherever both have something.
inline constexpr std::size_t kOld = 0;
inline constexpr std::size_t kNew = 1;
inline constexpr Both<std::string_view> kSides = {"old", "new"};

// It is a machine of two documents: the configurations in both that have the same id. If several of one document have
// it, the first ones belong together, the second ones and so on.
struct MachinePair {
    std::int64_t id;
    std::size_t occurrence;                  // so many pairs with the id come before
    Both<std::optional<std::size_t>> index;  // in each document; empty if it is new or gone
    bool isSame = false;                     // both are written alike, so that they do the same if they draw the same
};

// Returns the pairs in the order of the new document, and then those that are gone.
std::vector<MachinePair> pairsOf(const DocumentModel& old, const DocumentModel& now);

}  // namespace Brenta::OS::VIG::Tool
