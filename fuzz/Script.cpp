#include "fuzz/Script.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <type_traits>

#include "fuzz/JsonMutator.h"
#include "vig/EventTypeNames.h"

namespace fuzz {

namespace {

class ScriptReader {
  public:
    explicit ScriptReader(const Input& input)
        : bytes(reinterpret_cast<const std::uint8_t*>(input.script.data()), input.script.size()) {
        for (const auto& [type, name] : Brenta::OS::VIG::kEventTypeNames.pairs) {
            types.emplace_back(name);
        }
        const std::vector<std::string> known = types;
        constexpr std::size_t kWeight = 20;  // most events are of types that the document listens for
        for (const Value& value : valuesIn(input.document)) {
            const std::string text = input.document.substr(value.begin, value.end - value.begin);
            const std::string content = text.size() < 2 ? "" : text.substr(1, text.size() - 2);
            if (value.key == "event" && std::ranges::find(known, content) != known.end()) {
                types.insert(types.end(), kWeight, content);
            } else if (value.key == "value" && isPlain(content)) {
                texts.push_back(content);
            }
        }
    }

    Script read() {
        constexpr std::size_t kMostEvents = 24;
        Script script{{attributes(), {0, 1, 2}, bytes.ConsumeBool(), bytes.ConsumeIntegral<std::uint8_t>()}, {}};
        while (bytes.remaining_bytes() > 0 && script.events.size() < kMostEvents) {
            script.events.push_back({pick(types), upTo(3), attributes()});
        }
        return script;
    }

  private:
    // JSON and UTF-8 make nothing else of it.
    static bool isPlain(const std::string& text) {
        return std::ranges::all_of(text, [](char each) { return each >= ' ' && each < '\x7f' && each != '\\'; });
    }

    int upTo(int most) { return bytes.ConsumeIntegralInRange(0, most); }

    const std::string& pick(const std::vector<std::string>& list) {
        return list[bytes.ConsumeIntegralInRange<std::size_t>(0, list.size() - 1)];
    }

    naive::Attributes attributes() {
        naive::Attributes result;
        const int kinds = upTo(63);
        add(kinds & 1, result.uint64);
        add(kinds & 2, result.int64);
        add(kinds & 4, result.real);
        add(kinds & 8, result.boolean);
        add(kinds & 16, result.string);
        if ((kinds & 32) != 0) {  // so that triggers succeed
            result.int64.emplace_back("vmRssKB", value<std::int64_t>());
            result.int64.emplace_back("vmSwapKB", 1);
            result.real.emplace_back("cpuAvgUtilization", value<double>());
            result.string.emplace_back("processName", pick(texts));
        }
        return result;
    }

    template <typename T>
    void add(int isWanted, naive::Named<T>& attributes) {
        if (isWanted != 0) {
            const std::string& name = pick(texts);
            attributes.emplace_back(name, value<T>());
        }
    }

    // In or near a value of the document, or an extreme one.
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
    std::vector<std::string> types;
    std::vector<std::string> texts = {"",
                                      "7",
                                      "processName",
                                      "vmRssKB",
                                      "vmSwapKB",
                                      "cpuAvgUtilization",
                                      "memUsedMaxBytes",
                                      "numCompressedDataBytes",
                                      std::string("camera\0evil", 11)};
};

}  // namespace

Script scriptOf(const Input& input) {
    return ScriptReader(input).read();
}

}  // namespace fuzz
