#include "tools/vig/document/JsonScanner.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "tools/vig/document/JsonWords.h"
#include "tools/vig/words/Characters.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostAlike = 3;

bool closesText(std::string_view rest, char kind) {
    return rest[0] == '"' || lookAlike(firstCharacter(rest).code) == kind;
}

bool endsWord(std::string_view rest, bool isValue) {
    const char32_t code = firstCharacter(rest).code;
    const bool isMark = std::string_view(" \t\r\n{}[],:\"").find(rest[0]) != std::string_view::npos ||
                        rest.starts_with("//") || rest.starts_with("/*") || (!isValue && rest[0] == '=');
    return isMark || isInvisible(code) || (code != '\'' && code != '`' && lookAlike(code) != '\0');
}

// Returns how long the mark is with which the text begins what was meant as a comment; 0 if it does not.
std::size_t oddCommentMark(std::string_view rest) {
    if (rest[0] == '#' || rest[0] == '/') {
        return 1;
    }
    if (rest.starts_with("--") && rest.size() > 2 && kWhiteSpace.find(rest[2]) != std::string_view::npos) {
        return 2;
    }
    return rest.starts_with("<!--") ? 4 : 0;
}

}  // namespace

void JsonMistakes::tell(std::string_view kind, std::size_t begin, std::size_t end, std::string message,
                        std::string_view hint) {
    const std::string name(kind);
    if (++counts[name] <= kMostAlike) {
        lastOf[name] = found.size();
        found.push_back({begin, std::max(begin, end), std::move(message), std::string(hint)});
    }
}

std::vector<JsonMistake> JsonMistakes::take() {
    for (const auto& [kind, count] : counts) {
        if (count > kMostAlike) {
            found[lastOf[kind]].message += fmt::format("; {} more like it follow", count - kMostAlike);
        }
    }
    std::ranges::stable_sort(found, {}, &JsonMistake::begin);
    return std::move(found);
}

JsonScanner::JsonScanner(const SourceText& text, JsonDialect dialect, JsonMistakes& mistakes)
    : place(text.offsetOf({1, 1})),
      source(text),
      text(text.text()),
      isStrict(dialect == JsonDialect::Strict),
      mistakes(mistakes) {}

JsonToken JsonScanner::next(Expected expected) {
    skipAllSeparators(expected);
    JsonToken token{'\0', place, place};
    if (place == text.size() || hasEnded) {
        return token;
    }
    const char first = text[place];
    const char meant = lookAlike(firstCharacter(text.substr(place)).code);
    if (first == '"') {
        takeText(token);
    } else if (std::string_view("{}[],:").find(first) != std::string_view::npos) {
        token.kind = first;
        ++place;
    } else if (meant == '"' || meant == '\'') {
        takeTextInOtherQuotes(token);
    } else if (meant != '\0') {
        takeLookAlike(token, meant, expected);
    } else if (expected == Expected::Colon && first == '=') {
        token.kind = ':';
        place = std::min(text.find_first_not_of("=>", place), text.size());
        mistakes.tell("look-alike", token.begin, place,
                      std::string(text.substr(token.begin, place - token.begin)) + " stands where a colon should",
                      "write \":\"");
    } else {
        takeWord(token, expected);
    }
    token.end = place;
    return token;
}

void JsonScanner::takeText(JsonToken& token) {
    token.kind = '"';
    std::size_t end = token.begin + 1;
    while (end < text.size() && text[end] != '"') {
        end += text[end] == '\\' ? 2 : 1;
    }
    if (end >= text.size()) {
        tellUnclosed(token);
        return;
    }
    place = end + 1;
    const std::size_t first = token.begin + 1;
    if (const auto mistake = escapeMistakeIn(text.substr(first, end - first))) {
        mistakes.tell("escape", first + mistake->begin, first + mistake->end, mistake->what.message,
                      mistake->what.hint);
    }
}

