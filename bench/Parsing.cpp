#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <json/reader.h>
#include <json/value.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "bench/Process.h"
#include "bench/Rules.h"
#include "bench/Scenario.h"
#include "vig/VIGManager.h"

namespace bench {

namespace {

void read(const std::string& text, Json::Value& root) {
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    std::string errors;
    benchmark::DoNotOptimize(reader->parse(text.data(), text.data() + text.size(), &root, &errors));
}

// The heap that other scenarios leave behind is another one each time, and a document takes much of it.
Scenario inProcessOfItsOwn(const std::string& name, std::size_t times) {
    return {name, times, [name]() -> Scenario::Loop {
                return [name](std::size_t count) {
                    return std::stod(
                        outputOf(fmt::format("/proc/{}/exe --only 'own process/{}' {}", getpid(), name, count)));
                };
            }};
}

void add(std::vector<Scenario>& scenarios, const std::string& name, std::size_t times,
         const std::function<Scenario::Loop()>& prepare) {
    scenarios.push_back({"own process/" + name, times, prepare});
    scenarios.push_back(inProcessOfItsOwn(name, times));
}

// The first time, the heap comes from the system page by page; a service that lives long has it already.
double timedWarm(std::size_t times, const auto& body) {
    body();
    return timed(times, body);
}

}  // namespace

void addParsing(std::vector<Scenario>& scenarios) {
    for (const auto& [count, times] : {std::pair<std::size_t, std::size_t>(1, 200), {100, 5}, {20'000, 1}}) {
        const std::string name = fmt::format("document/{}", count);
        add(scenarios, name + "/vig", times, [count]() -> Scenario::Loop {
            return [text = documentOf(count)](std::size_t repeated) {
                const Brenta::OS::VIG::VIGManager manager;
                return timedWarm(repeated, [&] { benchmark::DoNotOptimize(manager.parseResponse(text)); });
            };
        });
        add(scenarios, name + "/jsoncpp", times, [count]() -> Scenario::Loop {
            return [text = documentOf(count)](std::size_t repeated) {
                return timedWarm(repeated, [&] {
                    Json::Value root;
                    read(text, root);
                });
            };
        });
        add(scenarios, name + "/jsoncpp, tree kept", times, [count]() -> Scenario::Loop {
            return [text = documentOf(count)](std::size_t repeated) {
                double total = 0;
                for (std::size_t i = 0; i <= repeated; ++i) {
                    Json::Value root;
                    const double once = timed(1, [&] { read(text, root); });
                    total += i == 0 ? 0 : once;
                }
                return total;
            };
        });
    }
}

}  // namespace bench
