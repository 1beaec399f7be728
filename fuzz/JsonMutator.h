#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

// A value in a JSON text.
struct Value {
    std::size_t memberBegin;  // where its key begins; the same as `begin` for the element of a list
    std::size_t begin;
    std::size_t end;
    std::string_view key;  // its own, or that of the list that it is an element of
    bool isElement;
};

// The values in the order in which they begin. Text that is not JSON has some all the same.
std::vector<Value> valuesIn(std::string_view text);

// Changes a text such that it mostly keeps the shape of JSON, and of a rule document if it is one. Now and then changes
// single bytes, or draws a new document. The same for the same seed.
std::string mutatedJson(const std::string& text, std::size_t most, unsigned seed);

// What libFuzzer makes of the text.
std::string mutatedBytes(std::string text, std::size_t most);

// Hands a result to libFuzzer, which has room for `most` bytes.
std::size_t putInput(std::uint8_t* data, const std::string& text, std::size_t most);

}  // namespace fuzz
