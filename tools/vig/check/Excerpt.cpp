#include "tools/vig/check/Excerpt.h"

#include <algorithm>

namespace tool {

std::string shortened(std::string_view text, std::size_t most) {
    return text.size() <= most ? std::string(text) : std::string(text.substr(0, characterStart(text, most))) + "…";
}

std::string excerpt(std::string_view text, std::size_t most) {
    constexpr std::string_view kWhiteSpace = " \t\r\n";
    std::string line;
    while (!text.empty() && line.size() <= most) {
        const std::size_t length = std::min(text.find_first_of(kWhiteSpace), text.size());
        line += text.substr(0, length);
        text.remove_prefix(length);
        const std::size_t next = std::min(text.find_first_not_of(kWhiteSpace), text.size());
        line += next > 0 ? " " : "";
        text.remove_prefix(next);
    }
    return shortened(line, most);
}

std::size_t characterStart(std::string_view text, std::size_t offset) {
    constexpr std::size_t kMostContinuationBytes = 3;
    std::size_t start = offset;
    while (start > 0 && start < text.size() && offset - start < kMostContinuationBytes &&
           !beginsCharacter(text[start])) {
        --start;
    }
    return start;
}

}  // namespace tool
