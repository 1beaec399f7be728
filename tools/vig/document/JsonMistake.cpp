// The search for what is wrong with a text that is no JSON.
//
// It reads the text as the library's reader does, but behind a mistake as if what was meant were written: a text in
// typographic quotes is a text, and where a comma is missing, there is one. So people are told of all mistakes at once.
// Where it cannot know what was meant, the search ends, since whatever follows could be due to that.
//
// Which bracket is wrong it finds by trial: if one is exchanged, put in or left out, and all brackets that follow then
// close each other up to the end of the text, it was that one.
#include "tools/vig/document/JsonMistake.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "tools/vig/document/JsonScanner.h"
#include "tools/vig/document/JsonWords.h"
#include "tools/vig/words/Characters.h"
#include "tools/vig/words/Text.h"
#include "vig/parsers/JsonTokens.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostLevels = 1000;  // beyond, the reader itself says what is wrong
constexpr std::size_t kMostShownOfBrackets = 40;
constexpr std::size_t kFarthestQuote = 200;

bool isOneOf(char character, std::string_view characters) {
    return characters.find(character) != std::string_view::npos;
}

std::string signInQuotes(char character) {
    return std::string("\"") + character + "\"";
}

// Tells whether the text begins with a zero where the pattern has one, and with other bytes elsewhere.
bool startsWithZeros(std::string_view text, std::string_view pattern) {
    return text.size() >= pattern.size() &&
           std::ranges::equal(text.substr(0, pattern.size()), pattern,
                              [](char byte, char wanted) { return (byte == '\0') == (wanted == '0'); });
}

// Returns the name of the encoding of a text that is not in UTF-8, by its byte order mark, or by the zeros before or
// behind its first characters, which in JSON are ASCII.
std::string_view otherEncoding(std::string_view text) {
    using namespace std::literals;
    struct Encoding {
        std::string_view mark;
        std::string_view zeros;
        std::string_view name;
    };
    constexpr Encoding kEncodings[] = {{"\xFF\xFE\0\0"sv, "x000x000", "UTF-32 (little endian)"},
                                       {"\0\0\xFE\xFF"sv, "000x000x", "UTF-32 (big endian)"},
                                       {"\xFF\xFE"sv, "x0x0", "UTF-16 (little endian)"},
                                       {"\xFE\xFF"sv, "0x0x", "UTF-16 (big endian)"}};
    const auto* const found = std::ranges::find_if(kEncodings, [&](const Encoding& each) {
        return text.starts_with(each.mark) || startsWithZeros(text, each.zeros);
    });
    return found != std::end(kEncodings) ? found->name : std::string_view();
}

bool isCompressed(std::string_view text) {
    return text.starts_with("\x1F\x8B") || text.starts_with("PK\x03\x04") || text.starts_with("\x28\xB5\x2F\xFD");
}

// Finds where a text inside of plain quotes has another double quote.
std::size_t otherQuoteIn(std::string_view content) {
    std::size_t place = 0;
    while (place < content.size()) {
        const auto [code, length] = firstCharacter(content.substr(place));
        if (lookAlike(code) == '"') {
            return place;
        }
        place += length;
    }
    return std::string_view::npos;
}

class JsonSearch {
  public:
    JsonSearch(const SourceText& text, JsonDialect dialect)
        : source(text), text(text.text()), dialect(dialect), scanner(text, dialect, mistakes) {}

    std::vector<JsonMistake> run() {
        if (!tellForm()) {
            while (!scanner.hasEnded) {
                const JsonToken token = scanner.next(expected());
                if (!scanner.hasEnded) {
                    ++tokenCount;
                    take(token);
                    beforeLast = std::exchange(last, token);
                }
            }
        }
        return mistakes.take();
    }

    std::optional<JsonMistake> behindRoot(std::size_t end) {
        scanner.place = std::min(text.find_first_not_of(kWhiteSpace, end), text.size());
        if (dialect == JsonDialect::Library) {
            scanner.skipSeparators();
        }
        if (scanner.place == text.size()) {
            return std::nullopt;
        }
        return describeRest(text.substr(scanner.place));
    }

