#include "tools/vig/check/Warnings.h"

#include <json/value.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <tuple>

#include "tools/vig/document/StrictJson.h"
#include "tools/vig/findings/DocumentShape.h"
#include "tools/vig/findings/Hints.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"
#include "vig/base/Utf8.h"
#include "vig/parsers/JsonText.h"
#include "vig/parsers/JsonTokens.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Some keys are not meant for the library: notes, and what tells an editor the form of the document.
bool isForPeople(std::string_view key, Layer layer) {
    return key == "comment" || (key == "$schema" && layer == Layer::Response);
}

std::string decoded(std::string_view token) {
    if (token.find('\\') == std::string_view::npos) {
        return std::string(token.substr(1, token.size() - 2));
    }
    Json::Value text;
    const auto report = readJson(std::string(token), text);
    return report ? std::string() : text.asString();
}

// Follows the document from token to token, with the objects and arrays that it is in.
class KeyScan {
  public:
    KeyScan(const DocumentText& text, std::vector<Finding>& warnings)
        : document(text),
          firstByte(text.source().offsetOf({1, 1})),
          tokens(std::string_view(text.source().text()).substr(firstByte)),
          found(warnings) {}

    void run() {
        while (tokens.next() && take(tokens.kind())) {
        }
    }

  private:
    struct Level {
        const Shape* shape;  // of the object, or of each element of the array; null if the library ignores it
        bool isObject;
        std::size_t firstKey;                   // of the object, in `keys`
        const Shape::Member* member = nullptr;  // whose value comes next or is being read; null if it is ignored
        std::size_t index = 0;                  // of the element
        bool expectsKey = true;
    };

    struct Key {
        std::string text;
        std::size_t begin;
        std::size_t end;
    };

    // Returns whether there is more of the root.
    bool take(char kind) {
        switch (kind) {
            case '{':
            case '[':
                reportParameters(kind);
                open(kind == '{');
                break;
            case '}':
            case ']':
                close();
                break;
            case ',':
                levels.back().expectsKey = true;
                ++levels.back().index;
                break;
            case ':':
                levels.back().expectsKey = false;
                break;
            default:
                takeScalar(kind);
        }
        return !levels.empty();
    }

    void open(bool isObject) {
        const Shape* shape = nullptr;
        if (levels.empty()) {
            shape = isObject ? &kResponseShape : nullptr;
        } else if (!levels.back().isObject) {
            shape = isObject ? levels.back().shape : nullptr;
        } else if (const Shape::Member* const member = levels.back().member) {
            shape = member->kind == (isObject ? Shape::Kind::Object : Shape::Kind::List) ? member->inside : nullptr;
        }
        levels.push_back({shape, isObject, keys.size()});
    }

    void close() {
        reportOverwritten(levels.back().firstKey);
        keys.resize(levels.back().firstKey);
        levels.pop_back();
    }

    void takeScalar(char kind) {
        if (levels.empty()) {
            return;
        }
        if (levels.back().isObject && levels.back().expectsKey) {
            takeKey();
        } else {
            reportParameters(kind);
        }
    }

    void takeKey() {
        Level& level = levels.back();
        level.member = nullptr;
        if (level.shape == nullptr) {
            return;
        }
        const std::size_t begin = firstByte + tokens.offset();
        keys.push_back({decoded(tokens.token()), begin, begin + tokens.token().size()});
        const auto member = std::ranges::find(level.shape->members, keys.back().text, &Shape::Member::key);
        if (member != level.shape->members.end()) {
            level.member = &*member;
        } else if (!isForPeople(keys.back().text, level.shape->layer)) {
            reportUnknown(level, keys.back());
        }
    }

    // It is called at the beginning of a value: of all lists, the library does without that of parameters alone.
    void reportParameters(char kind) {
        if (levels.empty() || levels.back().shape != &kActionShape || !levels.back().isObject) {
            return;
        }
        const Level& level = levels.back();
        if (level.member != nullptr && level.member->kind == Shape::Kind::List && kind != '[') {
            add("unknown-key", keys.back(), "\"parameters\" is ignored, because it is not an array",
                "remove it, or write an array");
        }
    }

    void reportUnknown(const Level& level, const Key& key) {
        std::vector<std::string_view> names;
        std::ranges::transform(level.shape->members, std::back_inserter(names), &Shape::Member::key);
        add("unknown-key", key, "the key " + shownQuoted(key.text) + " is ignored",
            "known here: " + listOf(names) + suggestion(key.text, names));
    }

    void reportOverwritten(std::size_t firstKey) {
        const auto begin = keys.begin() + static_cast<std::ptrdiff_t>(firstKey);
        std::ranges::sort(begin, keys.end(), {}, [](const Key& key) { return std::tie(key.text, key.begin); });
        for (auto key = begin; key != keys.end() && key + 1 != keys.end(); ++key) {
            if (key->text == (key + 1)->text) {
                const auto [line, column] = document.source().positionOf((key + 1)->begin);
                add("duplicate-key", *key,
                    shownQuoted(key->text) + " is overwritten by the one in line " + std::to_string(line) +
                        ", column " + std::to_string(column));
            }
        }
    }

    void add(std::string_view name, const Key& key, std::string message, std::string hint = {}) {
        warn(found, name, {key.begin, key.end, pathOf(key)}, std::move(message), std::move(hint));
    }

    // Returns the path of a key in the object that is being read.
    std::string pathOf(const Key& key) const {
        std::string path;
        for (auto level = levels.begin(); level + 1 != levels.end(); ++level) {
            if (level->isObject) {
                path = StrictJson::member(path, std::string(level->member->key));
            } else {
                path += "[" + std::to_string(level->index) + "]";
            }
        }
        return StrictJson::member(path, key.text);
    }

    const DocumentText& document;
    const std::size_t firstByte;  // of the text that the reader counts
    JsonTokens tokens;
    std::vector<Finding>& found;
    std::vector<Level> levels;
    std::vector<Key> keys;  // of all objects that are being read
};

}  // namespace

void appendKeyWarnings(const DocumentText& document, std::vector<Finding>& found) {
    KeyScan(document, found).run();
}

}  // namespace Brenta::OS::VIG::Tool
