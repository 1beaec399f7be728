#include "tools/vig/check/Blame.h"

#include <algorithm>

namespace Brenta::OS::VIG::Tool {

// The last one to blame ends the shortest list of candidates that leaves nothing. It stays, and the one before it is
// found likewise, until those that stay leave nothing by themselves.
Blame blameFor(Behaviour& machine, const Junction& junction, Clauses fixed, const Clauses& candidates, Values which) {
    constexpr std::size_t kMostAsked = 64;
    Blame blame;
    std::size_t asked = 0;
    const auto isImpossible = [&](std::size_t count) {
        Junction::Question question{0, fixed};
        question.add({0, {candidates.begin(), candidates.begin() + static_cast<std::ptrdiff_t>(count)}});
        ++asked;
        return machine.decide(junction, question, which) == Verdict::No;
    };
    std::size_t end = candidates.size();
    while (!isImpossible(0)) {
        std::size_t possible = 0;
        bool isFound = false;  // a part that leaves nothing; until then few are tried first
        while (end > possible + 1 && asked < kMostAsked) {
            const std::size_t middle = isFound ? possible + (end - possible) / 2 : std::min(2 * possible + 1, end - 1);
            const bool isEnough = isImpossible(middle);
            (isEnough ? end : possible) = middle;
            isFound = isFound || isEnough;
        }
        if (asked >= kMostAsked || end == 0) {
            blame.isWhole = false;
            break;
        }
        --end;
        fixed.push_back(candidates[end]);
        blame.clauses.push_back(end);
    }
    return blame;
}

}  // namespace Brenta::OS::VIG::Tool
