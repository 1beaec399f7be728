#pragma once

#include <json/value.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tools/vig/words/SourceText.h"

namespace Brenta::OS::VIG::Tool {

// It locates a value in a text, by its bytes and its JSON path ("configs[0].payload.id").
struct Place {
    std::size_t begin;
    std::size_t end;
    std::string path;
};

// It holds a rule document as text, and as the JSON that the library reads from it.
class DocumentText {
  public:
    // `fileName` is what messages call it.
    DocumentText(std::string fileName, std::string text);

    const SourceText& source() const { return text; }

    // Returns null if the text is not JSON.
    const Json::Value& root() const { return json; }

    // Holds the reader's report if the text is not JSON: for each mistake its line and column, and what is wrong.
    const std::optional<std::string>& report() const { return unreadable; }

    // Returns the position that a line of a reader's report tells, "* Line 1, Column 2", if it is such a line.
    static std::optional<SourceText::Position> reportedPosition(std::string_view line);

    // Returns the place of a value of root(), or of a copy of one; `path` is its JSON path.
    Place placeOf(const Json::Value& value, std::string path) const;

  private:
    const SourceText text;
    Json::Value json;
    std::optional<std::string> unreadable;
};

}  // namespace Brenta::OS::VIG::Tool
