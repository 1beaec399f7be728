#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/document/JsonMistake.h"
#include "tools/vig/words/SourceText.h"

namespace Brenta::OS::VIG::Tool {

inline constexpr std::string_view kWhiteSpace = " \t\r\n";

// It collects mistakes. Of those that are alike the first few are kept, and how many more there are.
class JsonMistakes {
  public:
    // `kind` is the same for mistakes that are alike.
    void tell(std::string_view kind, std::size_t begin, std::size_t end, std::string message, std::string_view hint);

    std::vector<JsonMistake> take();

  private:
    std::vector<JsonMistake> found;
    std::map<std::string, std::size_t, std::less<>> counts;  // by kind
    std::map<std::string, std::size_t, std::less<>> lastOf;  // in `found`
};

// It says what may come next in an array, in an object, or outside.
enum class Expected { Value, Key, Colon, Separator };

// The kinds are brackets, comma and colon as themselves, '"' for a text, 'v' for a number, true, false or null, 'w' for
// a word that is none of these, and 0 for the end.
struct JsonToken {
    char kind = '\0';
    std::size_t begin = 0;
    std::size_t end = 0;
};

// It splits a text into tokens: also what is no token of JSON, and was meant as one, which it tells.
class JsonScanner {
  public:
    // Both must outlive it.
    JsonScanner(const SourceText& text, JsonDialect dialect, JsonMistakes& mistakes);

    // Moves over the next token.
    JsonToken next(Expected expected);

    // Moves over white space and comments as the library accepts them.
    void skipSeparators();

    // Tells that the text that begins with the token is not closed.
    void tellUnclosed(const JsonToken& token);

    // The next token begins there, or behind it.
    std::size_t place;

    bool hasEnded = false;  // nothing can be said of what follows

    // Return what a line has from a place on, and what stands at the beginning of one.
    std::string_view restOfLine(std::size_t from) const;
    static bool isConflictMarker(std::string_view line);

  private:
    void skipAllSeparators(Expected expected);
    bool skipOddSeparator();
    void skipInvisible();
    bool skipOddComment();
    void skipConflict();
    void takeText(JsonToken& token);
    void takeTextInOtherQuotes(JsonToken& token);
    void takeLookAlike(JsonToken& token, char meant, Expected expected);
    void takeWord(JsonToken& token, Expected expected);
    bool isFirstOnLine() const;

    const SourceText& source;
    const std::string_view text;
    const bool isStrict;
    JsonMistakes& mistakes;
    bool isInConflict = false;
    mutable std::size_t lineBegin = 1;  // of which the end is known
    mutable std::size_t lineEnd = 0;
};

}  // namespace Brenta::OS::VIG::Tool