  private:
    struct Level {
        char closing;
        std::size_t begin;
        std::size_t indentation;  // of its line
        std::string key;          // whose value it is; may be empty
        Expected expected;
    };

    // Tells what else the text is, if it is no JSON from its beginning on.
    bool tellForm() {
        const std::string_view encoding = otherEncoding(text);
        if (!encoding.empty()) {
            tell("form", 0, 2, fmt::format("the file is in {}, and not in UTF-8", encoding), "save it as UTF-8");
            return true;
        }
        if (isCompressed(text)) {
            tell("form", 0, 2, "the file is compressed", "unpack it");
            return true;
        }
        const std::size_t first = scanner.place;
        scanner.skipSeparators();
        const std::size_t begin = std::exchange(scanner.place, first);
        const std::string_view rest = text.substr(begin);
        if (rest.empty()) {
            const bool isBlank = text.find_first_not_of(kWhiteSpace, first) == std::string_view::npos;
            tell("form", first, first,
                 first == text.size() ? "the file is empty"
                 : isBlank            ? "the file has nothing but white space"
                                      : "the file has nothing but comments",
                 "JSON begins with \"{\"");
        } else if (rest.starts_with("```")) {
            tell("form", begin, begin + 3, "``` is a mark of Markdown", "remove the lines that begin with ```");
        } else if (rest.starts_with('<') && !JsonScanner::isConflictMarker(rest)) {
            tell("form", begin, begin + 1, "the file looks like XML or HTML", kFormHint);
        } else {
            return false;
        }
        return true;
    }

    Expected expected() const { return levels.empty() ? Expected::Value : levels.back().expected; }

    void take(const JsonToken& token) {
        switch (token.kind) {
            case '\0':
                takeEnd();
                break;
            case '{':
            case '[':
                takeOpening(token);
                break;
            case '}':
            case ']':
                takeClosing(token);
                break;
            case ',':
                takeComma(token);
                break;
            case ':':
                takeColon(token);
                break;
            default:
                takeScalar(token);
        }
    }

    void takeScalar(const JsonToken& token) {
        switch (expected()) {
            case Expected::Value:
                takeValue(token);
                break;
            case Expected::Key:
                takeKey(token);
                break;
            case Expected::Colon:
            case Expected::Separator:
                takeUnseparated(token);
        }
    }

    void takeValue(const JsonToken& token) {
        if (token.kind == 'w' && levels.empty()) {
            tellWordAtRoot(token);
            return;
        }
        if (token.kind == 'w' && isEllipsis(token) && levels.back().closing == ']') {
            tellStray(token);
            return;
        }
        if (token.kind == 'w') {
            takeWord(token);
        }
        finishValue();
    }

    void tellWordAtRoot(const JsonToken& word) {
        const std::string_view rest = scanner.restOfLine(word.end);
        if (rest == ":" || rest.starts_with(": ")) {
            tell("form", word.begin, word.end, "the file looks like YAML", kFormHint);
        } else {
            const bool hasObject = text.find('{', word.end) != std::string_view::npos;
            tell("form", word.begin, word.end, "JSON begins with \"{\", and not with " + shown(word),
                 hasObject ? "remove what stands before the \"{\"" : kFormHint);
        }
        scanner.hasEnded = true;
    }

    // A text without quotes may have spaces in it.
    void takeWord(const JsonToken& token) {
        std::size_t end = token.end;
        if (isOneOf(charAt(end), "{") && isOneOf(text[end - 1], "$%")) {
            tellPlaceholder(token.begin);
            return;
        }
        WordMistake mistake = valueMistake(text.substr(token.begin, end - token.begin));
        if (mistake.isText) {
            const std::string_view line = scanner.restOfLine(token.begin);
            end = token.begin + std::min(line.find_first_of(",{}[]\":"), line.size());
            end = text.find_last_not_of(kWhiteSpace, end - 1) + 1;
            mistake = valueMistake(text.substr(token.begin, end - token.begin));
        }
        tellWord("word", token.begin, end, std::move(mistake));
    }

