// The JSON library throws where it would begin a value inside of too many arrays and objects, and where a key is too
// long. Nothing may throw here, so a text is looked at before the library gets it, and exactly: what the library reads
// is not refused, and what it throws at does not reach it. The nesting is looked at in three steps.
//
// A text with fewer opening brackets than the limit cannot be nested too deep. Nearly every text ends here.
//
// JsonTokens follows the brackets as the library does in a text without an error, and finds the first place where a
// value would begin too deep.
//
// If there is an error before, the library never comes to that place, since after an error it goes no deeper. We need
// not know what it takes for an error: it reads what stands before the place, with a value put there and all brackets
// closed, under a limit that is one level higher. What it reports then is the report; if it reports nothing, ours is
// that the text is nested too deep.
//
// That it behaves so is tried in the tests against the library itself, with every short text.
#include "vig/parsers/JsonText.h"

#include <json/reader.h>
#include <json/value.h>

#include <algorithm>
#include <cstddef>
#include <memory>

#include "vig/base/Utf8.h"
#include "vig/parsers/JsonTokens.h"

namespace Brenta::OS::VIG {

namespace {

constexpr std::size_t kMostTextBytes = (std::size_t{1} << 30) - 1;

// Lines and columns are counted as the reader counts them: from 1, in bytes, and "\r\n" is one line end.
std::string report(std::string_view text, std::size_t offset, const std::string& message) {
    std::size_t line = 1;
    std::size_t lineStart = 0;
    for (std::size_t place = 0; place < offset; ++place) {
        if (text[place] == '\n' || (text[place] == '\r' && text.substr(place + 1, 1) != "\n")) {
            ++line;
            lineStart = place + 1;
        }
    }
    return "* Line " + std::to_string(line) + ", Column " + std::to_string(offset - lineStart + 1) + "\n  " + message +
           "\n";
}

// Moves to the token behind which the reader would begin to read a value inside of `levels` arrays and objects; false
// if there is none.
bool moveToValueBelow(unsigned levels, JsonTokens& tokens) {
    // The reader goes no further than the end of the first value.
    while (tokens.next() && tokens.depth() > 0) {
        // In an array the reader begins a value wherever the array is not closed at once, in an object after
        // the colon.
        const char kind = tokens.kind();
        if (tokens.depth() >= levels && (kind == '[' ? !tokens.isFollowedBy(']') : kind == ':')) {
            return true;
        }
    }
    return false;
}

Json::CharReaderBuilder readerBuilder() {
    Json::CharReaderBuilder builder;
    // Comments are accepted and mean nothing. To keep them, the reader searches the text before each one again.
    builder.settings_["collectComments"] = false;
    return builder;
}

// Returns the reader's report if it finds an error. REQUIRES: the reader does not throw.
std::optional<std::string> read(const std::string& text, const Json::CharReaderBuilder& builder, Json::Value& root) {
    std::string errors;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    if (!reader->parse(text.data(), text.data() + text.size(), &root, &errors)) {
        return errors;
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> readJson(const std::string& text, Json::Value& root) {
    Json::CharReaderBuilder builder = readerBuilder();
    if (auto report = reportOfUnreadable(text, builder.settings_["stackLimit"].asUInt())) {
        return report;
    }
    return read(text, builder, root);
}

std::optional<std::string> reportOfUnreadable(std::string_view text, unsigned levels) {
    if (text.size() > kMostTextBytes) {
        return report(text, 0, "Longer than the limit of " + std::to_string(kMostTextBytes) + " bytes.");
    }
    const std::string_view json = withoutByteOrderMark(text);
    if (std::count_if(json.begin(), json.end(), [](char c) { return c == '[' || c == '{'; }) <
        static_cast<std::ptrdiff_t>(levels)) {
        return std::nullopt;
    }
    JsonTokens tokens(json);
    if (!moveToValueBelow(levels, tokens)) {
        return std::nullopt;
    }
    const std::string_view before = json.substr(0, tokens.offset() + tokens.token().size());
    Json::CharReaderBuilder builder = readerBuilder();
    builder.settings_["stackLimit"] = levels + 1;
    Json::Value root;
    if (auto earlier = read(std::string(before) + "0" + tokens.closingBrackets(), builder, root)) {
        return earlier;
    }
    tokens.next();
    return report(json, tokens.offset(), "Nested deeper than the limit of " + std::to_string(levels) + " levels.");
}

}  // namespace Brenta::OS::VIG
