#include "tools/vig/findings/ReaderErrors.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "tools/vig/document/ParseErrorText.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostShownOfMessage = 200;

}  // namespace

std::vector<Finding> readerErrors(const DocumentText& document) {
    const SourceText& source = document.source();
    const std::string& text = *document.report();
    const std::string name(textOf(VIGParseError::InvalidJson).name);
    const SourceText report({}, text);
    std::vector<Finding> found;
    for (std::size_t number = 1; number <= report.lineCount(); ++number) {
        const std::string_view line = report.line(number);
        const auto position = DocumentText::reportedPosition(line);
        if (position && 0 < position->line && position->line <= source.lineCount()) {
            const std::size_t offset = std::min(source.offsetOf(*position), source.text().size());
            found.push_back({Severity::Error, name, {offset, offset + 1, {}}, {}, {}});
        } else if (!found.empty() && !line.empty()) {
            std::string& message = found.back().message;
            message += message.empty() ? "" : " ";
            message += shortened(line.substr(std::min(line.find_first_not_of(' '), line.size())), kMostShownOfMessage);
        }
    }
    if (found.empty()) {
        found.push_back({Severity::Error, name, Place{0, 0, {}}, shortened(text, kMostShownOfMessage), {}});
    }
    return found;
}

}  // namespace Brenta::OS::VIG::Tool
