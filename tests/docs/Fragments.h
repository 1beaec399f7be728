#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"

namespace docs {

// Returns the first group of every match, of which it expects one.
inline std::vector<std::string> allOf(const std::string& text, const std::string& pattern) {
    const std::regex regex(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
        found.push_back(match->str(1));
    }
    EXPECT_FALSE(found.empty()) << pattern;
    return found;
}

inline const std::string kJsonBlock = "```json[^\n]*\n([^`]*)```";

// A part of a document, known by its outermost key, made a whole one.
inline std::string wholeOf(const std::string& block) {
    const std::pair<const char*, std::string> wholes[] = {
        {"\"configs\"", "%"},
        {"\"payload\"", support::document({"%"})},
        {"\"data\"", support::document({R"({"id":1,"payload":%})"})},
        {"\"transitions\"", support::document({R"({"id":1,"payload":{"id":1,"data":%}})"})},
        {"\"from_state\"", support::document({support::config(1, {"%"})})},
        {"\"operator\"", support::document({support::config(1, {support::transition("", "", "Test", "[%]", "[]")})})},
        {"\"name\"", support::document({support::config(1, {support::transition("", "", "Test", "[]", "[%]")})})},
        {"", "%"},
    };
    const auto outermost = [&](const auto& each) { return block.find(each.first) != std::string::npos; };
    const std::string& whole = std::ranges::find_if(wholes, outermost)->second;
    return std::regex_replace(whole, std::regex("%"), block);
}

}  // namespace docs
