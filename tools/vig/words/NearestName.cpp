#include "tools/vig/words/NearestName.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kLongestName = 64;  // beyond that, nobody mistyped a name
constexpr std::size_t kMostNamesShown = 10;

// Returns how many characters have to be put in, left out or exchanged to make one of the other.
std::size_t editDistance(std::string_view left, std::string_view right) {
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < right.size(); ++j) {
            const std::size_t exchanged = diagonal + (left[i] == right[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({exchanged, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

}  // namespace

std::string suggestion(std::string_view given, std::span<const std::string_view> names) {
    if (given.size() > kLongestName) {
        return {};
    }
    const auto distance = [&](std::string_view name) {
        return name.size() > kLongestName ? name.size() : editDistance(given, name);
    };
    const auto nearest = std::ranges::min_element(names, {}, distance);
    if (nearest == names.end() || distance(*nearest) > std::max<std::size_t>(2, nearest->size() / 3)) {
        return {};
    }
    return "; did you mean " + quoted(*nearest) + "?";
}

std::string beforeList(std::string_view given, std::span<const std::string_view> names) {
    const std::string near = suggestion(given, names);
    return names.empty() ? "; there are none" : near.empty() ? "; there are:" : near + " There are:";
}

std::string choices(std::string_view given, std::span<const std::string_view> names) {
    if (names.empty()) {
        return "; there are none";
    }
    const auto shown = names.first(std::min(names.size(), kMostNamesShown));
    const std::string text = suggestion(given, names) + fmt::format("; there are {}", fmt::join(shown, ", "));
    const std::size_t rest = names.size() - shown.size();
    return rest == 0 ? text : fmt::format("{} and {} more", text, rest);
}

}  // namespace Brenta::OS::VIG::Tool
