#include "tools/vig/events/EventRecord.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>

#include "tools/vig/events/EventNames.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

template <typename T>
void appendKind(std::string& line, AttributeKind kind, const AttributeSet& attributes) {
    if (attributes.isEmpty<T>()) {
        return;
    }
    fmt::format_to(std::back_inserter(line), ",\"{}\":", nameOf(kind));
    char separator = '{';
    attributes.forEach<T>([&](std::string_view name, T value) {
        line += std::exchange(separator, ',');
        appendJsonString(line, name);
        line += ':';
        if constexpr (std::is_same_v<T, std::string_view>) {
            appendJsonString(line, value);
        } else {
            // A double becomes the shortest text that reads back as the same.
            fmt::format_to(std::back_inserter(line), "{}", value);
        }
    });
    line += '}';
}

// Each kind has a comma before it.
void appendKinds(std::string& line, const AttributeSet& attributes) {
    appendKind<std::uint64_t>(line, AttributeKind::Uint64, attributes);
    appendKind<std::int64_t>(line, AttributeKind::Int64, attributes);
    appendKind<double>(line, AttributeKind::Double, attributes);
    appendKind<bool>(line, AttributeKind::Bool, attributes);
    appendKind<std::string_view>(line, AttributeKind::String, attributes);
}

}  // namespace

std::string jsonOf(const EventRecord& record) {
    std::string line = "{";
    if (!record.device.empty()) {
        line += "\"device\":" + inQuotes(record.device) + ",";
    }
    if (record.isEnd) {
        return line + "\"ended\":true}";
    }
    fmt::format_to(std::back_inserter(line), "\"event\":\"{}\"", nameOf(record.type));
    if (record.timeMs) {
        fmt::format_to(std::back_inserter(line), ",\"time_ms\":{}", *record.timeMs);
    }
    if (record.timeoutId) {
        fmt::format_to(std::back_inserter(line), ",\"timeout_id\":{}", *record.timeoutId);
    }
    appendKinds(line, record.attributes);
    line += '}';
    return line;
}

std::string jsonOf(const AttributeSet& attributes) {
    std::string text;
    appendKinds(text, attributes);
    return "{" + text.substr(std::min<std::size_t>(text.size(), 1)) + "}";
}

void writeEvent(Output& output, const EventRecord& record) {
    output.write(jsonOf(record) + "\n");
}

}  // namespace Brenta::OS::VIG::Tool
