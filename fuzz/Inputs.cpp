#include "fuzz/Inputs.h"

#include <fmt/format.h>
#include <sanitizer/allocator_interface.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <utility>

#include "tests/support/DocumentGenerator.h"
#include "vig/parsers/JsonTokens.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace fuzz {

namespace {

support::Mutator mutator;
support::DocumentGenerator generator(mutator, 1000);

std::size_t draw(std::size_t bound) {
    return mutator.draw(bound);
}

std::string mutatedBytes(std::string text, std::size_t most) {
    const std::size_t size = std::min(text.size(), most);
    text.resize(most);
    text.resize(most == 0 ? 0 : LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(text.data()), size, most));
    return text;
}

// Removes one of the commas at its sides, too.
void remove(std::string& text, const Value& value) {
    const std::size_t comma = text.find_first_not_of(" \n", value.end);
    const bool isBeforeComma = comma < text.size() && text[comma] == ',';
    const bool isAfterComma = !isBeforeComma && value.memberBegin > 0 && text[value.memberBegin - 1] == ',';
    const std::size_t begin = value.memberBegin - (isAfterComma ? 1 : 0);
    text.erase(begin, (isBeforeComma ? comma + 1 : value.end) - begin);
}

void changeValue(std::string& text) {
    constexpr std::size_t kLong = 700;  // bytes, from which on a text shrinks as often as it grows
    constexpr std::size_t kMoreBytes = 32;
    const std::string before = text;  // which the values point into
    const std::vector<Value> values = valuesIn(before);
    if (values.empty()) {
        return;
    }
    const Value& value = values[draw(values.size())];
    const Value& other = values[draw(values.size())];
    const std::size_t size = value.end - value.begin;
    const std::size_t quote = text[value.begin] == '"' && size >= 2 ? 1 : 0;
    switch (text.size() > kLong && draw(2) == 0 ? 1 : draw(6)) {
        case 0:
            text.insert(value.end, "," + before.substr(value.memberBegin, value.end - value.memberBegin));
            break;
        case 1:
            remove(text, value);
            break;
        case 2:
            if (other.key == value.key) {
                text.replace(value.begin, size, before, other.begin, other.end - other.begin);
            }
            break;
        case 3:  // what stands between the quotes, if it is a string
            text.replace(value.begin + quote, size - 2 * quote,
                         mutatedBytes(before.substr(value.begin + quote, size - 2 * quote), size + kMoreBytes));
            break;
        default: {
            const std::string drawn = value.isElement ? generator.elementOf(value.key) : generator.valueOf(value.key);
            text.replace(value.begin, size, drawn.empty() ? generator.somethingElse() : drawn);
        }
    }
}

// Repeats what leads from the beginning of an array or object to one of its values, often with a token replaced by
// another one, before which a comment may stand, as many times as no document may be nested. Returns the text itself
// where that is too long or there is no such piece.
std::string repeatedWayIn(const std::string& text, std::size_t most) {
    constexpr std::size_t kTimes = 1100;
    const std::vector<Value> values = valuesIn(text);
    std::string piece;
    for (int tries = values.empty() ? 0 : 8; tries > 0 && (piece.empty() || piece.size() * kTimes > most); --tries) {
        const Value& inner = values[draw(values.size())];
        const auto isAround = [&](const Value& each) { return each.begin < inner.begin && each.end >= inner.end; };
        const auto outer = std::find_if(values.rbegin(), values.rend(), isAround);
        piece = outer == values.rend() ? "" : text.substr(outer->begin, inner.begin - outer->begin);
    }
    Brenta::OS::VIG::JsonTokens tokens(piece);
    for (auto count = draw(8); count > 0 && tokens.next(); --count) {
    }
    if (!piece.empty() && draw(4) > 0) {
        const std::string other = mutator.pick({"", "/**/", "//\n"}) +
                                  mutator.pick({"[", "]", "{", "}", ",", ":", "0", "\"\"", "null", "\n"});
        piece.replace(tokens.offset(), tokens.token().size(), other);
    }
    std::string repeated;
    for (std::size_t count = kTimes; count > 0 && repeated.size() <= most; --count) {
        repeated += piece;
    }
    return repeated.empty() || repeated.size() > most ? text : repeated;
}

std::string mutatedJson(const std::string& text, std::size_t most) {
    std::string changed = text;
    switch (draw(32)) {
        case 0:
            changed = generator.document();
            break;
        case 1:
            changed = mutatedBytes(std::move(changed), most);
            break;
        case 2:
            changed = mutator.mutated(text.empty() ? " " : text);
            break;
        case 3:
        case 4:
            changed = repeatedWayIn(text, most);
            break;
        default:
            for (std::size_t changes = 1 + draw(8) / 7; changes > 0; --changes) {
                changeValue(changed);
            }
    }
    return changed.size() <= most ? changed : text.substr(0, most);
}

constexpr std::size_t kOneIn = 8192;
constexpr std::size_t kSmall = std::size_t{32} << 10;
constexpr std::size_t kLarge = 4 * kSmall;

