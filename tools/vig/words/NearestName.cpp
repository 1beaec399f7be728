#include "tools/vig/words/NearestName.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
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
// places; kLongestName if that is more than `most`. Cells so far from the diagonal that they come to more are left out.
// REQUIRES: none is longer than kLongestName.
std::size_t editDistance(std::string_view left, std::string_view right, std::size_t most) {
    using Row = std::array<std::size_t, kLongestName + 1>;
    if (std::max(left.size(), right.size()) - std::min(left.size(), right.size()) > most) {
        return kLongestName;
    }
    Row rows[3];
    Row* beforeLast = &rows[0];
    Row* last = &rows[1];
    Row* row = &rows[2];
    beforeLast->fill(kLongestName);
    last->fill(kLongestName);
    std::iota(last->begin(), last->begin() + static_cast<std::ptrdiff_t>(std::min(most, right.size())) + 1,
              std::size_t{0});
    std::size_t leastOfLast = 0;
    for (std::size_t i = 0; i < left.size(); ++i) {
        row->fill(kLongestName);
        (*row)[0] = i + 1;
        std::size_t least = i + 1;
        const std::size_t end = std::min(right.size(), i + most + 1);
        for (std::size_t j = i - std::min(i, most); j < end; ++j) {
            std::size_t cell =
                std::min({(*last)[j] + (left[i] == right[j] ? 0 : 1), (*last)[j + 1] + 1, (*row)[j] + 1});
            if (i > 0 && j > 0 && left[i] == right[j - 1] && left[i - 1] == right[j]) {
                cell = std::min(cell, (*beforeLast)[j - 1] + 1);
            }
            (*row)[j + 1] = cell;
            least = std::min(least, cell);
        }
        if (std::min(least, leastOfLast) > most) {
            return kLongestName;
        }
        leastOfLast = least;
        beforeLast = std::exchange(last, std::exchange(row, beforeLast));
    }
    return (*last)[right.size()] <= most ? (*last)[right.size()] : kLongestName;
}

// Returns the name without what people mistake most: capital letters and the marks between words.
std::string folded(std::string_view name) {
    std::string result = inLowerCase(name);
    std::erase_if(result, [](char each) { return each == '_' || each == '-' || each == ' '; });
    return result;
}

// Returns the distance between a name that is given, which is `text` when folded, and another one; kLongestName if they
// are not near.
std::size_t distanceOf(std::string_view given, const std::string& text, std::string_view name) {
    if (given == name) {
        return 0;
    }
    if (name.size() > kLongestName) {
        return kLongestName;
    }
    const std::size_t most =
        std::min(std::max<std::size_t>(2, name.size() / 3), std::max(given.size(), name.size()) / 2);
    const std::size_t written = editDistance(given, name, most);
    const std::size_t less = std::min(most, written);
    return less == 0 ? written : std::min(written, editDistance(text, folded(name), less - 1) + 1);
}

// Tells whether the name that is the text when folded is the other one with something left out of it: in between, or at
// most the half at its end.
bool isShortFor(const std::string& text, std::string_view name) {
    std::size_t place = 0;
    for (const char each : folded(name)) {
        place += place < text.size() && text[place] == each ? 1 : 0;
    }
    return place == text.size() && 2 * text.size() >= name.size();
}

// Tells whether one of them is a short form of the other one; the given one is `text` when folded.
bool isShortForm(std::string_view given, const std::string& text, std::string_view name) {
    constexpr std::size_t kLeast = 4;
    return (given.size() >= kLeast && isShortFor(text, name)) ||
           (name.size() >= kLeast && isShortFor(folded(name), given));
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
    const std::string text = folded(given);
    std::vector<std::size_t> distances;
    for (const std::string_view name : names) {
        const std::size_t distance = distanceOf(given, text, name);
        // Several things may have the same name.
        const bool isNew = std::ranges::find(near, name) == near.end();
        if (isNew && (distance < kLongestName || isShortForm(given, text, name))) {
            near.push_back(name);
            distances.push_back(distance);
            best = std::min(best, distance);
        }
    }
    std::size_t index = 0;
    std::erase_if(near, [&](std::string_view name) {
        const std::size_t distance = distances[index++];
        return distance > best && (best <= kSlip || !isShortForm(given, text, name));
    });
    near.resize(std::min(near.size(), kMost));
    return near;
}

std::string suggestion(std::string_view given, std::span<const std::string_view> names) {
    const auto near = nearNames(given, names);
    if (near.empty()) {
        return {};
    }
    std::string list = inQuotes(near.front());
    for (std::size_t index = 1; index < near.size(); ++index) {
        list += (index + 1 == near.size() ? " or " : ", ") + inQuotes(near[index]);
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
