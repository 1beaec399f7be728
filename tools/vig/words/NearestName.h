#pragma once

#include <span>
#include <string>
#include <string_view>

namespace Brenta::OS::VIG::Tool {

// Returns `; did you mean "…"?` with the name that a typing mistake most likely made `given` of; empty if none is near.
std::string suggestion(std::string_view given, std::span<const std::string_view> names);

// Returns the same, and `; there are …` with the first few names.
std::string choices(std::string_view given, std::span<const std::string_view> names);

// Returns the suggestion, and a beginning of the list of the names, which then stand in a line each.
std::string beforeList(std::string_view given, std::span<const std::string_view> names);

}  // namespace Brenta::OS::VIG::Tool
