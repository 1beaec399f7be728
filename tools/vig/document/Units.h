#pragma once

#include <string>
#include <string_view>

namespace Brenta::OS::VIG::Tool {

enum class Quantity { Memory, Time, Share };

struct Unit {
    Quantity quantity;
    double size;            // in bytes, in milliseconds, or as a part of the whole
    std::string_view name;  // as people write it: "kB"
};

// Returns the unit that the name of an attribute tells: vmRssKB is in kB. Returns null if it tells none.
const Unit* unitOf(std::string_view attribute);

// Returns the unit of the quantity that people write like that behind a number, in letters of any case: "MB", "s". A kB
// has 1024 bytes. Returns null if there is none.
const Unit* unitNamed(std::string_view name, Quantity quantity);

// Returns how many of a unit make the next larger one of its quantity, which is no share.
constexpr double stepOf(Quantity quantity) {
    return quantity == Quantity::Memory ? 1024 : 1000;
}

// Returns a number of that unit in the one that people would use: 204800 kB is "200 MB".
std::string shownIn(const Unit& unit, double number);

// Returns the number as people write it, with up to six digits or as an integer: 0.1, 307200.
std::string shownNumber(double number);

}  // namespace Brenta::OS::VIG::Tool