    // A quote that is behind a word was forgotten before it.
    void tellWord(std::string_view kind, std::size_t begin, std::size_t end, WordMistake mistake) {
        if (charAt(end) == '"') {
            const std::string content = shownQuoted(text.substr(begin, end - begin));
            mistake = {"a quote is missing before " + shownName(text.substr(begin, end - begin)), "write " + content};
            ++end;
        }
        scanner.place = end;
        tell(kind, begin, end, std::move(mistake.message), mistake.hint);
    }

    // It is one such as ${ID} or {{ id }}.
    void tellPlaceholder(std::size_t begin) {
        const std::string_view line = scanner.restOfLine(begin);
        const std::size_t end = std::min(line.find('}'), line.size() - 1) + (line.starts_with("{{") ? 2 : 1);
        tell("word", begin, begin + end, shownName(line.substr(0, end)) + " is a placeholder that was not filled in",
             "write the value in its place");
        scanner.hasEnded = true;
    }

    // Tells whether the character is the next one that is not white space.
    bool isBefore(std::size_t place, char character) const {
        return charAt(text.find_first_not_of(kWhiteSpace, place)) == character;
    }

    // Tells whether the next text is followed by a colon. REQUIRES: there is a quote.
    bool isBeforeKey(std::size_t place) const {
        return isBefore(std::min(text.find('"', text.find('"', place) + 1), text.size() - 1) + 1, ':');
    }

    bool isEllipsis(const JsonToken& token) const {
        const std::string_view word = text.substr(token.begin, token.end - token.begin);
        return word == "..." || word == "\u2026";
    }

    // Tells whether the token has something of a name.
    bool isName(const JsonToken& token) const {
        const std::string_view word = text.substr(token.begin, token.end - token.begin);
        return !isEllipsis(token) && std::ranges::any_of(word, [](char each) {
            return each == '_' || (each >= '0' && each <= '9') || (each >= 'A' && each <= 'Z') ||
                   (each >= 'a' && each <= 'z') || static_cast<unsigned char>(each) >= 0x80;
        });
    }

    void tellStray(const JsonToken& token) {
        tell("stray", token.begin, token.end, shown(token) + " means nothing here",
             isEllipsis(token) ? "write what is meant, or remove it" : "remove it");
    }

    void takeKey(const JsonToken& token) {
        const bool isSplit = isTripleBehind(token, last.begin) && last.kind == ',' && last.end == token.begin &&
                             beforeLast.kind == 'v' && beforeLast.end == last.begin;
        if (isSplit) {
            tellSplitNumber(beforeLast, token, "a number has no commas between its digits");
            levels.back().expected = Expected::Separator;
        } else if (token.kind != '"' && (!isName(token) || (isBefore(token.end, '"') && isBeforeKey(token.end)))) {
            tellStray(token);
        } else {
            const bool isQuoted = token.kind == '"';
            key = text.substr(token.begin + (isQuoted ? 1 : 0), token.end - token.begin - (isQuoted ? 2 : 0));
            levels.back().expected = Expected::Colon;
            if (!isQuoted) {
                tellWord("key", token.begin, token.end, keyMistake(key));
            }
        }
    }

    // Tells whether the token is three digits, as in 10,000, with the separator there before it.
    bool isTripleBehind(const JsonToken& token, std::size_t separator) const {
        return token.kind == 'v' && token.begin == separator + 1 && token.end - token.begin == 3;
    }

    void tellSplitNumber(const JsonToken& first, const JsonToken& second, std::string message) {
        const std::string number(text.substr(first.begin, first.end - first.begin));
        tell("number", first.begin, second.end, std::move(message), "write " + shownName(number) + shown(second));
    }

    // Something stands where a comma, a colon or the end should.
    void takeUnseparated(const JsonToken& token) {
        const bool isColon = expected() == Expected::Colon;
        if (blameText(token)) {
            return;
        }
        if (last.kind == 'v' && charAt(last.end) == ' ' && isTripleBehind(token, last.end)) {
            tellSplitNumber(last, token, "a number has no spaces between its digits");
        } else if (token.kind == 'w' && !isName(token)) {
            tellOperator(token);
        } else if (!isColon && isOneOf(token.kind, "wv") && levels.back().closing == '}' &&
                   (isBefore(token.end, ',') || isBefore(token.end, '}'))) {
            tellStray(token);
        } else if (isColon) {
            tell("colon", last.end, last.end + 1, "a colon is missing behind the key " + shownPart(last),
                 "write \":\" between the key and its value");
            levels.back().expected = Expected::Value;
            take(token);
        } else {
            tell("comma", last.end, last.end + 1,
                 "a comma is missing between " + shownPart(last) + " and " + shownPart(token),
                 "write \",\" behind " + shownPart(last));
            levels.back().expected = levels.back().closing == '}' ? Expected::Key : Expected::Value;
            take(token);
        }
    }

