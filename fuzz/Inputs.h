#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Changes the inputs of all targets: mostly such that a text keeps the shape of JSON, and of a rule document if it is
// one, now and then by single bytes, or to a new document. Behind a NUL stand bytes that are changed on their own.
// Holds their reading to limits of memory and time, too.
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

inline constexpr std::size_t kMegabyte = std::size_t{1} << 20;

// Ends the process, which libFuzzer takes for a finding.
[[noreturn]] void fail(const std::string& what);

// Calls `use` with the text. Fails if more memory is in use at a time than `always` and 256 times the size of the text
// (256 MB for 1 MB). For one text in some thousands it first does the same with large texts, made of it by repeating a
// piece, and also fails if the time that `use` takes grows faster than the text.
void useWithinLimits(const std::string& text, std::size_t always, const std::function<void(const std::string&)>& use);

}  // namespace fuzz
