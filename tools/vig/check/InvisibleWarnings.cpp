#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tools/vig/check/Warnings.h"
#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/words/Characters.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// These belong to emoji, or to the writing of some languages, and a NUL is told of by another warning.
constexpr std::pair<char32_t, char32_t> kMeantInside[] = {{0x0000, 0x0000}, {0x034F, 0x034F},  {0x061C, 0x061C},
                                                          {0x200C, 0x200F}, {0x202A, 0x202E},  {0x2066, 0x2069},
                                                          {0xFE00, 0xFE0F}, {0xE0020, 0xE007F}};
constexpr std::pair<char32_t, char32_t> kMeantAtTheEnd[] = {{0x0000, 0x0000}, {0xFE00, 0xFE0F}, {0xE007F, 0xE007F}};

bool isIn(const auto& ranges, char32_t code) {
    return std::ranges::any_of(ranges, [&](const auto& each) { return each.first <= code && code <= each.second; });
}

bool isBlankAtTheEnd(char32_t code) {
    return code == ' ' || (isInvisible(code) && !isIn(kMeantAtTheEnd, code));
}

// It says where a name has a character that nobody sees.
struct Unseen {
    std::string_view where;
    std::string character;
};

std::optional<Unseen> unseenIn(std::string_view text) {
    const auto named = [](std::string_view rest) { return rest[0] == ' ' ? "a space" : characterName(rest); };
    std::optional<Unseen> inside;
    std::optional<Unseen> atTheEnd;
    for (std::string_view rest = text; !rest.empty();) {
        const auto [code, length] = firstCharacter(rest);
        const bool isFirst = rest.size() == text.size();
        if (isFirst && isBlankAtTheEnd(code)) {
            return Unseen{"at its beginning", named(rest)};
        }
        if (!inside && isInvisible(code) && !isIn(kMeantInside, code)) {
            inside = Unseen{"in it", named(rest)};
        }
        atTheEnd = isBlankAtTheEnd(code) ? std::optional(Unseen{"at its end", named(rest)}) : std::nullopt;
        rest.remove_prefix(length);
    }
    return atTheEnd ? atTheEnd : inside;
}

// Returns the name without what is not seen: a space of another kind inside becomes a space.
std::string seenOf(std::string_view text) {
    std::string result;
    for (std::string_view rest = text; !rest.empty();) {
        const auto [code, length] = firstCharacter(rest);
        if (!isInvisible(code) || isIn(kMeantInside, code)) {
            result += rest.substr(0, length);
        } else if (columnsOf(rest.substr(0, length)) > 0 && !result.ends_with(' ')) {
            result += ' ';
        }
        rest.remove_prefix(length);
    }
    result.erase(result.find_last_not_of(' ') + 1);
    return result.erase(0, std::min(result.find_first_not_of(' '), result.size()));
}

// Judges the names of one transition.
class NameJudge {
  public:
    NameJudge(std::size_t since, std::vector<Finding>& found) : since(since), found(found) {}

    void judge(const std::string& name, const Place& place) {
        if (const auto unseen = unseenIn(name)) {
            takeOutAt(place, since, found);
            const std::string seen = seenOf(name);
            warn(found, "invisible-character", place,
                 shownQuoted(name) + " has " + unseen->character + " " + std::string(unseen->where),
                 seen.empty() ? "write a name that can be seen" : "write " + shownQuoted(seen));
        }
    }

    void judge(const FilterModel& filter) {
        const bool isName = filter.valueType == FilterValueType::String &&
                            (filter.op == FilterOperator::Equal || filter.op == FilterOperator::NotEqual);
        for (const OperandModel* const operand : {&filter.operand1, &filter.operand2}) {
            if (isAttribute(*operand) || (isConstant(*operand) && isName)) {
                judge(operand->operand.value, operand->place);
            }
        }
    }

  private:
    const std::size_t since;
    std::vector<Finding>& found;
};

}  // namespace

void appendInvisibleWarnings(const TransitionModel& transition, std::size_t since, std::vector<Finding>& found) {
    NameJudge judge(since, found);
    judge.judge(transition.from, placeOf(transition, "from_state"));
    judge.judge(transition.to, placeOf(transition, "to_state"));
    for (const FilterModel& filter : transition.filters) {
        judge.judge(filter);
    }
}

}  // namespace Brenta::OS::VIG::Tool
