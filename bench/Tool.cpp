#include <fmt/format.h>
#include <simdjson.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <random>
#include <string>

#include "bench/Process.h"
#include "bench/Scenario.h"
#include "tests/support/TemporaryFolder.h"

// `vig run` is compared with the parser that it reads with and with the filter that a person would write, `vig check`
// with itself on a smaller document.
namespace bench {

namespace {

// The folder is removed when the benchmark ends.
const std::filesystem::path& folder() {
    static const support::TemporaryFolder folder;
    return folder.path();
}

// Says which lines of a recording have the same bytes between their values.
enum class Layout { Same, Changing };

// Makes memory heartbeats of 200 processes; one in a thousand is over the budgets of the rules.
std::string recording(std::size_t records, Layout layout = Layout::Same) {
    const bool isSame = layout == Layout::Same;
    const std::filesystem::path path = folder() / fmt::format("{}.{}.jsonl", records, isSame ? "same" : "changing");
    if (std::filesystem::exists(path)) {
        return path;
    }
    std::mt19937 random(1);
    std::ofstream file(path);
    for (std::size_t i = 0; i < records; ++i) {
        const auto process = random() % 200;
        file << fmt::format(
            R"({{"event":"ProcessMemoryHeartBeat","time_ms":{},"int64":{{"pid{}":{},"vmRssKB":{},"vmSwapKB":{}}},)"
            R"("string":{{"processName":"com.example.app{}"}}}})"
            "\n",
            i, isSame ? "" : fmt::format("{:x}", i), 1000 + process,
            random() % 1000 == 0 ? 900'000 : random() % 500'000, random() % 4096, process);
    }
    return path;
}

// Records this machine for a moment, and repeats that.
std::string recordingOfThisMachine() {
    const std::filesystem::path path = folder() / "machine.jsonl";
    if (std::filesystem::exists(path)) {
        return path;
    }
    const std::string once = folder() / "once.jsonl";
    runProgram({VIG_TOOL, "watch", "--record", once, "--duration", "2s", "--interval", "100ms"});
    std::ofstream file(path);
    for (std::uintmax_t size = 0; size < 100'000'000; size += std::filesystem::file_size(once)) {
        file << std::ifstream(once).rdbuf();
    }
    return path;
}

std::string transition(const char* from, const char* to, const char* op, std::size_t limit, const char* action) {
    return fmt::format(R"({{"from_state":"{}","to_state":"{}","event":"ProcessMemoryHeartBeat","filters":[)"
                       R"({{"operator":"{}","value_type":"integer","operand1":{{"type":"envvar","value":"vmRssKB"}},)"
                       R"("operand2":{{"type":"constant","value":"{}"}}}}],"actions":[{}]}})",
                       from, to, op, limit, action);
}

constexpr std::array<std::size_t, 3> kLimits = {800'000, 801'000, 802'000};
constexpr std::size_t kOtherLimit = 850'000;  // lets the same records pass as each of them

// The document has three machines of five transitions: the third time that a process is over the limit is collected,
// unless one that has hardly any memory comes in between.
std::string rules(const std::array<std::size_t, 3>& limits) {
    const std::filesystem::path path = folder() / fmt::format("rules{}.json", limits[0]);
    std::string configs;
    for (std::size_t id = 0; id < limits.size(); ++id) {
        const std::size_t limit = limits[id];
        configs += (configs.empty() ? "" : ",") +
                   fmt::format(R"({{"id":{},"payload":{{"id":1,"data":{{"transitions":[)", id) +
                   transition("start", "once", ">", limit, "") + "," + transition("once", "twice", ">", limit, "") +
                   "," + transition("once", "start", "<", 100, "") + "," +
                   transition("twice", "start", ">", limit, R"({"name":"TriggerVelora"})") + "," +
                   transition("twice", "start", "<", 100, "") + "]}}}";
    }
    std::ofstream(path) << R"({"configs":[)" << configs << "]}";
    return path;
}

// The filter does the same as a program for jq, with the state of each machine under its limit.
constexpr const char* kFilter = R"jq(
def next($rss; $limit):
  if $rss > $limit then {"start": "once", "once": "twice", "twice": "start"}[.]
  elif $rss < 100 then "start"
  else . end;
foreach inputs as $e ({};
  .fired = []
  | if $e.event != "ProcessMemoryHeartBeat" then .
    else reduce ("800000", "801000", "802000") as $key (.;
      (.[$key] // "start") as $state | ($key | tonumber) as $limit | $e.int64.vmRssKB as $rss
      | (if $state == "twice" and $rss > $limit then .fired += [$limit] else . end)
      | .[$key] = ($state | next($rss; $limit)))
    end;
  .fired[] as $limit | {type: "trigger", config_id: $limit, process_name: $e.string.processName, metadata: $e.int64})
)jq";

void touch(simdjson::ondemand::value value, std::uint64_t& sum) {
    switch (value.type()) {
        case simdjson::ondemand::json_type::object:
            for (auto field : value.get_object()) {
                touch(field.value(), sum);
            }
            break;
        case simdjson::ondemand::json_type::string:
            sum += std::string_view(value.get_string()).size();
            break;
        case simdjson::ondemand::json_type::number:
            if (const simdjson::ondemand::number number = value.get_number(); number.is_double()) {
                sum += number.get_double() > 0 ? 1 : 0;
            } else {
                sum += number.is_uint64() ? number.get_uint64() : static_cast<std::uint64_t>(number.get_int64());
            }
            break;
        default:
            break;
    }
}

// Reads in pieces that stay in the cache.
std::uint64_t readAll(const std::string& path) {
    constexpr std::size_t kPiece = std::size_t{256} << 10;
    std::string buffer(kPiece + simdjson::SIMDJSON_PADDING, '\0');
    simdjson::ondemand::parser parser;
    std::ifstream file(path, std::ios::binary);
    std::uint64_t sum = 0;
    std::size_t kept = 0;
    while (file.read(buffer.data() + kept, static_cast<std::streamsize>(kPiece - kept)), file.gcount() > 0) {
        const std::size_t filled = kept + static_cast<std::size_t>(file.gcount());
        const std::size_t end = buffer.rfind('\n', filled - 1) + 1;
        simdjson::ondemand::document_stream stream = parser.iterate_many(buffer.data(), end, end);
        for (auto document : stream) {
            for (auto field : document.get_object()) {
                touch(field.value(), sum);
            }
        }
        kept = filled - end;
        std::copy_n(buffer.data() + end, kept, buffer.data());
    }
    return sum;
}

Scenario::Loop repeated(const std::vector<std::string>& command, int exitStatus = 0) {
    return [command, exitStatus](std::size_t times) {
        double total = 0;
        for (std::size_t i = 0; i < times; ++i) {
            total += runProgram(command, exitStatus);
        }
        return total;
    };
}

// Makes recordings of so many devices and runs the tool over them.
Scenario::Loop vigOverFleet(std::size_t devices, std::vector<std::string> command) {
    const std::string one = recording(1'000);
    command.insert(command.begin(), VIG_TOOL);
    command.insert(command.end(), {"--summary-only", "-j", "1"});
    for (std::size_t device = 0; device < devices; ++device) {
        command.push_back(folder() / fmt::format("device{}.jsonl", device));
        std::filesystem::copy_file(one, command.back(), std::filesystem::copy_options::skip_existing);
    }
    return repeated(command);
}

// The document has a machine of states with 40 transitions each, which lead on to the next state and back to others,
// and some of which trigger. Their filters are on few attributes, each with constants of its own; that of the last
// transition can be moved.
std::string manyTransitions(std::size_t count, std::size_t moved) {
    const std::filesystem::path path = folder() / fmt::format("{}.{}.json", count, moved);
    constexpr std::size_t kOfState = 40;
    const std::size_t states = (count + kOfState - 1) / kOfState;
    const auto filter = [](const char* op, const char* type, const char* attribute, const std::string& constant) {
        return fmt::format(R"({{"operator":"{}","value_type":"{}","operand1":{{"type":"envvar","value":"{}"}},)"
                           R"("operand2":{{"type":"constant","value":"{}"}}}})",
                           op, type, attribute, constant);
    };
    const auto nameOf = [](std::size_t state) { return state == 0 ? "start" : fmt::format("s{}", state); };
    std::ofstream file(path);
    file << R"({"configs":[{"id":1,"payload":{"id":1,"data":{"transitions":[)";
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t state = i / kOfState;
        const std::size_t place = i % kOfState;
        const std::size_t target = place % 3 != 0 ? state + 1 : state * 31 + place * 17;
        file << (i > 0 ? "," : "")
             << fmt::format(
                    R"({{"from_state":"{}","to_state":"{}","event":"ProcessMemoryHeartBeat","filters":[{},{}{}],)"
                    R"("actions":[{}]}})",
                    nameOf(state), nameOf(target % states),
                    filter("==", "string", "processName", fmt::format("app{}", (state * 7 + place) % 97)),
                    filter(">", "integer", "vmRssKB",
                           std::to_string(100'000 + 1000 * place + state + (i + 1 == count ? moved : 0))),
                    place % 2 == 0
                        ? ""
                        : "," + filter("<", "integer", "vmSwapKB", std::to_string(5000 + 10 * place + state)),
                    place % 20 == 0 ? R"({"name":"TriggerVelora"})" : "");
    }
    file << "]}}}]}";
    return path;
}

Scenario::Loop vig(const std::vector<std::string>& arguments, int exitStatus = 0) {
    std::vector<std::string> command = {VIG_TOOL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return repeated(command, exitStatus);
}

}  // namespace

void addTool(std::vector<Scenario>& scenarios) {
    const auto addReplay = [&](const std::string& name, const std::function<std::string()>& events) {
        scenarios.push_back({name + "/vig", 1, [events] {
                                 return vig({"run", rules(kLimits), events(), "--format", "jsonl"});
                             }});
        scenarios.push_back({name + "/simdjson", 1, [events]() -> Scenario::Loop {
                                 return [path = events()](std::size_t times) {
                                     return timed(times, [&] {
                                         if (readAll(path) == 0) {
                                             std::abort();
                                         }
                                     });
                                 };
                             }});
    };
    addReplay("run/1000000", [] { return recording(1'000'000); });
    addReplay("run/machine", recordingOfThisMachine);
    addReplay("run/changing", [] { return recording(1'000'000, Layout::Changing); });
    scenarios.push_back({"run/no rules/vig", 1, [] {
                             const std::string path = folder() / "none.json";
                             std::ofstream(path) << R"({"configs":[]})";
                             return vig({"run", path, recording(1'000'000), "--format", "jsonl"});
                         }});
    scenarios.push_back({"run/100000/vig", 1, [] {
                             return vig({"run", rules(kLimits), recording(100'000), "--format", "jsonl"});
                         }});
    scenarios.push_back({"run/100000/jq", 1, []() -> Scenario::Loop {
                             return [events = recording(100'000)](std::size_t times) {
                                 double total = 0;
                                 for (std::size_t i = 0; i < times; ++i) {
                                     total += runProgram({"jq", "-n", "-c", kFilter, events});
                                 }
                                 return total;
                             };
                         }});
    constexpr std::size_t kDevices = 1'000;
    scenarios.push_back({"fleet/run", 1, [] { return vigOverFleet(kDevices, {"run", rules(kLimits)}); }});
    scenarios.push_back(
        {"fleet/diff", 1, [] {
             return vigOverFleet(kDevices, {"diff", rules(kLimits), rules({kOtherLimit, kOtherLimit, kOtherLimit})});
         }});
    constexpr int kDiffers = 1;
    constexpr int kNotAllDecided = 1;  // what another context would change is beyond the steps that are spent on it
    for (const std::size_t transitions : {2'500, 5'000, 10'000, 20'000}) {
        scenarios.push_back({fmt::format("check/{}", transitions), 1, [transitions] {
                                 return vig({"check", manyTransitions(transitions, 0)});
                             }});
        scenarios.push_back(
            {fmt::format("diff/{}", transitions), 1, [transitions] {
                 return vig({"diff", manyTransitions(transitions, 0), manyTransitions(transitions, 1)}, kDiffers);
             }});
        scenarios.push_back({fmt::format("prove/{}", transitions), 1, [transitions] {
                                 return vig({"prove", manyTransitions(transitions, 0)}, kNotAllDecided);
                             }});
    }
}

}  // namespace bench
