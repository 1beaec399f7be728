#include "tools/vig/document/DocumentText.h"

#include <charconv>
#include <utility>

#include "vig/parsers/JsonText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

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

}  // namespace

DocumentText::DocumentText(std::string fileName, std::string content)
    : text(std::move(fileName), std::move(content)), unreadable(readJson(text.text(), json)) {
    if (unreadable) {
        json = Json::Value();
    }
}

std::optional<SourceText::Position> DocumentText::reportedPosition(std::string_view line) {
    const auto number = takeNumber(line, "* Line ");
    const auto column = takeNumber(line, ", Column ");
    return number && column && line.empty() ? std::optional(SourceText::Position{*number, *column}) : std::nullopt;
}

Place DocumentText::placeOf(const Json::Value& value, std::string path) const {
    const std::size_t firstByte = text.offsetOf({1, 1});  // the reader counts from there
    return {firstByte + static_cast<std::size_t>(value.getOffsetStart()),
            firstByte + static_cast<std::size_t>(value.getOffsetLimit()), std::move(path)};
}

}  // namespace Brenta::OS::VIG::Tool
