#include "tools/vig/document/DocumentText.h"

#include <utility>

#include "vig/base/Utf8.h"
#include "vig/parsers/JsonText.h"

namespace Brenta::OS::VIG::Tool {

DocumentText::DocumentText(std::string fileName, std::string content)
    : text(std::move(fileName), std::move(content)), unreadable(readJson(text.text(), json)) {
    if (unreadable) {
        json = Json::Value();
    }
}

Place DocumentText::placeOf(const Json::Value& value, std::string path) const {
    const std::size_t firstByte = text.offsetOf({1, 1});  // the reader counts from there
    return {firstByte + static_cast<std::size_t>(value.getOffsetStart()),
            firstByte + static_cast<std::size_t>(value.getOffsetLimit()), std::move(path)};
}

}  // namespace Brenta::OS::VIG::Tool
