#include "fuzz/Limits.h"

#include <fmt/format.h>
#include <sanitizer/allocator_interface.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "fuzz/JsonMutator.h"

namespace fuzz {

namespace {

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
