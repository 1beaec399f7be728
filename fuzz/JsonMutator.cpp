#include "fuzz/JsonMutator.h"

#include <algorithm>

#include "tests/support/DocumentGenerator.h"
#include "vig/parsers/JsonTokens.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace fuzz {

namespace {

support::Mutator& mutator() {
    static support::Mutator mutator;
    return mutator;
}

constexpr std::size_t kPlacesForAnError = 1000;
constexpr std::size_t kLong = 700;  // bytes, from which on a text shrinks as often as it grows

std::size_t draw(std::size_t bound) {
    return mutator().draw(bound);
}

std::string generated(const Value& value) {
    support::DocumentGenerator generator(mutator(), kPlacesForAnError);
    const std::string element = value.isElement ? generator.elementOf(value.key) : generator.valueOf(value.key);
    return element.empty() ? generator.somethingElse() : element;
}

// With one of the commas at its sides.
void remove(std::string& text, const Value& value) {
    const std::size_t comma = text.find_first_not_of(" \n", value.end);
    if (comma < text.size() && text[comma] == ',') {
        text.erase(value.memberBegin, comma + 1 - value.memberBegin);
    } else {
        const std::size_t begin = value.memberBegin > 0 && text[value.memberBegin - 1] == ',' ? 1 : 0;
        text.erase(value.memberBegin - begin, value.end - value.memberBegin + begin);
    }
}

// Between its quotes, if it is a string.
void mutateLeaf(std::string& text, const Value& value) {
    constexpr std::size_t kMoreBytes = 32;
    const std::size_t quote = text[value.begin] == '"' && value.end - value.begin >= 2 ? 1 : 0;
    const std::size_t begin = value.begin + quote;
    const std::size_t size = value.end - quote - begin;
    text.replace(begin, size, mutatedBytes(text.substr(begin, size), size + kMoreBytes));
}

void changeValue(std::string& text) {
    const std::string before = text;  // which the values point into
    const std::vector<Value> values = valuesIn(before);
    if (values.empty()) {
        return;
    }
    const Value& value = values[draw(values.size())];
    const Value& other = values[draw(values.size())];
    if (text.size() > kLong && draw(2) == 0) {
        remove(text, value);
        return;
    }
    switch (draw(6)) {
        case 0:
            text.insert(value.end, "," + before.substr(value.memberBegin, value.end - value.memberBegin));
            break;
        case 1:
            remove(text, value);
            break;
        case 2:
            if (other.key == value.key) {
                text.replace(value.begin, value.end - value.begin, before, other.begin, other.end - other.begin);
            }
            break;
        case 3:
            mutateLeaf(text, value);
            break;
        default:
            text.replace(value.begin, value.end - value.begin, generated(value));
    }
}

std::vector<std::string_view> tokensIn(std::string_view text) {
    std::vector<std::string_view> found;
    for (Brenta::OS::VIG::JsonTokens tokens(text); tokens.next();) {
        found.push_back(tokens.token());
    }
    return found;
}

// What leads from the beginning of an array or object to one of its values, or an empty piece.
std::string wayIn(const std::string& text) {
    const std::vector<Value> values = valuesIn(text);
    if (values.empty()) {
        return "";
    }
    const Value& inner = values[draw(values.size())];
    const Value* outer = &inner;
    for (const Value& value : values) {
        if (value.begin < inner.begin && value.end >= inner.end) {
            outer = &value;
        }
    }
    return text.substr(outer->begin, inner.begin - outer->begin);
}

// Such a piece, often with a token replaced by another one, before which a comment may stand, as many times as no
// document may be nested. The text itself where that is too long.
std::string repeatedWayIn(const std::string& text, std::size_t most) {
    constexpr std::string_view kComments[] = {"", "/**/", "//\n"};
    constexpr std::string_view kOthers[] = {"[", "]", "{", "}", ",", ":", "0", "\"\"", "null", "\n"};
    constexpr std::size_t kTimes = 1100;
    constexpr int kTries = 8;
    std::string piece;
    for (int tries = 0; tries < kTries && (piece.empty() || piece.size() * kTimes > most); ++tries) {
        piece = wayIn(text);
    }
    const std::vector<std::string_view> tokens = tokensIn(piece);
    if (!tokens.empty() && draw(4) > 0) {
        const std::string_view token = tokens[draw(tokens.size())];
        const std::string other =
            std::string(kComments[draw(std::size(kComments))]) + std::string(kOthers[draw(std::size(kOthers))]);
        piece.replace(static_cast<std::size_t>(token.data() - piece.data()), token.size(), other);
    }
    std::string repeated;
    for (std::size_t count = kTimes; count > 0 && repeated.size() <= most; --count) {
        repeated += piece;
    }
    return repeated.size() <= most ? repeated : text;
}

}  // namespace

std::vector<Value> valuesIn(std::string_view text) {
    std::vector<Value> values;
    std::vector<std::size_t> open;  // which of them contain the place
    std::string_view key;
    std::size_t keyBegin = 0;
    Brenta::OS::VIG::JsonTokens tokens(text);
    while (tokens.next()) {
        const std::size_t end = tokens.offset() + tokens.token().size();
        switch (tokens.kind()) {
            case ',':
            case ':':
                continue;
            case '}':
            case ']':
                if (!open.empty()) {
                    values[open.back()].end = end;
                    open.pop_back();
                }
                continue;
            default:
                break;
        }
        if (tokens.kind() == '"' && tokens.isFollowedBy(':')) {
            key = tokens.token().substr(1, tokens.token().size() - 2);
            keyBegin = tokens.offset();
            continue;
        }
        const bool isMember = !open.empty() && text[values[open.back()].begin] == '{';
        const std::string_view listKey = open.empty() ? std::string_view() : values[open.back()].key;
        values.push_back({isMember ? std::min(keyBegin, tokens.offset()) : tokens.offset(), tokens.offset(), end,
                          isMember ? key : listKey, !isMember});
        if (tokens.kind() == '{' || tokens.kind() == '[') {
            open.push_back(values.size() - 1);
        }
    }
    return values;
}

std::string mutatedJson(const std::string& text, std::size_t most, unsigned seed) {
    mutator().seed(seed);
    std::string changed = text;
    switch (draw(32)) {
        case 0:
            changed = support::DocumentGenerator(mutator(), kPlacesForAnError).document();
            break;
        case 1:
            changed = mutatedBytes(std::move(changed), most);
            break;
        case 2:
            changed = mutator().mutated(text.empty() ? " " : text);
            break;
        case 3:
        case 4:
            changed = repeatedWayIn(text, most);
            break;
        default:
            for (std::size_t changes = 1 + draw(8) / 7; changes > 0; --changes) {
                changeValue(changed);
            }
    }
    return changed.size() <= most ? changed : text.substr(0, most);
}

std::string mutatedBytes(std::string text, std::size_t most) {
    const std::size_t size = std::min(text.size(), most);
    text.resize(most);
    text.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(text.data()), size, most));
    return text;
}

std::size_t putInput(std::uint8_t* data, const std::string& text, std::size_t most) {
    return text.copy(reinterpret_cast<char*>(data), most);
}

}  // namespace fuzz
