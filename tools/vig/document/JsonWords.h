#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Brenta::OS::VIG::Tool {

// They tell what was meant with what stands in a text and is no JSON.

// Returns the quote (" or '), the bracket, the comma or the colon that the character may have been taken for; 0 if
// none. It is one itself only as ' and `, which JSON does not have.
char lookAlike(char32_t code);

// Returns true if the library's reader takes the word for a number, true, false or null.
bool isJsonValue(std::string_view word);

struct WordMistake {
    std::string message;
    std::string hint;
    bool isText = false;  // a text was meant, which may have more words
};

// REQUIRES: the word is not empty, and no value of JSON.
WordMistake valueMistake(std::string_view word);
WordMistake keyMistake(std::string_view word);

// Returns what is wrong with the escapes of a text: the first place, and why.
struct EscapeMistake {
    std::size_t begin;  // in the text
    std::size_t end;
    WordMistake what;
};
std::optional<EscapeMistake> escapeMistakeIn(std::string_view text);

}  // namespace Brenta::OS::VIG::Tool
