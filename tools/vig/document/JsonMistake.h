#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tools/vig/words/SourceText.h"

namespace Brenta::OS::VIG::Tool {

// It says to the one who has written a text why it is no JSON.
struct JsonMistake {
    std::size_t begin;  // bytes of the text
    std::size_t end;
    std::string message;
    std::string hint;  // what would mend it; may be empty
};

enum class JsonDialect {
    Library,  // with comments, commas before closing brackets, and anything behind the end, as the library reads it
    Strict,
};

// Returns what is wrong with a text that is refused, by place. Whether a text is JSON its reader alone decides; this
// tells what may have been meant, and is empty where that cannot be guessed.
std::vector<JsonMistake> jsonMistakesIn(const SourceText& text, JsonDialect dialect);

// Returns what stands behind the root, which ends at that byte and behind which the library reads nothing; nothing if
// that is white space and comments alone.
std::optional<JsonMistake> trailingText(const SourceText& text, std::size_t rootEnd);

}  // namespace Brenta::OS::VIG::Tool
