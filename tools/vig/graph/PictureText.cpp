#include "tools/vig/graph/Pictures.h"

#include <algorithm>

#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kLongestName = 40;
constexpr std::size_t kLongestLine = 56;
constexpr std::size_t kLongestMessage = 400;
constexpr std::size_t kMostLines = 8;

// Returns at most kMostLines, the last one telling how many were left out.
std::vector<std::string> linesOf(const std::vector<std::string>& texts, std::string_view begin) {
    const std::size_t shown = texts.size() > kMostLines ? kMostLines - 1 : texts.size();
    std::vector<std::string> lines;
    for (std::size_t index = 0; index < shown; ++index) {
        lines.push_back(std::string(begin) + pictureText(texts[index], kLongestLine));
    }
    if (shown < texts.size()) {
        lines.push_back(std::string(begin) + "… and " + std::to_string(texts.size() - shown) + " more");
    }
    return lines;
}

}  // namespace

std::string pictureText(std::string_view text, std::size_t most) {
    std::string result = printable(text.substr(0, 4 * most + 4));  // a character has at most 4 bytes
    std::size_t characters = 0;
    const auto last =
        std::ranges::find_if(result, [&](char each) { return beginsCharacter(each) && ++characters == most; });
    if (charactersIn(result) > most) {
        result.erase(last, result.end());
        result += "…";
    }
    return result;
}

std::string labelOf(const GraphState& state) {
    const bool visible = state.name.find_first_not_of(' ') != std::string::npos;
    return visible ? pictureText(state.name, kLongestName) : inQuotes(state.name.substr(0, kLongestName));
}

std::string orderOf(const GraphArrow& arrow) {
    return std::to_string(arrow.first) + (arrow.first == arrow.last ? "" : "…" + std::to_string(arrow.last));
}

std::vector<std::string> conditionLinesOf(const GraphArrow& arrow) {
    return linesOf(arrow.conditions, "");
}

std::vector<std::string> actionLinesOf(const GraphArrow& arrow) {
    return linesOf(arrow.actions, "→ ");
}

std::string trafficLineOf(const GraphArrow& arrow) {
    switch (kindOf(arrow.traffic)) {
        case TrafficKind::Unknown:
            return {};
        case TrafficKind::NeverTried:
            return "never tried";
        case TrafficKind::NeverFired:
        case TrafficKind::Fired:
            break;
    }
    return std::to_string(arrow.traffic->fired) + " of " + std::to_string(arrow.traffic->tried) + " tried";
}

std::vector<std::string> markLinesOf(const std::vector<GraphMark>& marks) {
    std::vector<std::string> names;
    for (const GraphMark& each : marks) {
        if (std::ranges::find(names, each.name) == names.end()) {
            names.push_back(each.name);
        }
    }
    return linesOf(names, "⚠ ");
}

std::string messagesOf(const std::vector<GraphMark>& marks) {
    const auto messageOf = [](const GraphMark& each) { return each.name + ": " + each.message; };
    return pictureText(joined(marks, " · ", messageOf), kLongestMessage);
}

}  // namespace Brenta::OS::VIG::Tool
