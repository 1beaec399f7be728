#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace Brenta::OS::VIG {

// Splits text into tokens, and follows which arrays and objects are open, as the reader does up to the first error
// that it reports; from there on it goes no deeper. White space and comments separate tokens, a token is a bracket, a
// comma, a colon, a string or a run of anything else.
class JsonTokens {
  public:
    explicit JsonTokens(std::string_view json) : text(json) {}

    // Moves to the next token; false at the end of the text.
    bool next() {
        const bool isAfterComment = skipSeparators();
        begin = position;
        if (position == text.size()) {
            return false;
        }
        role = text[begin];
        // Where a comment follows the value of a member, the reader takes whatever comes next for the comma.
        if (isAfterComment && hasValue && isOpen('}') && role != '}') {
            role = ',';
        }
        skipToken();
        follow();
        return true;
    }

    // The kind of a token is its first character, or a comma if the reader takes it for one.
    char kind() const { return role; }
    std::string_view token() const { return text.substr(begin, position - begin); }
    std::size_t offset() const { return begin; }

    // Returns how many arrays and objects are open after the token.
    std::size_t depth() const { return open.size(); }

    // Returns the brackets that close what is open.
    std::string closingBrackets() const { return {open.rbegin(), open.rend()}; }

    // Returns whether the next character that is not white space is `character`; comments are not skipped.
    bool isFollowedBy(char character) const {
        const std::size_t place = endOfWhiteSpace();
        return place < text.size() && text[place] == character;
    }

  private:
    // Most tokens have none before them: no call is made to see that.
    std::size_t endOfWhiteSpace() const {
        std::size_t place = position;
        while (place < text.size() &&
               (text[place] == ' ' || text[place] == '\n' || text[place] == '\t' || text[place] == '\r')) {
            ++place;
        }
        return place;
    }

    void moveTo(std::size_t place) { position = std::min(place, text.size()); }

    // Returns whether there was a comment.
    bool skipSeparators() {
        for (bool hasComment = false;; hasComment = true) {
            position = endOfWhiteSpace();
            if (position == text.size() || text[position] != '/') {
                return hasComment;
            }
            const std::string_view mark = text.substr(position, 2);
            if (mark == "/*") {
                const std::size_t end = text.find("*/", position + 2);
                moveTo(end == std::string_view::npos ? end : end + 2);
            } else if (mark == "//") {
                moveTo(text.find_first_of("\r\n", position));
            } else {
                return hasComment;
            }
        }
    }

    void skipToken() {
        switch (text[position++]) {
            case '"':
                skipString();
                break;
            case '/':
                moveTo(position + 1);  // the reader looks for a comment
                break;
            case '[':
            case ']':
            case '{':
            case '}':
            case ',':
            case ':':
                break;
            default:
                moveTo(text.find_first_of(" \t\r\n[]{},:\"/", position));
        }
    }

    // It begins behind the first quote.
    void skipString() {
        const std::size_t content = position;
        do {
            moveTo(text.find('"', position));
            moveTo(position + 1);
        } while (position < text.size() && isEscaped(position - 1, content));
    }

    // Tells whether an odd number of backslashes stands before the place.
    bool isEscaped(std::size_t place, std::size_t content) const {
        std::size_t first = place;
        while (first > content && text[first - 1] == '\\') {
            --first;
        }
        return (place - first) % 2 == 1;
    }

    bool isOpen(char closing) const { return !open.empty() && open.back() == closing; }

    void follow() {
        switch (role) {
            case '[':
            case '{':
                open += role == '[' ? ']' : '}';
                hasValue = false;
                break;
            case ',':
            case ':':
                hasValue = false;
                break;
            case ']':
            case '}':
                if (isOpen(role)) {
                    open.pop_back();
                }
                [[fallthrough]];
            default:
                hasValue = true;
        }
    }

    const std::string_view text;
    std::size_t position = 0;
    std::size_t begin = 0;
    char role = '\0';
    std::string open;       // the bracket that closes each of what is open
    bool hasValue = false;  // the token is, or ends, a value or a key
};

}  // namespace Brenta::OS::VIG
