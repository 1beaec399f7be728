#include "tools/vig/SourceText.h"

#include <algorithm>
#include <utility>

namespace tool {

SourceText::SourceText(std::string fileName, std::string content)
    : file(std::move(fileName)), contents(std::move(content)), lineStarts{0} {
    for (std::size_t place = 0; place < contents.size(); ++place) {
        const bool ends = contents[place] == '\n' ||
                          (contents[place] == '\r' && (place + 1 == contents.size() || contents[place + 1] != '\n'));
        if (ends) {
            lineStarts.push_back(place + 1);
        }
    }
}

SourceText::Position SourceText::positionOf(std::size_t offset) const {
    const std::size_t place = std::min(offset, contents.size());
    const auto next = std::upper_bound(lineStarts.begin(), lineStarts.end(), place);
    return {static_cast<std::size_t>(next - lineStarts.begin()), place - *(next - 1) + 1};
}

std::string_view SourceText::line(std::size_t number) const {
    const std::size_t begin = lineStarts[number - 1];
    const std::string_view rest = std::string_view(contents).substr(begin);
    return rest.substr(0, rest.find_first_of("\r\n"));
}

}  // namespace tool
