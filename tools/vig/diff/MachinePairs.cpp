#include "tools/vig/diff/MachinePairs.h"

#include <map>
#include <utility>

namespace Brenta::OS::VIG::Tool {

std::vector<MachinePair> pairsOf(const DocumentModel& old, const DocumentModel& now) {
    std::vector<MachinePair> pairs;
    std::map<std::pair<std::int64_t, std::size_t>, std::size_t> places;  // of the id and the occurrence, in `pairs`
    const auto add = [&](const DocumentModel& document, std::size_t side) {
        std::map<std::int64_t, std::size_t> seen;
        for (std::size_t index = 0; index < document.configs.size(); ++index) {
            const std::int64_t id = document.configs[index].id;
            const std::size_t occurrence = seen[id]++;
            const auto [place, isNew] = places.try_emplace({id, occurrence}, pairs.size());
            if (isNew) {
                pairs.push_back({id, occurrence, {}});
            }
            pairs[place->second].index[side] = index;
        }
    };
    add(now, kNew);
    add(old, kOld);
    for (MachinePair& each : pairs) {
        each.isSame = each.index[kOld] && each.index[kNew] &&
                      *old.configs[*each.index[kOld]].json == *now.configs[*each.index[kNew]].json;
    }
    return pairs;
}

}  // namespace Brenta::OS::VIG::Tool
