#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "fuzz/Inputs.h"
#include "fuzz/ReferenceEngine.h"
#include "tests/support/TestEvent.h"
#include "tools/vig/document/Registry.h"

namespace fuzz {

using namespace std::string_literals;
using Strings = std::vector<std::string>;

inline const auto& registry() {
    static const auto kRegistry = Brenta::OS::VIG::Tool::libraryRegistry();
    return kRegistry;
}

// Every script stands for something. Most attributes have names and values that the document compares.
class Script {
  public:
    Script(const std::string& document, std::string_view script)
        : bytes(reinterpret_cast<const std::uint8_t*>(script.data()), script.size()) {
        for (const auto& [name, type] : registry().getEventTypes()) {
            world.eventTypes.insert(name);
        }
        types.assign(world.eventTypes.begin(), world.eventTypes.end());
        constexpr std::size_t kWeight = 20;  // most events are of types that the document listens for
        for (const fuzz::Value& value : fuzz::valuesIn(document)) {
            const std::string text = document.substr(value.begin, value.end - value.begin);
            const std::string content = text.size() < 2 ? "" : text.substr(1, text.size() - 2);
            if (value.key == "event" && world.eventTypes.contains(content)) {
                types.insert(types.end(), kWeight, content);
            } else if (value.key == "value" && isPlain(content)) {
                texts.push_back(content);
            }
        }
        constexpr std::size_t kMostEvents = 24;
        world.functions = {registry().getDoublePureFunctions().begin(), registry().getDoublePureFunctions().end()};
        world.context = attributes();
        world.timeoutIds = {0, 1, 2};
        world.hasTriggerService = bytes.ConsumeBool();
        seed = bytes.ConsumeIntegral<std::uint8_t>();
        while (bytes.remaining_bytes() > 0 && events.size() < kMostEvents) {
            events.push_back({pick(types), upTo(3), attributes()});
        }
    }

    reference::World world;
    unsigned seed;
    std::vector<reference::Event> events;

  private:
    // JSON and UTF-8 make nothing else of it.
    static bool isPlain(const std::string& text) {
        return std::ranges::all_of(text, [](char each) { return each >= ' ' && each < '\x7f' && each != '\\'; });
    }

    int upTo(int most) { return bytes.ConsumeIntegralInRange(0, most); }

    const std::string& pick(const Strings& list) {
        return list[static_cast<std::size_t>(upTo(static_cast<int>(list.size()) - 1))];
    }

    support::Attributes attributes() {
        support::Attributes result;
        int kinds = upTo(63);
        const auto add = [&]<typename T>(support::NamedValues<T>& values) {
            if (kinds % 2 != 0) {
                const std::string& name = pick(texts);
                values.emplace_back(name, value<T>());
            }
            kinds /= 2;
        };
        add(result.uint64), add(result.int64), add(result.real), add(result.boolean), add(result.string);
        if (kinds != 0) {  // so that triggers succeed
            result.int64.insert(result.int64.end(), {{"vmRssKB", value<std::int64_t>()}, {"vmSwapKB", 1}});
            result.real.emplace_back("cpuAvgUtilization", value<double>());
            result.string.emplace_back("processName", pick(texts));
        }
        return result;
    }

    // Returns one in or near a value of the document, or an extreme one.
    template <typename T>
    T value() {
        if constexpr (std::is_same_v<T, std::string>) {
            return pick(texts);
        } else {
            constexpr auto kLimits = std::numeric_limits<T>();
            constexpr double kExact = 1e15;  // so far a double is an integer
            const int kind = upTo(7);
            const T limits[] = {kLimits.max(), kLimits.lowest(), kLimits.quiet_NaN()};
            const double number = std::strtod(pick(texts).c_str(), nullptr) + (kind - 5);
            return kind < 3 ? limits[kind]
                            : static_cast<T>(std::fmax(std::fmin(number, kExact), std::is_signed_v<T> ? -kExact : 0));
        }
    }

    FuzzedDataProvider bytes;
    Strings types;
    Strings texts = {"",
                     "7",
                     "processName",
                     "vmRssKB",
                     "vmSwapKB",
                     "cpuAvgUtilization",
                     "memUsedMaxBytes",
                     "numCompressedDataBytes",
                     "camera\0evil"s};
};

}  // namespace fuzz