void JsonScanner::tellUnclosed(const JsonToken& token) {
    hasEnded = true;
    const std::string_view line = restOfLine(token.begin);
    for (std::size_t end = 1; end < line.size(); end += firstCharacter(line.substr(end)).length) {
        const auto [code, size] = firstCharacter(line.substr(end));
        if (std::string_view(",:{}[]").find(line[end]) != std::string_view::npos) {
            break;  // the quote behind it may belong to another text
        }
        if (code != '"' && lookAlike(code) == '"') {
            mistakes.tell("quotes", token.begin + end, token.begin + end + size,
                          "a text ends with \" (U+0022), and not with " + characterName(line.substr(end)),
                          "write " + shownQuoted(line.substr(1, end - 1)));
            return;
        }
    }
    const std::size_t length = line.find_last_not_of(kWhiteSpace) + 1;
    mistakes.tell("unclosed", token.begin, token.begin + length, "the text that begins here is not closed",
                  "write \" where it ends");
}

// A text ends at a quote of the same kind, on the same line. Where another one ends it, it may be that of the next
// text.
void JsonScanner::takeTextInOtherQuotes(JsonToken& token) {
    token.kind = '"';
    const std::string_view line = restOfLine(token.begin);
    const auto [code, length] = firstCharacter(line);
    const char kind = lookAlike(code);
    std::size_t end = length;
    while (end < line.size() && !closesText(line.substr(end), kind)) {
        end += line[end] == '\\' ? 2 : firstCharacter(line.substr(end)).length;
    }
    end = std::min(end, line.size());
    const std::string_view content = line.substr(length, end - length);
    const bool isMixed = end < line.size() && line[end] == '"';
    const bool isStray = isMixed && content.find_first_not_of(kWhiteSpace) == std::string_view::npos;
    hasEnded =
        end == line.size() || (isMixed && (isStray || content.find_first_of(",:{}[]") != std::string_view::npos));
    place = token.begin + (hasEnded ? length : end + firstCharacter(line.substr(end)).length);
    if (isStray) {
        mistakes.tell("stray", token.begin, place, characterName(line) + " means nothing here", "remove it");
    } else {
        mistakes.tell("quotes", token.begin, place, "a text stands in \" (U+0022), not in " + characterName(line),
                      hasEnded ? "write plain quotes" : "write " + shownQuoted(content));
    }
}

void JsonScanner::takeLookAlike(JsonToken& token, char meant, Expected expected) {
    const std::string_view rest = text.substr(token.begin);
    token.kind = meant == ',' && expected == Expected::Colon ? ':' : meant;
    place = token.begin + firstCharacter(rest).length;
    const std::string_view what = token.kind == ',' ? "comma" : token.kind == ':' ? "colon" : "bracket";
    mistakes.tell("look-alike", token.begin, place, fmt::format("{} is no {} of JSON", characterName(rest), what),
                  fmt::format("write \"{}\"", token.kind));
}

void JsonScanner::takeWord(JsonToken& token, Expected expected) {
    do {
        place += firstCharacter(text.substr(place)).length;
    } while (place < text.size() && !endsWord(text.substr(place), expected == Expected::Value));
    token.kind = isJsonValue(text.substr(token.begin, place - token.begin)) ? 'v' : 'w';
}

void JsonScanner::skipSeparators() {
    for (;;) {
        place = std::min(text.find_first_not_of(kWhiteSpace, place), text.size());
        const std::string_view rest = text.substr(place);
        if (rest.starts_with("//")) {
            place += restOfLine(place).size();
        } else if (rest.starts_with("/*") && rest.find("*/", 2) != std::string_view::npos) {
            place += rest.find("*/", 2) + 2;
        } else {
            return;
        }
    }
}

// The strict reader minds a comment before a value alone.
void JsonScanner::skipAllSeparators(Expected expected) {
    do {
        const std::size_t before = place;
        skipSeparators();
        const std::size_t comment = text.substr(before, place - before).find('/');
        if (isStrict && expected == Expected::Value && comment != std::string_view::npos) {
            mistakes.tell("comment", before + comment, before + comment + 2, "a comment stands here, which is no JSON",
                          "remove it");
        }
    } while (place < text.size() && !hasEnded && skipOddSeparator());
}

