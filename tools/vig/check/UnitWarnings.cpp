// A number for an attribute is taken for one of another unit where it makes no sense as it is and some as the other: by
// what devices have, or by what was recorded. A limit that no recorded value has come to is no mistake by itself.
#include <cmath>
#include <cstdint>
#include <set>
#include <string>
#include <utility>

#include "tools/vig/check/DrawShare.h"
#include "tools/vig/check/Warnings.h"
#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/document/Units.h"
#include "tools/vig/words/Text.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::string_view kName = "wrong-unit";
constexpr double kMostMemory = 64.0 * 1024 * 1024 * 1024;  // in bytes, that a device has

// A limit is likely to be so much less than what was recorded at most, or so much more.
constexpr double kBelow = 4;
constexpr double kAbove = 2;

// The numbers with which a machine compares attributes, by the names of these.
using Limits = std::set<std::pair<std::string, double>>;

class UnitJudge {
  public:
    UnitJudge(const NormalFilter& normal, const Unit& unit, const RecordedRange* recorded, const Limits& limits,
              std::vector<Finding>& found)
        : normal(normal),
          attribute(normal.left.operand.value),
          number(readNearest<double>(normal.right.operand.value)),
          unit(unit),
          recorded(recorded),
          limits(limits),
          found(found) {}

    void judge() {
        if (!(number > 0) || std::isinf(number)) {
            return;
        }
        if (unit.quantity == Quantity::Share) {
            judgeShare();
            return;
        }
        const double step = stepOf(unit.quantity);
        if (isTooLarge(number / step)) {
            warnOf(number / step);
        } else if (isTooSmall(number * step) || isBesideItself(number * step)) {
            warnOf(number * step);
        }
    }

  private:
    void judgeShare() {
        const bool isPercent = unit.size < 1;
        if (isPercent && number < 1) {
            warn(found, kName, normal.right.place,
                 shownName(attribute) + " is in percent, so that " + written() + " is less than one percent",
                 "write " + shownNumber(number * 100) + " if " + shownPercent(number) + " is meant");
        } else if (!isPercent && number > 1) {
            warn(found, kName, normal.right.place,
                 shownName(attribute) + " is a share from 0 to 1, and " + written() + " is none",
                 "write " + shownNumber(number / 100) + " if " + shownPercent(number / 100) + " is meant");
        }
    }

    std::string written() const { return shownName(normal.right.operand.value); }

    bool isBelow() const { return normal.op == FilterOperator::Less || normal.op == FilterOperator::LessEqual; }

    bool isTooLarge(double meant) const {
        // There is no smaller unit.
        if (unit.size <= 1) {
            return false;
        }
        if (unit.quantity == Quantity::Memory && number * unit.size > kMostMemory && meant * unit.size <= kMostMemory) {
            return true;
        }
        return recorded != nullptr && number > recorded->most &&
               isNear(meant, isBelow() ? recorded->least : recorded->most);
    }

    bool isTooSmall(double meant) const {
        return recorded != nullptr && number < recorded->least && meant >= recorded->least / kBelow &&
               meant <= recorded->most * (isBelow() ? 1 : kAbove);
    }

    // Tells whether the machine has the same limit in the unit of the attribute as well.
    bool isBesideItself(double meant) const {
        constexpr double kLeast = 16;  // kB, as fewer are likely to be a limit of their own
        constexpr double kStep = stepOf(Quantity::Memory);
        return unit.quantity == Quantity::Memory && unit.size == kStep && number >= kLeast && number < kStep &&
               limits.contains({attribute, meant});
    }

    static bool isNear(double meant, double value) { return meant >= value / kBelow && meant <= value * kAbove; }

    void warnOf(double meant) {
        const std::string usual = shownIn(unit, number);
        std::string message = shownName(attribute) + " is in " + std::string(unit.name);
        if (!usual.ends_with(unit.name)) {
            message += ", so that " + written() + " is " + usual;
        }
        if (recorded != nullptr && number > recorded->most) {
            message += ": no recorded one was above " + shownNumber(recorded->most);
        } else if (recorded != nullptr && number < recorded->least) {
            message += ": no recorded one was below " + shownNumber(recorded->least);
        }
        if (isBesideItself(meant)) {
            message += ", and another limit of this machine is " + shownIn(unit, meant);
        }
        warn(found, kName, normal.right.place, message,
             "write " + shownNumber(std::round(meant)) + " if " + shownIn(unit, meant) + " is meant");
    }

    const NormalFilter& normal;
    const std::string& attribute;
    const double number;
    const Unit& unit;
    const RecordedRange* const recorded;
    const Limits& limits;
    std::vector<Finding>& found;
};

// Calls `visit` with each filter that compares an attribute of a known unit with a number. What is not read to its end
// is told elsewhere, with what may be meant.
void forEachLimit(const ConfigModel& config, const auto& visit) {
    for (const TransitionModel& transition : config.transitions) {
        for (const FilterModel& filter : transition.filters) {
            const NormalFilter normal = normalFormOf(filter);
            const Unit* const unit = unitOf(normal.left.operand.value);
            const std::string& number = normal.right.operand.value;
            if (filter.valueType != FilterValueType::String && isAttribute(normal.left) && isConstant(normal.right) &&
                unit != nullptr && readNumber<double>(number).length == number.size()) {
                visit(filter, transition, normal, *unit);
            }
        }
    }
}

}  // namespace

void appendUnitWarnings(const ConfigModel& config, const Catalogue& catalogue, std::vector<Finding>& found) {
    Limits limits;
    forEachLimit(config, [&](const FilterModel&, const TransitionModel&, const NormalFilter& normal, const Unit&) {
        limits.emplace(normal.left.operand.value, readNearest<double>(normal.right.operand.value));
    });
    forEachLimit(config, [&](const FilterModel& filter, const TransitionModel& transition, const NormalFilter& normal,
                             const Unit& unit) {
        const RecordedRange* const recorded =
            catalogue.recorded(transition.event, normal.left.operand.value, kindOf(filter.valueType));
        UnitJudge(normal, unit, recorded, limits, found).judge();
    });
}

}  // namespace Brenta::OS::VIG::Tool