    void tellOperator(const JsonToken& token) {
        if (expected() == Expected::Separator && text[token.begin] == '+') {
            tell("stray", token.begin, token.end, "+ puts nothing together: JSON does not compute",
                 "write what comes of it");
            scanner.next(Expected::Value);  // what stands behind it
        } else {
            tellStray(token);
        }
    }

    // Finds what is wrong with the text before, if something stands behind it that should not.
    bool blameText(const JsonToken& token) {
        if (last.kind != '"' || text[last.begin] != '"' || text[last.end - 1] != '"') {
            return false;
        }
        const std::string_view content = text.substr(last.begin + 1, last.end - last.begin - 2);
        const bool touches = last.end == token.begin && isOneOf(token.kind, "\"vw");
        const std::size_t quote = otherQuoteIn(content);
        const std::size_t end = content.find_last_not_of(kWhiteSpace);
        if (touches && quote != std::string_view::npos) {
            const std::size_t begin = last.begin + 1 + quote;
            tell("quotes", begin, begin + firstCharacter(text.substr(begin)).length,
                 "a text ends with \" (U+0022), and not with " + characterName(text.substr(begin)),
                 "write " + shownQuoted(content.substr(0, quote)));
            scanner.hasEnded = true;
            return true;
        }
        if (content.find('\n') != std::string_view::npos ||
            (touches && end != std::string_view::npos && isOneOf(content[end], ",:{["))) {
            scanner.tellUnclosed(last);
            return true;
        }
        return touches && tellInnerQuote();
    }

    // The text goes on behind its second quote, up to one behind which it may end.
    bool tellInnerQuote() {
        const std::string_view line = scanner.restOfLine(last.end).substr(0, kFarthestQuote);
        for (std::size_t end = line.find('"'); end != std::string_view::npos; end = line.find('"', end + 1)) {
            const std::size_t after = line.find_first_not_of(kWhiteSpace, end + 1);
            if (after == std::string_view::npos || isOneOf(line[after], ",:]}")) {
                tell("inner", last.end - 1, last.end, "the text ends at this quote, and goes on behind it",
                     "write \\\" for a quote inside of a text, or a comma between two texts");
                scanner.place = last.end + end + 1;
                return true;
            }
        }
        return false;
    }

    void takeOpening(const JsonToken& token) {
        const bool isInObject = !levels.empty() && levels.back().closing == '}';
        if (expected() == Expected::Value) {
            open(token);
        } else if (expected() == Expected::Colon || !isInObject) {
            takeUnseparated(token);
        } else if (last.kind == '{' && last.end == token.begin && token.kind == '{') {
            tellDoubledBrace(token);
        } else if (last.kind == 'v' && shown(last) == "-") {
            tellStray(last);
            scanner.hasEnded = true;
        } else {
            takeOpeningForKey(token);
        }
    }

    // It begins a placeholder if that ends on its line; otherwise the object behind it is meant.
    void tellDoubledBrace(const JsonToken& token) {
        if (scanner.restOfLine(token.end).find("}}") != std::string_view::npos) {
            tellPlaceholder(last.begin);
        } else {
            tell("bracket", token.begin, token.end, "this \"{\" is one too many", "remove it");
            scanner.hasEnded = true;
        }
    }

    void open(const JsonToken& token) {
        const bool isObject = token.kind == '{';
        const bool isMember = !levels.empty() && levels.back().closing == '}';
        scanner.hasEnded = levels.size() == kMostLevels;
        levels.push_back({isObject ? '}' : ']', token.begin, indentationAt(token.begin), isMember ? key : std::string(),
                          isObject ? Expected::Key : Expected::Value});
    }

