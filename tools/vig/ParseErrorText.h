#pragma once

#include <algorithm>
#include <string_view>

#include "vig/parsers/VIGParseError.h"

namespace tool {

// How the tool calls the library's error codes.

struct ParseErrorText {
    Brenta::OS::VIG::VIGParseError error;
    std::string_view name;
    std::string_view meaning;  // one clause
};

inline constexpr ParseErrorText kParseErrorTexts[] = {
    {Brenta::OS::VIG::VIGParseError::InvalidJson, "InvalidJson", "the text is not JSON"},
    {Brenta::OS::VIG::VIGParseError::InvalidResponse, "InvalidResponse",
     "the root must be an object whose \"configs\" is an array"},
    {Brenta::OS::VIG::VIGParseError::InvalidConfig, "InvalidConfig",
     "a configuration must be an object with a 64-bit number \"id\" and an object \"payload\""},
    {Brenta::OS::VIG::VIGParseError::InvalidConfigPayload, "InvalidConfigPayload",
     "a payload must be an object with a 32-bit number \"id\" and an object \"data\""},
    {Brenta::OS::VIG::VIGParseError::InvalidFsm, "InvalidFsm", "a state machine is invalid"},
};

// REQUIRES: the error is not Ok.
constexpr const ParseErrorText& textOf(Brenta::OS::VIG::VIGParseError error) {
    return *std::ranges::find(kParseErrorTexts, error, &ParseErrorText::error);
}

}  // namespace tool
