// Measures the library and the tool against the same work done otherwise. Without arguments: all of it, as a table of
// ratios. `--matching REGEX`: only the rows of those scenarios.
// `--smoke`: each scenario once. `--only NAME TIMES`: one scenario, for a profiler.
#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <time.h>

#include <cstdlib>
#include <iostream>
#include <span>
#include <string>
#include <vector>

#include "bench/Process.h"
#include "bench/Report.h"
#include "bench/Scenario.h"

namespace bench {

double threadTime() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

namespace {

std::vector<Scenario> allScenarios() {
    std::vector<Scenario> scenarios;
    addEngine(scenarios);
    addScripts(scenarios);
    addParsing(scenarios);
    addActions(scenarios);
    addRandom(scenarios);
    addTool(scenarios);
    for (const auto& [name, program] :
         {std::pair("start/with", VIG_START_WITH), {"start/without", VIG_START_WITHOUT}}) {
        scenarios.push_back({name, 20, [program] {
                                 return [program](std::size_t times) {
                                     double total = 0;
                                     for (std::size_t i = 0; i < times; ++i) {
                                         total += runProgram({program});
                                     }
                                     return total;
                                 };
                             }});
    }
    return scenarios;
}

// The processor time that the threads of a scenario measure themselves is what counts.
void measure(benchmark::State& state, const Scenario& scenario) {
    const Scenario::Loop loop = scenario.prepare();
    for (auto _ : state) {
        state.SetIterationTime(loop(scenario.batch) / static_cast<double>(scenario.batch));
    }
}

class Collector final : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context& /*context*/) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                times[run.run_name.function_name].push_back(run.real_accumulated_time /
                                                            static_cast<double>(run.iterations));
                std::cerr << "." << std::flush;
            }
        }
    }

    Times times;
};

int runOnly(const std::vector<Scenario>& scenarios, const std::string& name, std::size_t times) {
    for (const Scenario& scenario : scenarios) {
        if (scenario.name == name) {
            std::cout << scenario.prepare()(times) << "\n";
            return 0;
        }
    }
    std::cerr << "no such scenario: " << name << "\n";
    return 2;
}

int runSmoke(const std::vector<Scenario>& scenarios) {
    for (const Scenario& scenario : scenarios) {
        std::cout << scenario.name << std::endl;
        scenario.prepare()(1);
    }
    std::cout << figures() << instructionsOf("filters/1 integer/vig", 1) << " instructions\n";
    return 0;
}

int runMatching(const std::vector<Scenario>& scenarios, const std::string& pattern) {
    std::vector<std::string> flags = {"vig_bench", "--benchmark_enable_random_interleaving=true",
                                      "--benchmark_filter=" + pattern};
    std::vector<char*> arguments;
    for (std::string& flag : flags) {
        arguments.push_back(flag.data());
    }
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    for (const Scenario& scenario : scenarios) {
        if (scenario.name.starts_with("own process/")) {
            continue;  // measured by the scenario that starts the process
        }
        const bool isLong =
            scenario.batch == 1 || scenario.name.starts_with("start") || scenario.name.starts_with("document");
        auto* const registered = benchmark::RegisterBenchmark(
            scenario.name.c_str(), [&scenario](benchmark::State& state) { measure(state, scenario); });
        registered->UseManualTime()->Repetitions(isLong ? 9 : 25);
        if (isLong) {
            registered->Iterations(1);
        } else {
            registered->MinTime(0.02 / static_cast<double>(scenario.batch));
        }
    }
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    std::cerr << "\n";
    std::cout << "Measured on " << machineDescription() << ".\n\n" << tableOf(collector.times);
    return 0;
}

}  // namespace

}  // namespace bench

int main(int count, char** arguments) {
    const auto scenarios = bench::allScenarios();
    const std::span<char*> given(arguments, static_cast<std::size_t>(count));
    if (count == 4 && given[1] == std::string("--only")) {
        return bench::runOnly(scenarios, given[2], std::strtoull(given[3], nullptr, 10));
    }
    if (count == 2 && given[1] == std::string("--smoke")) {
        return bench::runSmoke(scenarios);
    }
    if (count == 3 && given[1] == std::string("--matching")) {
        return bench::runMatching(scenarios, given[2]);
    }
    return bench::runMatching(scenarios, ".");
}
