#include "tools/vig/words/Wrapped.h"

#include <algorithm>

#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

std::vector<std::string> wrapped(std::string_view text, std::size_t columns, std::size_t hanging) {
    std::vector<std::string> lines(1);
    bool hasWord = false;  // the last line
    while (!text.empty()) {
        const std::size_t blanks = std::min(text.find_first_not_of(' '), text.size());
        const std::size_t end = std::min(text.find(' ', blanks), text.size());
        if (hasWord && charactersIn(lines.back()) + charactersIn(text.substr(0, end)) > columns) {
            lines.push_back(std::string(hanging, ' '));
            lines.back() += text.substr(blanks, end - blanks);
        } else {
            lines.back() += text.substr(0, end);
        }
        hasWord = true;
        text.remove_prefix(end);
    }
    return lines;
}

}  // namespace Brenta::OS::VIG::Tool
