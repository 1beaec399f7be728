#include "tools/vig/decide/Components.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Brenta::OS::VIG::Tool {

// Tarjan's algorithm, with the stack of calls as a list.
Components::Components(const std::vector<std::vector<std::size_t>>& successors) {
    constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
    of.assign(successors.size(), kNone);
    std::vector<std::size_t> order(successors.size(), kNone);
    std::vector<std::size_t> lowest(successors.size());
    std::vector<std::size_t> open;
    std::size_t entered = 0;
    for (std::size_t root = 0; root < successors.size(); ++root) {
        std::vector<std::pair<std::size_t, std::size_t>> calls;
        const auto enter = [&](std::size_t state) {
            order[state] = lowest[state] = entered++;
            open.push_back(state);
            calls.emplace_back(state, 0);
        };
        if (order[root] == kNone) {
            enter(root);
        }
        while (!calls.empty()) {
            auto& [state, next] = calls.back();
            if (next < successors[state].size()) {
                const std::size_t to = successors[state][next++];
                if (order[to] == kNone) {
                    enter(to);
                } else if (of[to] == kNone) {
                    lowest[state] = std::min(lowest[state], order[to]);
                }
                continue;
            }
            const std::size_t done = state;
            if (lowest[done] == order[done]) {
                while (of[done] == kNone) {
                    of[open.back()] = count;
                    open.pop_back();
                }
                ++count;
            }
            calls.pop_back();
            if (!calls.empty()) {
                lowest[calls.back().first] = std::min(lowest[calls.back().first], lowest[done]);
            }
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
