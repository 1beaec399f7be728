#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

// Changes the inputs of all targets: mostly such that a text keeps the shape of JSON, and of a rule document if it is
// one, now and then by single bytes, or to a new document. What follows a NUL is bytes that are changed on their own.
namespace fuzz {

// A value in a JSON text.
struct Value {
    std::size_t memberBegin;  // where its key begins; the same as `begin` for the element of a list
    std::size_t begin;
    std::size_t end;
    std::string_view key;  // its own, or that of the list that it is an element of
    bool isElement;
};

// Returns the values in the order in which they begin. Text that is not JSON has some all the same.
std::vector<Value> valuesIn(std::string_view text);

}  // namespace fuzz