    // An object stands where a key should: often the object before it is not closed.
    void takeOpeningForKey(const JsonToken& token) {
        const Level& level = levels.back();
        const std::string outside = brackets(1);
        if (expected() == Expected::Key && outside.ends_with(']') && closesAll(token.begin, outside)) {
            tell("bracket", token.begin, token.end, nameOf(level) + " is not closed before this one",
                 "write " + signInQuotes(level.closing) + whereMissing());
            finish();
            levels.back().expected = Expected::Value;
            open(token);
        } else {
            tell("bracket", token.begin, token.end,
                 signInQuotes(token.kind) + " stands where a key should, in " + nameOf(level),
                 "write the key and \":\" before it; a list of objects stands in [ ]");
            scanner.hasEnded = true;
        }
    }

    void takeClosing(const JsonToken& token) {
        if (levels.empty()) {
            tell("bracket", token.begin, token.end, signInQuotes(token.kind) + " closes nothing", "remove it");
            scanner.hasEnded = true;
        } else if (levels.back().closing == token.kind) {
            close(token);
        } else if (!blameText(token)) {
            takeOtherClosing(token);
        }
    }

    void close(const JsonToken& token) {
        const Level& level = levels.back();
        if (level.closing == '}' && (level.expected == Expected::Colon || level.expected == Expected::Value)) {
            tellNoValue(token);
        } else if (dialect == JsonDialect::Strict && last.kind == ',') {
            tell("comma", last.begin, last.end, "the last comma has nothing behind it", "remove it");
        } else if (level.closing == ']' && level.expected == Expected::Value) {
            tellCommentBefore(token);
        }
        noteIndentation(token, level);
        lastClosed = token;
        finish();
    }

    // Where the reader expects a value, it takes no bracket behind a comment.
    void tellCommentBefore(const JsonToken& token) {
        const std::string_view between = text.substr(last.end, token.begin - last.end);
        const std::size_t comment = between.find('/');
        if (comment != std::string_view::npos) {
            tell("comment", last.end + comment, last.end + comment + 2,
                 last.kind == ',' ? "a comment stands between the last comma and the \"]\", which is not read"
                                  : "a comment stands alone in a list, which is not read",
                 last.kind == ',' ? "remove the comma, or the comment" : "write it before the \"[\"");
        }
    }

    // One of the brackets is wrong: this one is, or one is missing or too many.
    void takeOtherClosing(const JsonToken& token) {
        const Level& level = levels.back();
        const std::string outside = brackets(1);
        if (closesAll(token.end, outside)) {
            tell("bracket", token.begin, token.end, signInQuotes(token.kind) + " closes " + nameOf(level),
                 "write " + signInQuotes(level.closing) + " instead");
            finish();
        } else if (outside.ends_with(token.kind) && closesAll(token.begin, outside)) {
            tell("bracket", token.begin, token.end,
                 nameOf(level) + " is not closed before this " + signInQuotes(token.kind),
                 "write " + signInQuotes(level.closing) + whereMissing());
            finish();
            close(token);
        } else if (closesAll(token.end, brackets(0))) {
            tell("bracket", token.begin, token.end, "this " + signInQuotes(token.kind) + " is one too many",
                 "remove it");
        } else {
            tell("bracket", token.begin, token.end,
                 signInQuotes(level.closing) + " is needed for " + nameOf(level) + ", and not " +
                     signInQuotes(token.kind),
                 "close the brackets in the order in which they are open");
            scanner.hasEnded = true;
        }
    }

    void takeComma(const JsonToken& token) {
        const bool isInObject = !levels.empty() && levels.back().closing == '}';
        if (expected() == Expected::Colon || (expected() == Expected::Value && isInObject)) {
            tellNoValue(token);
            scanner.hasEnded = expected() == Expected::Colon;  // the comma may have been meant as a colon
        } else if (expected() != Expected::Separator) {
            tell("comma", token.begin, token.end,
                 last.kind == ',' ? "a comma stands behind a comma" : "a comma stands before the first value",
                 "remove it, or write what is missing before it");
        }
        if (!levels.empty()) {
            levels.back().expected = isInObject ? Expected::Key : Expected::Value;
        }
    }

