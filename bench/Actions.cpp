#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <utils/String16.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "bench/Scenario.h"
#include "rulesengine/Event.h"
#include "vig/actions/VIGTriggerVeloraFuncActionFactoryImpl.h"
#include "vig/functions/PseudoRandomDoublePureFunctionImpl.h"

namespace bench {

namespace {

using Brenta::OS::RulesEngine::Event;
using Brenta::OS::RulesEngine::EventType;
using Metadata = std::vector<std::optional<android::String16>>;

// It has twenty attributes.
class RichEvent final : public Event {
  public:
    RichEvent() : Event(EventType::ProcessMemoryHeartBeat) {}

    std::optional<std::int64_t> getInt64Attr(std::string_view key) const override { return find(kIntegers, key); }
    std::optional<double> getDoubleAttr(std::string_view key) const override { return find(kDoubles, key); }
    std::string_view getStringAttr(std::string_view key) const override {
        return find(kStrings, key).value_or(std::string_view());
    }
    std::vector<std::string_view> keys(ValueType kind) const override {
        return kind == ValueType::Int64    ? names(kIntegers)
               : kind == ValueType::Double ? names(kDoubles)
               : kind == ValueType::String ? names(kStrings)
                                           : std::vector<std::string_view>();
    }

    static constexpr std::pair<std::string_view, std::int64_t> kIntegers[] = {
        {"vmRssKB", 217'024}, {"vmSwapKB", 1'024}, {"pid", 4'711},    {"uid", 10'234},    {"threads", 61},
        {"openFiles", 214},   {"majorFaults", 17}, {"oomScore", 200}, {"uptime", 86'400}, {"vmSizeKB", 5'217'024}};
    static constexpr std::pair<std::string_view, double> kDoubles[] = {
        {"cpuAvgUtilization", 87.5}, {"growth", 1.25}, {"share", 0.125}, {"pressure", 0.0625}, {"idle", 0.33}};
    static constexpr std::pair<std::string_view, std::string_view> kStrings[] = {{"processName", "com.example.camera"},
                                                                                 {"package", "com.example"},
                                                                                 {"state", "foreground"},
                                                                                 {"version", "12.4.1"},
                                                                                 {"build", "release-keys"}};

  private:
    template <typename T, std::size_t Size>
    static std::optional<T> find(const std::pair<std::string_view, T> (&attributes)[Size], std::string_view key) {
        for (const auto& [name, value] : attributes) {
            if (name == key) {
                return value;
            }
        }
        return std::nullopt;
    }

    static std::vector<std::string_view> names(const auto& attributes) {
        std::vector<std::string_view> result;
        for (const auto& [name, value] : attributes) {
            result.push_back(name);
        }
        return result;
    }
};

void convert(Metadata& metadata, const auto& attributes) {
    for (const auto& [name, value] : attributes) {
        metadata.emplace_back(android::String16(fmt::format("{}:{}", name, value).c_str()));
    }
}

}  // namespace

void addActions(std::vector<Scenario>& scenarios) {
    using Factory = Brenta::OS::VIG::VIGTriggerVeloraFuncActionFactoryImpl;
    scenarios.push_back({"metadata/vig", 64, []() -> Scenario::Loop {
                             return [](std::size_t times) {
                                 const RichEvent event;
                                 return timed(times,
                                              [&] { benchmark::DoNotOptimize(Factory::synthesizeMetadata(event)); });
                             };
                         }});
    scenarios.push_back({"metadata/bare", 64, []() -> Scenario::Loop {
                             return [](std::size_t times) {
                                 return timed(times, [] {
                                     Metadata metadata;
                                     metadata.emplace_back(
                                         android::String16(fmt::format("threshold_current_value:{}", 218'048).c_str()));
                                     metadata.emplace_back(android::String16("threshold_units:RSS_anon_plus_swap_KB"));
                                     convert(metadata, RichEvent::kIntegers);
                                     convert(metadata, RichEvent::kDoubles);
                                     convert(metadata, RichEvent::kStrings);
                                     benchmark::DoNotOptimize(metadata);
                                 });
                             };
                         }});
}

namespace {

double drawOurs(std::size_t times) {
    const auto function = Brenta::OS::VIG::PseudoRandomDoublePureFunctionImpl::get();
    return timed(times, [&] { benchmark::DoNotOptimize(function()); });
}

double drawTheirs(std::size_t times) {
    std::mt19937 engine(5489);
    std::uniform_real_distribution<double> distribution;
    return timed(times, [&] { benchmark::DoNotOptimize(distribution(engine)); });
}

// Any generator that two threads share costs that at least.
double drawTheirsLocked(std::size_t times) {
    static std::mutex mutex;
    static std::mt19937 engine(5489);
    std::uniform_real_distribution<double> distribution;
    return timed(times, [&] {
        const std::lock_guard lock(mutex);
        benchmark::DoNotOptimize(distribution(engine));
    });
}

// Measures the time that one of two threads takes.
Scenario::Loop inTwoThreads(double (*loop)(std::size_t)) {
    return [loop](std::size_t times) {
        double other = 0;
        std::thread thread([&] { other = loop(times); });
        const double own = loop(times);
        thread.join();
        return (own + other) / 2;
    };
}

}  // namespace

void addRandom(std::vector<Scenario>& scenarios) {
    scenarios.push_back({"random/vig", 1024, [] { return Scenario::Loop(drawOurs); }});
    scenarios.push_back({"random/std", 1024, [] { return Scenario::Loop(drawTheirs); }});
    scenarios.push_back({"random/vig, two threads", 1 << 16, [] { return inTwoThreads(drawOurs); }});
    scenarios.push_back({"random/std, two threads", 1 << 16, [] { return inTwoThreads(drawTheirsLocked); }});
}

}  // namespace bench
