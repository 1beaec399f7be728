#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

// It compares an attribute with a constant, in the three languages in which that is measured.
struct Condition {
    const char* attribute;
    const char* op;
    const char* constant;
};

enum class Kind { Integer, Double, String };

// Returns so many conditions on the attributes of a MemoryEvent, all true, or with `lastIsFalse` all but the last.
std::vector<Condition> conditions(Kind kind, std::size_t count, bool lastIsFalse);

// Returns a document whose machine goes from "start" to itself when all of them are true.
std::string document(Kind kind, const std::vector<Condition>& conditions);

// Each configuration has about 1,000 bytes, minified: three transitions with four filters in all.
std::string documentOf(std::size_t configurations);

}  // namespace bench