    void tellNoValue(const JsonToken& token) {
        tell("no-value", token.begin, token.end, "the key " + shownQuoted(key) + " has no value",
             last.kind == ':' ? "write the value behind the colon" : "write \":\" and the value; a list stands in [ ]");
    }

    void takeColon(const JsonToken& token) {
        const bool isInObject = !levels.empty() && levels.back().closing == '}';
        if (expected() == Expected::Key) {
            tell("colon", token.begin, token.end, "a colon stands here without a key before it",
                 "write the key in quotes before the colon");
        } else if (expected() == Expected::Value && isInObject) {
            tell("colon", token.begin, token.end, "a colon stands behind a colon", "remove it");
        } else if (expected() != Expected::Colon) {
            tellOddColon(token);
            return;
        }
        levels.back().expected = Expected::Value;
    }

    // A key stands in an array or behind a value: often a bracket before it closes too much.
    void tellOddColon(const JsonToken& token) {
        const bool isInObject = !levels.empty() && levels.back().closing == '}';
        if (blameText(token)) {
            return;
        }
        if (!isInObject && !levels.empty() && last.kind == '"' && closesAll(last.begin, brackets(1))) {
            tell("bracket", last.begin, last.end,
                 nameOf(levels.back()) + " is not closed before the key " + shown(last),
                 "write \"]\"" + whereMissing());
            finish();
            levels.back().expected = Expected::Value;
            key = text.substr(last.begin + 1, last.end - last.begin - 2);
            return;
        }
        scanner.hasEnded = true;
        if (lastClosed.end > 0 && closesAll(lastClosed.end, brackets(0) + lastClosed.kind)) {
            tell("bracket", lastClosed.begin, lastClosed.end,
                 "this " + signInQuotes(lastClosed.kind) + " is one too many: the key " + shownPart(last) + " follows",
                 "remove it");
            return;
        }
        tell("colon", token.begin, token.end,
             isInObject ? "a second colon stands in one member" : "a key with a colon stands outside of an object",
             isInObject ? "write a comma between members" : "put { } around keys and their values");
    }

    void takeEnd() {
        scanner.hasEnded = true;
        if (levels.empty()) {
            return;
        }
        std::string closing = brackets(0);
        std::ranges::reverse(closing);
        const std::size_t others = levels.size() - 1;
        const std::string more = others == 0 ? "" : fmt::format(", and {} more around it", others);
        tell("bracket", last.end, last.end + 1, "the text ends, and " + nameOf(levels.back()) + " is still open" + more,
             suspectLine == 0 ? "write " + shortened(closing, kMostShownOfBrackets) + " at the end"
                              : "close all brackets" + whereMissing());
    }

    void finish() {
        levels.pop_back();
        finishValue();
    }

    void finishValue() {
        if (!levels.empty()) {
            levels.back().expected = Expected::Separator;
            return;
        }
        scanner.hasEnded = true;
        if (dialect == JsonDialect::Strict) {
            if (auto rest = behindRoot(scanner.place)) {
                tell("rest", rest->begin, rest->end, std::move(rest->message), rest->hint);
            }
        }
    }

    // A bracket that closes stands no further left than the line in which it was opened, in a text that people indent.
    void noteIndentation(const JsonToken& token, const Level& level) {
        const auto [line, column] = source.positionOf(token.begin);
        const std::size_t indentation = indentationAt(token.begin);
        if (suspectLine == 0 && indentation + 1 == column && indentation < level.indentation) {
            suspectLine = line;
        }
    }

    // A line may have many brackets, and its blanks are counted once.
    std::size_t indentationAt(std::size_t place) {
        const std::size_t number = source.positionOf(place).line;
        if (number != indentedLine) {
            const std::string_view line = source.line(number);
            indentedLine = number;
            lastIndentation = std::min(line.find_first_not_of(" \t"), line.size());
        }
        return lastIndentation;
    }

    std::string whereMissing() const {
        return suspectLine == 0 ? " before it, or where it is missing further up"
                                : fmt::format("; by the indentation, one is missing before line {}", suspectLine);
    }

    // Returns the brackets that close what is open but for the innermost few, which are the last ones.
    std::string brackets(std::size_t innermost) const {
        std::string all;
        for (std::size_t level = 0; level + innermost < levels.size(); ++level) {
            all += levels[level].closing;
        }
        return all;
    }

