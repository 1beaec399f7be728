#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Brenta::OS::VIG::Tool {

// Returns the names that a mistake most likely made `given` of, in the order in which they come; empty if none is near.
std::vector<std::string_view> nearNames(std::string_view given, std::span<const std::string_view> names);

// Returns `; did you mean "…"?` with these names; empty if there is none.
std::string suggestion(std::string_view given, std::span<const std::string_view> names);

// Returns the same, and `; there are …` with the first few names.
std::string choices(std::string_view given, std::span<const std::string_view> names);

// Returns the suggestion, and a beginning of the list of the names, which then stand in a line each.
std::string beforeList(std::string_view given, std::span<const std::string_view> names);

}  // namespace Brenta::OS::VIG::Tool
