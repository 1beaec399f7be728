#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace Brenta::OS::VIG {

// The text that the reader's offsets count in.
inline std::string_view withoutByteOrderMark(std::string_view text) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    return text.starts_with(kMark) ? text.substr(kMark.size()) : text;
}

// Splits text where the reader splits it, as far as the text is valid: white space and comments separate
// tokens, a token is a bracket, a comma, a colon, a string or a run of anything else.
class JsonTokens {
  public:
    explicit JsonTokens(std::string_view json) : text(json) {}

    // Moves to the next token; false at the end of the text.
    bool next() {
        skipSeparators();
        begin = position;
        if (position == text.size()) {
            return false;
        }
        if (text[position] == '"') {
            skipString();
        } else if (isPunctuation(text[position])) {
            ++position;
        } else {
            skipRun();
        }
        return true;
    }

    // The kind of token: its first character.
    char kind() const { return text[begin]; }
    std::string_view token() const { return text.substr(begin, position - begin); }
    std::size_t offset() const { return begin; }

    // Whether the next character that is not white space is `character`; comments are not skipped.
    bool isFollowedBy(char character) const {
        const std::size_t place = text.find_first_not_of(kWhiteSpace, position);
        return place != std::string_view::npos && text[place] == character;
    }

  private:
    static constexpr std::string_view kWhiteSpace = " \t\r\n";

    static bool isPunctuation(char character) {
        return std::string_view("[]{},:").find(character) != std::string_view::npos;
    }

    bool isAt(std::string_view mark) const { return text.substr(position, mark.size()) == mark; }

    void moveTo(std::size_t place) { position = std::min(place, text.size()); }

    void skipSeparators() {
        for (;;) {
            moveTo(text.find_first_not_of(kWhiteSpace, position));
            if (isAt("/*")) {
                const std::size_t end = text.find("*/", position + 2);
                moveTo(end == std::string_view::npos ? end : end + 2);
            } else if (isAt("//")) {
                moveTo(text.find_first_of("\r\n", position));
            } else {
                return;
            }
        }
    }

    void skipString() {
        ++position;
        while (position < text.size() && text[position] != '"') {
            moveTo(position + (text[position] == '\\' ? 2 : 1));
        }
        moveTo(position + 1);
    }

    void skipRun() { moveTo(text.find_first_of(" \t\r\n[]{},:\"/", position + 1)); }

    const std::string_view text;
    std::size_t position = 0;
    std::size_t begin = 0;
};

}  // namespace Brenta::OS::VIG
