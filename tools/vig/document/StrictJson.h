#pragma once

#include <json/value.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/document/DocumentText.h"

namespace Brenta::OS::VIG::Tool {

// Returns the kind of the value as messages call it: "null", "a number", "an array" and so on.
std::string_view kindName(const Json::Value& value);

// Reads values of a JSON text of which nothing may be ignored. What is wrong is collected as
// "file:line:column: error: tests[0].seed: …" by place, up to a hundred mistakes and a line that there are more.
// Nothing throws, whatever a value is. `path` is always the JSON path of the value given.
class StrictJson {
  public:
    using Keys = std::vector<std::string_view>;

    // Returns what a strict reader finds wrong with the text, where the library's own reader is lenient, by place.
    static std::vector<std::string> mistakesIn(const DocumentText& document);

    // Both must outlive it. The values are those of the document.
    StrictJson(const DocumentText& text, std::vector<std::string>& errors)
        : document(text), errors(errors), places(errors.size()) {}

    void complain(const Json::Value& at, const std::string& path, const std::string& what);

    // Does the same for a place that is known.
    void complain(const Place& place, const std::string& what);

    // Adds a mistake in another file, which the value names.
    void add(const Json::Value& at, std::string mistake);

    void complainOfKind(const Json::Value& json, const std::string& path, std::string_view expected);

    bool isArray(const Json::Value& json, const std::string& path);

    // Complains of keys that are not among those known, too.
    bool isObject(const Json::Value& json, const std::string& path, const Keys& known);
    static bool hasOnly(const Json::Value& object, const Keys& known);

    // Returns true if such an object has lacked the key, and had an unknown one that is most likely meant for it.
    bool isMisspelt(const std::string& path, const std::string& key) const;

    std::optional<std::string> text(const Json::Value& json, const std::string& path);
    std::vector<std::string> texts(const Json::Value& json, const std::string& path);

    // They read a member of an object, and give nothing if there is none, of which only the second one complains.
    std::optional<std::string> optionalText(const Json::Value& object, const std::string& key, const std::string& path);
    std::optional<std::string> requiredText(const Json::Value& object, const std::string& key, const std::string& path);
    std::optional<std::int64_t> optionalInteger(const Json::Value& object, const std::string& key,
                                                const std::string& path, std::int64_t least, std::int64_t most);

    // Complains if the object does not have the key, unless it is misspelt: that has been said.
    bool hasMember(const Json::Value& object, const std::string& key, const std::string& path);

    // Returns the path of a member of an object. The root has the empty path.
    static std::string member(const std::string& path, const std::string& key);

    // Calls `visit` with each element of an array and its path.
    static void forEach(const Json::Value& array, const std::string& path, const auto& visit) {
        for (Json::ArrayIndex index = 0; index < array.size(); ++index) {
            visit(array[index], path + "[" + std::to_string(index) + "]");
        }
    }

  private:
    // A file that is not meant for the reader has as many mistakes as it has values.
    static constexpr std::size_t kMostShown = 100;

    void insert(std::size_t place, std::string mistake);

    const DocumentText& document;
    std::vector<std::string>& errors;
    std::vector<std::size_t> places;  // of the errors
    std::set<std::string> misspelt;   // the paths of the members meant
};

}  // namespace Brenta::OS::VIG::Tool