    // Tells whether the brackets from there on close all that is open, and nothing follows then.
    bool closesAll(std::size_t from, std::string open) const {
        JsonTokens tokens(text.substr(from));
        while (tokens.next()) {
            const char kind = tokens.kind();
            if (open.empty() || (isOneOf(kind, "}]") && open.back() != kind)) {
                return false;
            }
            if (isOneOf(kind, "}]")) {
                open.pop_back();
            } else if (isOneOf(kind, "{[")) {
                open += kind == '{' ? '}' : ']';
            }
        }
        return open.empty();
    }

    char charAt(std::size_t offset) const { return offset < text.size() ? text[offset] : '\0'; }

    std::string shown(const JsonToken& token) const {
        return shownName(text.substr(token.begin, token.end - token.begin));
    }

    std::string shownPart(const JsonToken& token) const {
        return isOneOf(token.kind, "{}[]") ? signInQuotes(token.kind) : shown(token);
    }

    std::string nameOf(const Level& level) const {
        const auto [line, column] = source.positionOf(level.begin);
        return fmt::format("the \"{}\"{} in line {}, column {}", level.closing == '}' ? '{' : '[',
                           level.key.empty() ? "" : " of " + shownQuoted(level.key), line, column);
    }

    JsonMistake describeRest(std::string_view rest) const {
        const std::size_t begin = text.size() - rest.size();
        const std::string_view line = scanner.restOfLine(begin);
        const std::size_t length = std::max<std::size_t>(1, line.find_last_not_of(kWhiteSpace) + 1);
        const std::string message = dialect == JsonDialect::Library
                                        ? "the document ends before this, and what follows is ignored"
                                        : "the text ends before this";
        if (JsonScanner::isConflictMarker(line)) {
            return {begin, begin + length, message + ": it is left of a conflict of a merge",
                    "keep one of its sides, and remove the other one and the marks"};
        }
        if (isOneOf(rest[0], "}],")) {
            return {begin, begin + 1, message, "remove it, or the bracket further up that closes too early"};
        }
        if (rest[0] == '{') {
            return {begin, begin + length, message + ": it is another one",
                    dialect == JsonDialect::Library
                        ? "keep one of the two, or put all configurations into one \"configs\""
                        : "keep one of the two"};
        }
        if (const auto [code, bytes] = firstCharacter(rest); isInvisible(code)) {
            return {begin, begin + bytes, message + ": " + characterName(rest), "remove it"};
        }
        return {begin, begin + length, message, "remove it"};
    }

    // What is odd directly behind a mistake is so because of that.
    void tell(std::string_view kind, std::size_t begin, std::size_t end, std::string message, std::string_view hint) {
        constexpr std::size_t kTokensBetween = 3;
        if (tokenOfLast == 0 || tokenCount > tokenOfLast + kTokensBetween || kind == "key" || kind == "word") {
            mistakes.tell(kind, begin, end, std::move(message), hint);
        }
        tokenOfLast = tokenCount;
    }

    static constexpr std::string_view kFormHint = "write it as JSON, which begins with \"{\"";

    const SourceText& source;
    const std::string_view text;
    const JsonDialect dialect;
    JsonMistakes mistakes;
    JsonScanner scanner;
    std::vector<Level> levels;
    std::string key;  // the last one
    JsonToken last;
    JsonToken beforeLast;
    JsonToken lastClosed;
    std::size_t tokenCount = 0;
    std::size_t tokenOfLast = 0;   // mistake; 0 if none
    std::size_t indentedLine = 0;  // the last one of which the indentation was asked; 0 if none
    std::size_t lastIndentation = 0;
    std::size_t suspectLine = 0;  // before which a bracket is missing, by the indentation; 0 if none
};

}  // namespace

std::vector<JsonMistake> jsonMistakesIn(const SourceText& text, JsonDialect dialect) {
    return JsonSearch(text, dialect).run();
}

std::optional<JsonMistake> trailingText(const SourceText& text, std::size_t rootEnd) {
    return JsonSearch(text, JsonDialect::Library).behindRoot(rootEnd);
}

}  // namespace Brenta::OS::VIG::Tool
