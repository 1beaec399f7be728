#include "tools/vig/init/Sketch.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <system_error>
#include <vector>

#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/document/NumberMeaning.h"
#include "tools/vig/document/Units.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"
#include "vig/base/Utf8.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::uint32_t kMostTimes = 20;
constexpr std::size_t kWidth = 80;
constexpr std::string_view kProcessName = "processName";

struct Watchable {
    RulesEngine::EventType event;
    std::string name;
    AttributeKind kind;
};

// Returns all attributes that the tool knows, type by type.
std::vector<Watchable> allAttributes() {
    std::vector<Watchable> all;
    for (const auto& [type, typeName] : kEventTypeNames.pairs) {
        const CataloguedAttributes* const known = Catalogue::builtIn().find(type);
        for (const auto& [name, kinds] : known != nullptr ? *known : CataloguedAttributes()) {
            for (std::size_t kind = 0; kind < kKindNames.size(); ++kind) {
                if (kinds.has(static_cast<AttributeKind>(kind))) {
                    all.push_back({type, name, static_cast<AttributeKind>(kind)});
                }
            }
        }
    }
    return all;
}

// Returns those of the kinds that filters compare as numbers, and of which the name tells the event.
std::vector<Watchable> watchables() {
    const std::vector<Watchable> all = allAttributes();
    std::vector<Watchable> result;
    std::ranges::copy_if(all, std::back_inserter(result), [&](const Watchable& each) {
        return (each.kind == AttributeKind::Int64 || each.kind == AttributeKind::Double) &&
               std::ranges::count(all, each.name, &Watchable::name) == 1;
    });
    return result;
}

std::string got(const std::string& text) {
    return ", got " + (text.empty() ? std::string("nothing") : shownQuoted(text));
}

// Returns how a sentence goes on with what was meant by a text that is no number; nothing if that cannot be guessed, or
// would not be taken.
std::string meant(const std::string& text, bool isInteger, const Unit* unit, const auto& isTaken) {
    const auto meaning = meaningOf(text, isInteger, unit);
    std::string_view rest = meaning ? std::string_view(meaning->number) : std::string_view();
    const auto number = Decimal::readFrom(rest);
    return number && rest.empty() && isTaken(*number)
               ? fmt::format("; write {}{}", inQuotes(meaning->number), meaning->more)
               : "";
}

// Returns null if nothing is known.
const Unit* unitOfNumbers(const Sketch& sketch) {
    // How long processes wait for memory is in percent, which the names do not tell.
    return sketch.attribute.starts_with("psi") ? unitNamed("percent", Quantity::Share) : unitOf(sketch.attribute);
}

// Reads a number of the attribute, which may have a unit.
std::string readNumber(const std::string& text, const Sketch& sketch, Decimal& number) {
    const std::string_view own = unitOf(sketch);
    const std::string expected = own == "kB"
                                     ? "expected a number of kB such as 204800, or one with its unit such as 200MB"
                                 : own == "%" ? "expected a number of percent such as 40"
                                              : "expected a number such as 40";
    std::string_view rest = text;
    const auto read = Decimal::readFrom(rest);
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    const Unit* const here = unitOfNumbers(sketch);
    const Unit* const written = here == nullptr ? nullptr : unitNamed(rest, here->quantity);
    if (readNearest<double>(text) > Decimal::kMostDigits) {
        return shownQuoted(text) + " is too large";
    }
    if (!read || (!rest.empty() && written == nullptr)) {
        return expected + got(text) + meant(text, !sketch.isDouble, here, [](const Decimal&) { return true; });
    }
    const double ratio = written == nullptr ? 1 : written->size / here->size;
    const double nearest = readNearest<double>(text) * ratio;
    if (nearest > Decimal::kMostDigits) {
        return shownQuoted(text) + " is too large";
    }
    const auto value = ratio < 1 ? read->dividedBy(std::llround(1 / ratio)) : read->times(std::llround(ratio));
    if (!value || (!sketch.isDouble && !value->isWhole())) {
        return fmt::format("{} is no whole number of {}; the nearest one is {:.0f}", shownQuoted(text), own,
                           std::round(nearest));
    }
    number = *value;
    return {};
}

}  // namespace

std::string watchableAttributes() {
    std::string text;
    std::size_t column = 0;
    std::optional<RulesEngine::EventType> last;
    for (const Watchable& each : watchables()) {
        if (each.event != last) {
            text += fmt::format("{}  {}:", last ? "\n" : "", nameOf(each.event));
            column = 2 + nameOf(each.event).size() + 1;
        } else {
            text += ',';
        }
        if (column + 2 + each.name.size() > kWidth) {
            text += "\n   ";
            column = 3;
        }
        text += ' ' + each.name;
        column += 2 + each.name.size();
        last = each.event;
    }
    return text + '\n';
}

