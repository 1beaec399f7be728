#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/NaiveEngine.h"

namespace fuzz {

// A rule document and, after the first NUL, bytes that stand for what its machines are given.
struct Input {
    explicit Input(std::string_view bytes)
        : document(bytes.substr(0, bytes.find('\0'))),
          script(bytes.substr(std::min(bytes.size(), document.size() + 1))) {}

    const std::string document;
    const std::string_view script;
};

struct Script {
    naive::World world;
    std::vector<naive::Event> events;
};

// Every script stands for something. Most attributes have names and values that the document compares.
Script scriptOf(const Input& input);

}  // namespace fuzz
