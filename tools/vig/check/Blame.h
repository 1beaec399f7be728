#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/vig/decide/Behaviour.h"

namespace Brenta::OS::VIG::Tool {

// It says why no event fulfils a question.
struct Blame {
    std::vector<std::size_t> clauses = {};  // of the candidates, the last one first; without any of them one would
    bool isWhole = true;  // otherwise earlier ones are to blame too, and it took too long to find them

    // Returns what `render` makes of each clause in the order of the candidates, as in "a, b, c and 2 more".
    std::string text(const auto& render) const;
};

// Finds out which of the candidates leave nothing of what is fixed. REQUIRES: all of them together leave nothing.
Blame blameFor(Behaviour& machine, const Junction& junction, Clauses fixed, const Clauses& candidates, Values which);

std::string Blame::text(const auto& render) const {
    constexpr std::size_t kMostShown = 3;
    std::string all;
    for (std::size_t index = 0; index < clauses.size() && index < kMostShown; ++index) {
        const bool isLast = isWhole && index + 1 == clauses.size();
        all += (index == 0 ? "" : isLast ? " and " : ", ") + render(clauses[clauses.size() - 1 - index]);
    }
    if (!isWhole) {
        return all + " and others";
    }
    return clauses.size() > kMostShown ? all + " and " + std::to_string(clauses.size() - kMostShown) + " more" : all;
}

}  // namespace Brenta::OS::VIG::Tool