bool isOfProcess(const Sketch& sketch) {
    return Catalogue::builtIn().promises(sketch.event, kProcessName, AttributeKind::String);
}

std::string_view unitOf(const Sketch& sketch) {
    const Unit* const unit = unitOfNumbers(sketch);
    return unit == nullptr ? "" : unit->name == "percent" ? "%" : unit->name;
}

std::vector<std::string_view> actionsFor(const Sketch& sketch) {
    std::vector<std::string_view> names;
    for (const bool collects : {true, false}) {
        for (const KnownAction& each : kActions) {
            const auto hasNeed = [&](const ActionNeed& need) {
                return Catalogue::builtIn().promises(sketch.event, need.attribute, need.kind);
            };
            if (each.startsCollection == collects && std::ranges::all_of(each.needs, hasNeed)) {
                names.push_back(each.name);
            }
        }
    }
    return names;
}

std::string readAttribute(const std::string& text, Sketch& sketch) {
    const std::vector<Watchable> all = watchables();
    const auto found = std::ranges::find(all, text, &Watchable::name);
    if (found != all.end()) {
        sketch.event = found->event;
        sketch.attribute = text;
        sketch.isDouble = found->kind == AttributeKind::Double;
        return {};
    }
    const std::vector<Watchable> others = allAttributes();
    const auto other = std::ranges::find(others, text, &Watchable::name);
    if (other == others.end()) {
        std::vector<std::string_view> names;
        names.reserve(all.size());
        for (const Watchable& each : all) {
            names.push_back(each.name);
        }
        // Those come first that it is a part of: rss is one of vmRssKB.
        const auto isSame = [](unsigned char left, unsigned char right) {
            return std::tolower(left) == std::tolower(right);
        };
        std::stable_partition(names.begin(), names.end(), [&](std::string_view name) {
            return std::search(name.begin(), name.end(), text.begin(), text.end(), isSame) != name.end();
        });
        const std::string near = suggestion(text, names);
        return "expected the name of an attribute that is a number" + got(text) +
               (near.empty() ? choices(text, names) : near);
    }
    if (other->kind == AttributeKind::Int64 || other->kind == AttributeKind::Double) {
        return shownQuoted(text) + " tells one process from another, and has no limit";
    }
    return fmt::format("{} is a {}, which rules cannot compare with a limit", shownQuoted(text), nameOf(other->kind));
}

std::string readProcess(const std::string& text, Sketch& sketch) {
    if (text.empty() || replaceInvalidUtf8(text) != text || printable(text) != text) {
        return "expected the name of a process as events have it, such as camera" + got(text);
    }
    sketch.process = text;
    return {};
}

std::string readLimit(const std::string& text, Sketch& sketch) {
    return readNumber(text, sketch, sketch.limit);
}

std::string readTimes(const std::string& text, Sketch& sketch) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), sketch.times);
    if (error != std::errc() || end != text.data() + text.size() || sketch.times < 1 || sketch.times > kMostTimes) {
        return fmt::format("expected a whole number from 1 to {}{}", kMostTimes, got(text));
    }
    return {};
}

std::string readRelease(const std::string& text, Sketch& sketch) {
    Decimal number;
    std::string problem = readNumber(text, sketch, number);
    if (problem.empty() && number > sketch.limit) {
        return fmt::format("expected a release limit that is not above the limit, which is {}{}", sketch.limit.text(),
                           got(text));
    }
    sketch.release = number;
    return problem;
}

std::string readSecond(const std::string& text, Sketch& sketch) {
    Decimal number;
    std::string problem = readNumber(text, sketch, number);
    if (problem.empty() && number <= sketch.limit) {
        return fmt::format("expected a second limit that is above the first one, which is {}{}", sketch.limit.text(),
                           got(text));
    }
    sketch.second = number;
    return problem;
}

std::string readShare(const std::string& text, Sketch& sketch) {
    std::string_view rest = text;
    auto share = Decimal::readFrom(rest);
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    if (share && rest == "%") {
        share = share->dividedBy(100);
        rest = {};
    }
    const auto isShare = [](const Decimal& number) { return number > Decimal() && number <= Decimal(1, 0); };
    if (!share || !rest.empty() || !isShare(*share)) {
        return "expected a share above 0 and up to 1, such as 0.1, or the same in percent, 10%" + got(text) +
               meant(text, false, unitOf("Share"), isShare);
    }
    sketch.share = *share == Decimal(1, 0) ? std::nullopt : share;
    return {};
}

std::string readAction(const std::string& text, Sketch& sketch) {
    const std::vector<std::string_view> names = actionsFor(sketch);
    if (std::ranges::find(names, text) == names.end()) {
        return fmt::format("expected one of {}, for which {} events have what it needs{}", fmt::join(names, ", "),
                           nameOf(sketch.event), got(text));
    }
    sketch.action = text;
    return {};
}

}  // namespace Brenta::OS::VIG::Tool