// These count what is asked for, without what the sanitizer adds. The targets have one thread.
std::size_t inUse = 0;
std::size_t mostInUse = 0;

void onAllocation(const volatile void* /*memory*/, std::size_t size) {
    inUse += size;
    mostInUse = std::max(mostInUse, inUse);
}

void onRelease(const volatile void* memory) {
    inUse -= std::min(inUse, __sanitizer_get_allocated_size(memory));
}

[[maybe_unused]] const int hooks = __sanitizer_install_malloc_and_free_hooks(onAllocation, onRelease);

// Returns the seconds that it took.
double useWithinMemory(const std::string& text, std::size_t always,
                       const std::function<void(const std::string&)>& use) {
    constexpr std::size_t kForAByte = 256;
    const std::size_t before = inUse;
    const std::clock_t begin = std::clock();
    mostInUse = inUse;
    use(text);
    if (mostInUse - before > always + kForAByte * text.size()) {
        fail(fmt::format("{} bytes in use for a text of {} bytes", mostInUse - before, text.size()));
    }
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

void useLarge(const std::string& text, std::size_t always, std::size_t random,
              const std::function<void(const std::string&)>& use) {
    // The piece is a value that stands once more, or any piece of the text.
    const std::vector<Value> values = valuesIn(text);
    std::size_t place = random % text.size();
    std::string piece = text.substr(place, 1 + random / text.size() % 64);
    if (!values.empty() && random % 2 == 0) {
        const Value& value = values[random / 2 % values.size()];
        place = value.end;
        piece = "," + text.substr(value.memberBegin, value.end - value.memberBegin);
    }
    const auto repeated = [&](std::size_t size) {
        std::string pieces;
        while (pieces.size() < size) {
            pieces += piece;
        }
        return text.substr(0, place) + pieces + text.substr(place);
    };
    const std::string small = repeated(kSmall);
    const std::string large = repeated(kLarge);
    std::string times;
    for (int tries = 0; tries < 3; ++tries) {  // the machine may have done something else
        const double forSmall = useWithinMemory(small, always, use);
        const double forLarge = useWithinMemory(large, always, use);
        if (forLarge < 0.02 + 10 * forSmall) {  // 16 times as long if it were quadratic
            return;
        }
        times += fmt::format("{} s for {} bytes, {} s for {} bytes\n", forSmall, small.size(), forLarge, large.size());
    }
    fail(times);
}

}  // namespace

std::vector<Value> valuesIn(std::string_view text) {
    std::vector<Value> values;
    std::vector<std::size_t> open;  // which of them contain the place
    std::string_view key;
    std::size_t keyBegin = 0;
    for (Brenta::OS::VIG::JsonTokens tokens(text); tokens.next();) {
        const char kind = tokens.kind();
        const std::size_t end = tokens.offset() + tokens.token().size();
        if (kind == '}' || kind == ']') {
            if (!open.empty()) {
                values[open.back()].end = end;
                open.pop_back();
            }
        } else if (kind == '"' && tokens.isFollowedBy(':')) {
            key = tokens.token().substr(1, tokens.token().size() - 2);
            keyBegin = tokens.offset();
        } else if (kind != ',' && kind != ':') {
            const bool isMember = !open.empty() && text[values[open.back()].begin] == '{';
            const std::string_view listKey = open.empty() ? std::string_view() : values[open.back()].key;
            values.push_back({isMember ? std::min(keyBegin, tokens.offset()) : tokens.offset(), tokens.offset(), end,
                              isMember ? key : listKey, !isMember});
            if (kind == '{' || kind == '[') {
                open.push_back(values.size() - 1);
            }
        }
    }
    return values;
}

void fail(const std::string& what) {
    std::fprintf(stderr, "%s\n", what.c_str());
    std::abort();
}

void useWithinLimits(const std::string& text, std::size_t always, const std::function<void(const std::string&)>& use) {
    const std::size_t random = std::hash<std::string>()(text);
    if (!text.empty() && random % kOneIn == 0) {
        useLarge(text, always, random / kOneIn, use);
    }
    useWithinMemory(text, always, use);
}

}  // namespace fuzz

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    std::string text(input.substr(0, input.find('\0')));
    std::string rest(input.substr(text.size()));
    fuzz::mutator.seed(seed);
    if (rest.empty() || seed % 3 != 0) {
        text = fuzz::mutatedJson(text, most - rest.size());
    } else {
        constexpr std::size_t kMoreBytes = 64;
        rest = '\0' + fuzz::mutatedBytes(rest.substr(1), std::min(rest.size() + kMoreBytes, most - text.size()) - 1);
    }
    return (text + rest).copy(reinterpret_cast<char*>(data), most);
}

// Asked for by the address sanitizer. Several times as many executions, for stacks of allocations that are only useful
// to reproduce something with.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
    return "malloc_context_size=1:max_malloc_fill_size=0:quarantine_size_mb=4:allocator_release_to_os_interval_ms=-1";
}
