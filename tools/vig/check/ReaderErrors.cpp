#include "tools/vig/check/ReaderErrors.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>

#include "tools/vig/document/ParseErrorText.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostShownOfMessage = 200;

// Takes the number from the text behind the prefix.
std::optional<std::size_t> takeNumber(std::string_view& text, std::string_view prefix) {
    std::size_t number = 0;
    if (!text.starts_with(prefix)) {
        return std::nullopt;
    }
    const auto [end, error] = std::from_chars(text.data() + prefix.size(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

// The byte offset, if the line of the report is one that tells a place.
std::optional<std::size_t> readPlace(std::string_view reported, const SourceText& source) {
    const auto line = takeNumber(reported, "* Line ");
    const auto column = takeNumber(reported, ", Column ");
    if (!line || !column || !reported.empty() || *line == 0 || *line > source.lineCount()) {
        return std::nullopt;
    }
    return std::min(source.offsetOf({*line, *column}), source.text().size());
}

}  // namespace

void appendReaderErrors(const DocumentText& document, std::vector<Diagnostic>& found) {
    const std::string_view report = *document.report();
    const std::string name(textOf(VIGParseError::InvalidJson).name);
    const std::size_t before = found.size();
    for (std::size_t begin = 0; begin < report.size();) {
        const std::size_t end = std::min(report.find('\n', begin), report.size());
        const std::string_view line = report.substr(begin, end - begin);
        if (const auto offset = readPlace(line, document.source())) {
            found.push_back({Severity::Error, name, {*offset, *offset + 1, {}}, {}, {}});
        } else if (found.size() > before) {
            std::string& message = found.back().message;
            message += message.empty() ? "" : " ";
            message += shortened(line.substr(std::min(line.find_first_not_of(' '), line.size())), kMostShownOfMessage);
        }
        begin = end + 1;
    }
    if (found.size() == before) {
        found.push_back({Severity::Error, name, {0, 0, {}}, shortened(report, kMostShownOfMessage), {}});
    }
}

}  // namespace Brenta::OS::VIG::Tool