// Skips what the reader does not take for white space or a comment, but was meant as one.
bool JsonScanner::skipOddSeparator() {
    const std::string_view rest = text.substr(place);
    const auto [code, length] = firstCharacter(rest);
    if (isInvisible(code) || (code == 0xFFFD && length == 1)) {
        skipInvisible();
        return true;
    }
    if (isConflictMarker(rest) && isFirstOnLine()) {
        skipConflict();
        return true;
    }
    return skipOddComment();
}

void JsonScanner::skipInvisible() {
    const std::string_view rest = text.substr(place);
    const auto [code, length] = firstCharacter(rest);
    const bool isByte = code == 0xFFFD;
    const bool isBlank = code >= 0x80 && code != 0xAD && columnsOf(rest.substr(0, length)) > 0;
    const std::string_view character = rest.substr(0, length);
    const std::size_t begin = place;
    while (text.substr(place, length) == character) {
        place += length;
    }
    mistakes.tell("blank", begin, place,
                  characterName(rest) + (isByte ? " stands outside of a text" : " is no white space of JSON"),
                  isByte    ? "remove it, and save the file as UTF-8"
                  : isBlank ? "write a plain space"
                            : "remove it");
}

bool JsonScanner::skipOddComment() {
    const std::string_view rest = text.substr(place);
    if (rest.starts_with("/*")) {
        mistakes.tell("unclosed", place, place + 2, "the comment that begins here is not closed",
                      "write */ where it ends");
        hasEnded = true;
        return true;
    }
    const std::size_t length = oddCommentMark(rest);
    if (length == 0) {
        return false;
    }
    mistakes.tell("comment", place, place + length,
                  (length == 1 ? characterName(rest) : std::string(rest.substr(0, length))) + " begins no comment",
                  isStrict ? "remove it" : "begin the comment with //");
    // What opens or closes something was hardly meant as part of it.
    const std::string_view line = restOfLine(place);
    hasEnded = std::ranges::count(line, '{') + std::ranges::count(line, '[') !=
               std::ranges::count(line, '}') + std::ranges::count(line, ']');
    place += line.size();
    return true;
}

// Reads the first of the sides as if it were alone.
void JsonScanner::skipConflict() {
    const std::string_view line = restOfLine(place);
    const char mark = line[0];
    if (mark == '<' || !isInConflict) {
        mistakes.tell("conflict", place, place + line.find_last_not_of(kWhiteSpace) + 1,
                      "a conflict of a merge is left here",
                      "keep one of its sides, and remove the lines that begin with <<<<<<<, ======= and >>>>>>>");
    }
    isInConflict = mark == '<';
    place += line.size();
    for (bool isOver = mark == '<' || mark == '>'; !isOver && place < text.size();) {
        place = std::min(text.find_first_not_of(kWhiteSpace, place), text.size());
        isOver = text.substr(place).starts_with(">>>>>>>");
        place += restOfLine(place).size();
    }
}

// It looks back over the blanks alone, since a line may be long and have many marks.
bool JsonScanner::isFirstOnLine() const {
    const std::size_t column = source.positionOf(place).column;
    const std::string_view before = text.substr(place + 1 - column, column - 1);
    return before.find_last_not_of(" \t") == std::string_view::npos;
}

// The whole text may be one line, whose end is looked for once.
std::string_view JsonScanner::restOfLine(std::size_t from) const {
    if (from < lineBegin || lineEnd < from) {
        lineBegin = from;
        lineEnd = std::min(text.find_first_of("\r\n", from), text.size());
    }
    return text.substr(from, lineEnd - from);
}

bool JsonScanner::isConflictMarker(std::string_view line) {
    constexpr std::size_t kLength = 7;
    const std::string_view mark = line.substr(0, kLength);
    return mark.size() == kLength && std::string_view("<=>|").find(mark[0]) != std::string_view::npos &&
           mark.find_first_not_of(mark[0]) == std::string_view::npos &&
           (line.size() == kLength || kWhiteSpace.find(line[kLength]) != std::string_view::npos);
}

}  // namespace Brenta::OS::VIG::Tool
