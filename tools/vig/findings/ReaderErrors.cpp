#include "tools/vig/findings/ReaderErrors.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "tools/vig/document/JsonMistake.h"
#include "tools/vig/document/ParseErrorText.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

Finding errorAt(std::size_t begin, std::size_t end, std::string message, std::string hint) {
    return {Severity::Error,
            std::string(textOf(VIGParseError::InvalidJson).name),
            {begin, end, {}},
            std::move(message),
            std::move(hint)};
}

// Returns the mistakes in the reader's own words.
std::vector<Finding> reportedErrors(const DocumentText& document) {
    const SourceText& source = document.source();
    const SourceText report({}, *document.report());
    std::vector<Finding> found;
    for (std::size_t number = 1; number <= report.lineCount(); ++number) {
        const std::string_view line = report.line(number);
        const auto position = DocumentText::reportedPosition(line);
        if (position && 0 < position->line && position->line <= source.lineCount()) {
            const std::size_t offset = std::min(source.offsetOf(*position), source.text().size());
            found.push_back(errorAt(offset, offset + 1, {}, {}));
        } else if (!found.empty() && !line.empty()) {
            std::string& message = found.back().message;
            message += message.empty() ? "" : " ";
            message += shortened(line.substr(std::min(line.find_first_not_of(' '), line.size())), kMostShownOfReport);
        }
    }
    if (found.empty()) {
        found.push_back(errorAt(0, 0, shortened(*document.report(), kMostShownOfReport), {}));
    }
    return found;
}

}  // namespace

std::vector<Finding> readerErrors(const DocumentText& document) {
    std::vector<Finding> found;
    for (JsonMistake& each : jsonMistakesIn(document.source(), JsonDialect::Library)) {
        found.push_back(errorAt(each.begin, each.end, std::move(each.message), std::move(each.hint)));
    }
    return found.empty() ? reportedErrors(document) : found;
}

void appendTrailingText(const DocumentText& document, std::vector<Finding>& found) {
    const Place root = document.placeOf(document.root(), {});
    if (auto rest = trailingText(document.source(), root.end)) {
        found.push_back({Severity::Warning,
                         "trailing-text",
                         {rest->begin, rest->end, {}},
                         std::move(rest->message),
                         std::move(rest->hint)});
    }
}

}  // namespace Brenta::OS::VIG::Tool
