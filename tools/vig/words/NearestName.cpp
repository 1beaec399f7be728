#include "tools/vig/words/NearestName.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kLongestName = 64;  // beyond that, nobody mistyped a name
constexpr std::size_t kMostNamesShown = 10;

// Returns how many characters have to be put in, left out or exchanged to make one of the other, or neighbours change
// places.
std::size_t editDistance(std::string_view left, std::string_view right) {
    std::vector<std::size_t> beforeLast;
    std::vector<std::size_t> last(right.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::vector<std::size_t> row = {i + 1};
        for (std::size_t j = 0; j < right.size(); ++j) {
            const std::size_t exchanged = last[j] + (left[i] == right[j] ? 0 : 1);
            row.push_back(std::min({exchanged, last[j + 1] + 1, row[j] + 1}));
            if (i > 0 && j > 0 && left[i] == right[j - 1] && left[i - 1] == right[j]) {
                row.back() = std::min(row.back(), beforeLast[j - 1] + 1);
            }
        }
        beforeLast = std::exchange(last, std::move(row));
    }
    return last.back();
}

// Returns the name without what people mistake most: capital letters and the marks between words.
std::string folded(std::string_view name) {
    std::string result;
    for (const char each : name) {
        if (each != '_' && each != '-' && each != ' ') {
            result += each >= 'A' && each <= 'Z' ? static_cast<char>(each + 32) : each;
        }
    }
    return result;
}

std::size_t distanceOf(std::string_view given, std::string_view name) {
    return given == name ? 0 : std::min(editDistance(given, name), editDistance(folded(given), folded(name)) + 1);
}

// Tells whether the name is the text with something left out of it: in between, or at most the half at its end.
bool isShortFor(std::string_view given, std::string_view name) {
    const std::string text = folded(given);
    std::size_t place = 0;
    for (const char each : folded(name)) {
        place += place < text.size() && text[place] == each ? 1 : 0;
    }
    return place == text.size() && 2 * text.size() >= name.size();
}

// Tells whether one of them is a short form of the other one.
bool isShortForm(std::string_view given, std::string_view name) {
    constexpr std::size_t kLeast = 4;
    return (given.size() >= kLeast && isShortFor(given, name)) || (name.size() >= kLeast && isShortFor(name, given));
}

}  // namespace

std::vector<std::string_view> nearNames(std::string_view given, std::span<const std::string_view> names) {
    constexpr std::size_t kMost = 3;
    constexpr std::size_t kSlip = 1;  // of one key, which leaves no doubt
    std::vector<std::string_view> near;
    std::size_t best = kLongestName;
    if (given.size() > kLongestName) {
        return near;
    }
    std::vector<std::size_t> distances;
    for (const std::string_view name : names) {
        const std::size_t distance = name.size() > kLongestName ? kLongestName : distanceOf(given, name);
        const bool isNear = distance <= std::max<std::size_t>(2, name.size() / 3) &&
                            2 * distance <= std::max(given.size(), name.size());
        // Several things may have the same name.
        const bool isNew = std::ranges::find(near, name) == near.end();
        if (isNew && (isNear || isShortForm(given, name))) {
            near.push_back(name);
            distances.push_back(distance);
            best = std::min(best, distance);
        }
    }
    std::size_t index = 0;
    std::erase_if(near, [&](std::string_view name) {
        const std::size_t distance = distances[index++];
        return distance > best && (best <= kSlip || !isShortForm(given, name));
    });
    near.resize(std::min(near.size(), kMost));
    return near;
}

std::string suggestion(std::string_view given, std::span<const std::string_view> names) {
    const auto near = nearNames(given, names);
    if (near.empty()) {
        return {};
    }
    std::string list = quoted(near.front());
    for (std::size_t index = 1; index < near.size(); ++index) {
        list += (index + 1 == near.size() ? " or " : ", ") + quoted(near[index]);
    }
    return "; did you mean " + list + "?";
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
