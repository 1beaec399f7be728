#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>

namespace support {

// Returns the text with the first of one part exchanged; ' stands for the quotes of JSON.
inline std::string changed(std::string text, std::string from, std::string to) {
    std::ranges::replace(from, '\'', '"');
    std::ranges::replace(to, '\'', '"');
    const std::size_t place = text.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    return place == std::string::npos ? text : text.replace(place, from.size(), to);
}

}  // namespace support
