#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Json {
class Value;
}

namespace Brenta::OS::VIG {

// Reads a whole text. Returns nothing on success, otherwise the reader's report of what is wrong and where; `root` is
// then in any state. Each value knows its offsets in the text (after a byte order mark).
std::optional<std::string> readJson(const std::string& text, Json::Value& root);

// Returns nothing if the reader returns normally from this text. Otherwise it would throw, because it would have to
// read a value inside of `levels` or more arrays and objects, or could meet a key of 1 GiB. The report says which and
// where, in the manner of the reader; for a value that is nested too deep, it is the reader's own if there is an error
// before.
std::optional<std::string> reportOfUnreadable(std::string_view text, unsigned levels);

}  // namespace Brenta::OS::VIG
