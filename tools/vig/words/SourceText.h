#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Brenta::OS::VIG::Tool {

// It gives a text by its lines. Lines and columns count from 1, columns in bytes. A byte order mark does not count.
class SourceText {
  public:
    struct Position {
        std::size_t line;
        std::size_t column;
    };

    // `fileName` is what messages call it.
    SourceText(std::string fileName, std::string content);

    const std::string& name() const { return file; }
    const std::string& text() const { return contents; }

    // Returns the position of a byte offset; one beyond the end counts as the end.
    Position positionOf(std::size_t offset) const;

    // Returns the byte offset. REQUIRES: there is such a line.
    std::size_t offsetOf(Position position) const { return lineStarts[position.line - 1] + position.column - 1; }

    std::size_t lineCount() const { return lineStarts.size(); }

    // Returns the line without its line end. REQUIRES: there is such a line.
    std::string_view line(std::size_t number) const;

  private:
    const std::string file;
    const std::string contents;
    std::vector<std::size_t> lineStarts;
};

}  // namespace Brenta::OS::VIG::Tool
