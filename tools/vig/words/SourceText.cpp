#include "tools/vig/words/SourceText.h"

#include <algorithm>
#include <utility>

#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG::Tool {

SourceText::SourceText(std::string fileName, std::string content)
    : file(std::move(fileName)),
      contents(std::move(content)),
      lineStarts{contents.size() - withoutByteOrderMark(contents).size()} {
    for (std::size_t place = lineStarts.front(); place < contents.size(); ++place) {
        const bool ends = contents[place] == '\n' ||
                          (contents[place] == '\r' && (place + 1 == contents.size() || contents[place + 1] != '\n'));
        if (ends) {
            lineStarts.push_back(place + 1);
        }
    }
}

SourceText::Position SourceText::positionOf(std::size_t offset) const {
    const std::size_t place = std::clamp(offset, lineStarts.front(), contents.size());
    const auto next = std::upper_bound(lineStarts.begin(), lineStarts.end(), place);
    return {static_cast<std::size_t>(next - lineStarts.begin()), place - *(next - 1) + 1};
}

std::string_view SourceText::line(std::size_t number) const {
    const std::size_t begin = lineStarts[number - 1];
    const std::size_t end = number < lineStarts.size() ? lineStarts[number] : contents.size();
    const std::string_view whole = std::string_view(contents).substr(begin, end - begin);
    return whole.substr(0, whole.find_last_not_of("\r\n") + 1);
}

}  // namespace Brenta::OS::VIG::Tool
