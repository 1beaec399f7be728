#pragma once

#include <algorithm>
#include <string_view>

#include "vig/parsers/VIGParseError.h"

namespace Brenta::OS::VIG::Tool {

// The tool calls the library's error codes by these names.

struct ParseErrorText {
    VIGParseError error;
    std::string_view name;
    std::string_view meaning;  // one clause
};

inline constexpr ParseErrorText kParseErrorTexts[] = {
    {VIGParseError::InvalidJson, "InvalidJson", "the text is not JSON"},
    {VIGParseError::InvalidResponse, "InvalidResponse", "the root must be an object whose \"configs\" is an array"},
    {VIGParseError::InvalidConfig, "InvalidConfig",
     "a configuration must be an object with a 64-bit number \"id\" and an object \"payload\""},
    {VIGParseError::InvalidConfigPayload, "InvalidConfigPayload",
     "a payload must be an object with a 32-bit number \"id\" and an object \"data\""},
    {VIGParseError::InvalidFsm, "InvalidFsm", "a state machine is invalid"},
};

// REQUIRES: the error is not Ok.
constexpr const ParseErrorText& textOf(VIGParseError error) {
    return *std::ranges::find(kParseErrorTexts, error, &ParseErrorText::error);
}

}  // namespace Brenta::OS::VIG::Tool
