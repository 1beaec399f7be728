#include <fmt/format.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/PeakMemory.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/PseudoTerminal.h"
#include "tests/tools/ToolRun.h"
#include "tests/tools/fleet/ChangedText.h"
#include "tools/vig/fleet/DeviceRunner.h"
#include "tools/vig/fleet/Fleet.h"
#include "tools/vig/fleet/FleetCommand.h"
#include "tools/vig/fleet/FleetSummary.h"
#include "tools/vig/fleet/SummaryCommand.h"
#include "tools/vig/run/Replay.h"
#include "tools/vig/run/RunCommand.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using namespace support;
using testing::HasSubstr;

// A device logs and triggers on a share of its events, and moves on what the context has.
const std::string kTrigger = R"([{"name":"TriggerVelora"}])";
const std::string kRules = document(
    {config(7, {transition("start", "start", "ProcessMemoryHeartBeat", filters({"double PseudoRandomDouble() < =0.3"}),
                           kTrigger),
                transition("start", "end", "Test", filters({"integer limit == =5"}))}),
     config(8, {transition("start", "start", "Timeout", "[]", kTrigger)}),
     config(9, {transition("start", "drawn", "EnteringState", filters({"double PseudoRandomDouble() < =0.1"}))})});

std::string records(std::size_t count, bool withTest) {
    const auto attributes = [](std::size_t swap) {
        return R"("int64":{"vmRssKB":1,"vmSwapKB":)" + std::to_string(swap) + R"(},"string":{"processName":"p"}})" +
               "\n";
    };
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += R"({"event":"ProcessMemoryHeartBeat",)" + attributes(i);
    }
    return text + (withTest ? "{\"event\":\"Test\"}\n" : R"({"event":"Timeout","timeout_id":1,)" + attributes(0));
}

std::string triggering(int times) {
    return times == 0 ? "" : records(0, false) + triggering(times - 1);
}

class Fleet : public testing::Test {
  protected:
    Fleet() {
        options.rules = folder.write("rules.json", kRules);
        options.contextFile = folder.write("context.jsonl", R"({"event":"Test","int64":{"limit":5}})");
        options.format = ReportFormat::Jsonl;
        // The second one has more to say than may wait for its turn, and so keeps the others waiting.
        for (std::size_t i = 0; i < 90; ++i) {
            const std::size_t count = i == 1 ? 8000 : i % 7 * 10;
            options.devices.push_back(folder.write("d" + std::to_string(i), records(count, i % 2 == 0)));
        }
    }

    ToolResult run(unsigned threads) {
        options.threads = threads;
        return runVerb(fleet, options);
    }

    const TemporaryFolder folder;
    FleetOptions options;
};

TEST_F(Fleet, OutputIsThatOfTheDevicesAloneInTheirOrderWhateverTheNumberOfThreads) {
    const ToolResult one = run(1);
    EXPECT_EQ(one.status, 0);
    std::vector<std::string> expected;
    for (const std::string& device : options.devices) {
        RunOptions alone;
        static_cast<RuleOptions&>(alone) = options;
        alone.events = device;
        alone.draws.seed = deviceSeed(options.draws.seed, device);
        for (std::string& line : linesWith(runVerb(Tool::run, alone).out, "")) {
            // The delivery of the document is told once.
            if (!line.starts_with(R"({"type":"log","event":0)") || expected.empty()) {
                line.insert(line.size() - 1, expected.empty() ? "" : R"(,"device":")" + device + "\"");
                expected.push_back(std::move(line));
            }
        }
    }
    std::vector<std::string> lines = linesWith(one.out, "");
    EXPECT_THAT(lines.back(), HasSubstr(R"({"type":"fleet","document":")"));
    lines.pop_back();
    EXPECT_TRUE(lines == expected);
    for (const unsigned threads : {2u, 4u}) {
        for (const ReportFormat format : {ReportFormat::Jsonl, ReportFormat::Json}) {
            options.format = format;
            const ToolResult several = run(threads);
            EXPECT_EQ(several.status, 0);
            EXPECT_TRUE(several.out == run(1).out) << threads;
        }
    }
}

std::string endOf(const std::string& device) {
    return R"({"device":")" + device + R"(","ended":true})" + "\n";
}

TEST_F(Fleet, StreamThatNamesItsDevicesGivesWhatAFileOfEachDoes) {
    options.devices.resize(40);
    std::string parts[2];
    std::vector<std::vector<std::string>> records;
    for (const std::string& device : options.devices) {
        records.push_back(linesWith(support::textOf(device), ""));
    }
    // Some are told to end, while others are still to come.
    for (std::size_t line = 0; line <= 8000; ++line) {
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (line < records[i].size()) {
                parts[i % 2] += R"({"device":")" + options.devices[i] + "\"," + records[i][line].substr(1) + "\n";
            } else if (line == records[i].size() && i % 3 == 0) {
                parts[i % 2] += endOf(options.devices[i]);
            }
        }
    }
    // The lines of a device come in the order of its events.
    const auto byDevice = [](const std::string& out) {
        std::map<std::string, std::vector<std::string>> lines;
        for (const std::string& line : linesWith(out, "")) {
            const std::size_t key = line.rfind("\"device\":");
            lines[key == line.npos ? "" : line.substr(key)].push_back(line);
        }
        return lines;
    };
    for (const ReportFormat format : {ReportFormat::Json, ReportFormat::Jsonl}) {
        options.format = format;
        const std::string expected = run(2).out;
        FleetOptions streams = options;
        streams.byDevice = true;
        streams.devices = {folder.write("both", parts[0] + parts[1])};
        const ToolResult one = runVerb(fleet, streams);
        streams.devices = {folder.write("even", parts[0]), folder.write("odd", parts[1])};
        const ToolResult two = runVerb(fleet, streams);
        EXPECT_EQ(one.err + two.err, "");
        if (format == ReportFormat::Json) {
            EXPECT_EQ(one.out, expected);
            EXPECT_EQ(two.out, expected);
        } else {
            EXPECT_TRUE(byDevice(one.out) == byDevice(expected));
            EXPECT_TRUE(byDevice(two.out) == byDevice(expected));
        }
    }
}

TEST_F(Fleet, ProgressIsNotMixedWithWhatDevicesDo) {
    const PseudoTerminal terminal;
    const MemoryFile file;
    const Console both{STDIN_FILENO, terminal.descriptor(), terminal.descriptor()};
    const Console errors{STDIN_FILENO, file.descriptor, terminal.descriptor()};
    for (const ReportFormat told : {ReportFormat::Text, ReportFormat::Jsonl}) {
        EXPECT_EQ(terminalFor(told, both), -1);
        EXPECT_EQ(terminalFor(told, errors), terminal.descriptor());
    }
    for (const ReportFormat summaryAlone : {ReportFormat::Json, ReportFormat::None}) {
        EXPECT_EQ(terminalFor(summaryAlone, both), terminal.descriptor());
    }
    Progress::Clock::time_point time;
    Progress progress(terminal.descriptor(), {2, 0}, [&time] { return time; });
    options.devices = {"it failed", ""};
    Output output(file.descriptor);
    const Interruption interruption;
    Tool::Fleet(options.devices, errors, interruption, output, progress).run(1, [&] {
        return [&](const std::string& device, Output& /*text*/) {
            time += std::chrono::seconds(1);
            progress.addDevice();
            return Tool::Fleet::Ended{device, [] {}};
        };
    });
    const std::string clear = "\r\x1b[K";
    EXPECT_EQ(terminal.shown(), clear + "1 of 2 devices, 0 events, 0 a second" + clear + "it failed\r\n" + clear +
                                    "2 of 2 devices, 0 events, 0 a second" + clear);
    const std::vector<std::string> three = {folder.write("three", "{}\n"), "missing"};
    EXPECT_EQ(sizeOfEvents(three, both), 3U);
    EXPECT_EQ(sizeOfEvents({three[0], folder.path().string()}, both), 0U);
}

TEST_F(Fleet, DeviceThatIsAliveTakesLittleMemoryAndOneThatHasEndedNone) {
    if (support::kHasSanitizer) {
        GTEST_SKIP() << "the sanitizer takes memory of its own";
    }
    constexpr std::size_t kDevices = 20'000;
    std::string alive;
    std::string ended;
    for (std::size_t i = 0; i < kDevices; ++i) {
        alive += fmt::format(R"({{"device":"{}","event":"Test"}})"
                             "\n",
                             i);
        ended += endOf(std::to_string(i));
    }
    options.byDevice = true;
    options.format = ReportFormat::Json;
    const auto memoryFor = [&](const std::string& stream) {
        options.devices = {folder.write("stream", stream)};
        return support::peakMemory([&] { runVerb(fleet, options); });
    };
    const std::size_t memoryForOne = memoryFor(endOf("a"));
    EXPECT_LT(memoryFor(ended), memoryForOne + kDevices * 400);
    // Each has three machines, and has drawn.
    EXPECT_LT(memoryFor(alive), memoryForOne + kDevices * (3 * 2000 + 6000));
}

TEST(DeviceSeed, IsAFixedMixOfTheSeedAndTheName) {
    // The hashes are published test vectors of FNV-1a: 0xCBF29CE484222325, 0xAF63DC4C8601EC8C and 0x85944171F73967E8.
    EXPECT_EQ(deviceSeed(0, ""), 0xCBF29CE4 ^ 0x84222325);
    EXPECT_EQ(deviceSeed(7, "a"), 0xAF63DC4C ^ 0x8601EC8C ^ 7);
    EXPECT_EQ(deviceSeed(5489, "foobar"), 0x85944171 ^ 0xF73967E8 ^ 5489);
}

TEST_F(Fleet, MergedPartsEqualTheWholeByteForByteWhateverTheNames) {
    options.format = ReportFormat::Json;
    // Read again, the first two have one name, and another place among the others.
    options.devices.push_back(folder.write("\xFE", triggering(100) + records(0, true)));
    for (const char* const name : {"\xFF", "\xF0\x90\x80\x80", "\xD8\x9C\x1B[2J\n\"\\"}) {
        options.devices.push_back(folder.write(name, triggering(100)));
    }
    const std::string whole = run(2).out;
    SummaryOptions parts;
    parts.files.clear();
    parts.format = ReportFormat::Json;
    const std::vector<std::string> all = std::exchange(options.devices, {});
    for (std::size_t i = 0; i < all.size(); ++i) {
        options.devices.push_back(all[i]);
        if (i % 30 == 29 || i >= 90) {
            parts.files.push_back(folder.write("part" + std::to_string(i), run(1).out));
            options.devices.clear();
        }
    }
    const ToolResult merged = runVerb(summary, parts);
    EXPECT_EQ(merged.err, "");
    EXPECT_EQ(merged.out, whole);
    parts.files = {"-"};
    EXPECT_EQ(runVerb(summary, parts, "\n \r\n" + whole + "\n").out, whole);
}

TEST_F(Fleet, InterruptionEndsWithTheSummaryOfWhatWasDone) {
    options.format = ReportFormat::Json;
    const std::string test = R"("event":"Test"})"
                             "\n";
    const struct {
        bool byDevice;
        std::vector<std::string> devices;
        std::string records;
        std::string summary;
    } cases[] = {
        {false, {options.devices[0], "-", options.devices[2]}, "{" + test, R"("devices":2,"failed":0,"unfinished":2,)"},
        {true, {"-"}, R"({"device":"a",)" + test, R"("devices":1,"failed":0,"unfinished":1,)"},
        {true, {"-"}, endOf("c"), R"("devices":1,"failed":0,"unfinished":1,)"},
    };
    for (const auto& [byDevice, devices, records, summary] : cases) {
        options.byDevice = byDevice;
        options.devices = devices;
        const MemoryFile out;
        Interruption interruption;
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        ASSERT_EQ(write(ends[1], records.data(), records.size()), std::ssize(records));
        {
            // Once that record is taken, no more come.
            const std::jthread user = support::interruptOnceRead(ends[0], interruption);
            EXPECT_EQ(fleet(options, {ends[0], out.descriptor, STDERR_FILENO}, interruption), 130);
        }
        EXPECT_THAT(out.content(), HasSubstr(summary));
        close(ends[0]);
        close(ends[1]);
    }
}

TEST_F(Fleet, MergeBeyondTheLargestNumberIsRefusedWithItsPlace) {
    options.format = ReportFormat::Json;
    options.devices = {folder.write("d", "")};
    const std::string none = run(1).out;
    const std::string most = changed(none, "'events':0", "'events':9007199254740992");
    EXPECT_THAT(runVerb(summary, SummaryOptions(), none + most + none).out, HasSubstr(" 9007199254740992\n"));
    const std::string broken = changed(none, "'failed':0,'unfinished':0", "'failed':1,'unfinished':2");
    EXPECT_THAT(runVerb(summary, SummaryOptions(), broken + broken).out, HasSubstr("  failed    2\n  unfinished 4\n"));
    const ToolResult result = runVerb(summary, SummaryOptions(), most + "\n" + most);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "<stdin>:3: error: events: more than 9007199254740992 with the summaries before\n");
}

TEST(FleetSummary, NumberThatIsTooLargeIsNamed) {
    const std::pair<std::string, void (*)(FleetSummary&, std::uint64_t)> cases[] = {
        {"failed", [](auto& summary, std::uint64_t number) { summary.failed = number; }},
        {"unfinished", [](auto& summary, std::uint64_t number) { summary.unfinished = number; }},
        {"devices", [](auto& summary, std::uint64_t number) { summary.devicesByTriggers[0] = number; }},
        {"events", [](auto& summary, std::uint64_t number) { summary.events = number; }},
        {"triggers.total", [](auto& summary, std::uint64_t number) { summary.devicesByTriggers[number] = 1; }},
        {"configs[1].fired", [](auto& summary, std::uint64_t number) { summary.configs[1].count.fired = number; }},
    };
    for (const auto& [path, set] : cases) {
        FleetSummary summary;
        summary.configs.resize(2);
        set(summary, FleetSummary::MOST);
        EXPECT_EQ(summary.tooLarge(), "");
        summary.devicesByTriggers.clear();
        set(summary, FleetSummary::MOST + 1);
        EXPECT_EQ(summary.tooLarge(), path);
    }
}

TEST_F(Fleet, SummaryThatDoesNotFitIsRefusedWithItsPlace) {
    options.format = ReportFormat::Json;
    const std::string often = triggering(12);
    options.devices = {folder.write("x", often), folder.write("y", often), folder.write("z", records(0, true))};
    const std::string good = run(1).out;
    EXPECT_EQ(runVerb(summary, SummaryOptions(), "\xEF\xBB\xBF" + good).err, "");
    const std::string leastId = changed(good, "'id':7", "'id':-9223372036854775808");
    EXPECT_THAT(runVerb(summary, SummaryOptions(), leastId).out, HasSubstr("configs[0] (id -9223372036854775808)\n"));
    const std::string kMost = "9007199254740992";
    // So many firings wrap to none.
    const std::string most = "{'path':'','from':'','to':'','event':'','devices':1,'fired':" + kMost + "}";
    const std::string wrapped = "{'path':'c','id':1,'devices':4,'fired':0,'transitions':[" +
                                joined(std::vector<std::string>(2048, most)) + "]},";
    const std::string anotherRun = ":2: error: it summarises a run of another rule document than <stdin>:1\n";
    const std::string follows = ": does not fit the rest, of which it follows: ";
    const std::string from = ": expected an integer from ";
    const std::string cases[][3] = {
        {"'p99':12", "'p99':3", ":1:123: error: triggers.p99" + follows + "12"},
        {"'events':25", "'events':11", "storms.worst[0].events" + from + "0 to 11"},
        {"{'triggers':12,", "{'triggers':0,", "triggers.by_count[1].triggers" + from + "1 to "},
        {"{'triggers':0,'devices':1", "{'triggers':0,'devices':0", "by_count[0].devices" + from + "1"},
        {"'storms':{'devices':2", "'storms':{'devices':3", "storms.devices" + from + "0 to 2"},
        {"'storms':{'devices':2", "'storms':{'devices':1", "storms.worst" + follows + "1"},
        {"/x','triggers':12", "/x','triggers':9", "storms.worst[0]: is no storm"},
        {"/x','triggers':12", "/x','triggers':13", "worst[0].triggers: triggers.by_count has fewer devices"},
        {"/x','triggers':12", "/z','triggers':12", "storms.worst[1]: expected the most triggers first, then the names"},
        {"'id':7,'devices':1", "'id':7,'devices':2", "configs[0].devices" + from + "1 to 1"},
        {"'id':8,'devices':2,'fired':24", "'id':8,'devices':2,'fired':23", "configs[1].fired" + follows + "24"},
        {"'devices':2,'fired':24}", "'devices':4,'fired':24}", "configs[1].transitions[0].devices" + from + "0 to 3"},
        {"'devices':2,'fired':24}", "'devices':2,'fired':1}", "configs[1].transitions[0].fired" + from + "2 to "},
        {"'total':", "'extra':0,'total':", "triggers: unknown key 'extra'"},
        {"'failed':0", "'failed':-1", ":1:53: error: failed" + from + "0 to 9007199254740992"},
        {"'failed':0", "'extra':0", ":1:52: error: unknown key 'extra'"},
        {"\n", "x\n", "error: "},
        {"\n", "\n\n\xEF\xBB\xBF" + good, ":3:1: error: a byte order mark"},
        {"{'document'", "\xEF\xBB\xBF\xEF\xBB\xBF{'document'", ":1:1: error: a byte order mark"},
        {"'failed':0", "'" + std::string(1000, 'k') + "':0", std::string(60, 'k') + "…'\n"},
        {"'document':", "'document':1,'document':", ":1:15: error: Duplicate key: 'document'"},
        {"'devices':3,", "'devices':4,", ":1:42: error: devices" + follows + "3"},
        {"'total':24", "'total':25", "triggers.total" + follows + "24"},
        {"'median':12", "'median':0", "triggers.median" + follows + "12"},
        {"'most':12", "'most':13", "triggers.most" + follows + "12"},
        {"{'triggers':0,'devices':1", "{'triggers':0,'devices':" + kMost, "by_count[1].devices" + from + "1 to 0"},
        {"{'triggers':0,'devices':1", "{'triggers':1,'devices':9007199254740991",
         "by_count[1].devices" + from + "1 to 0"},
        {"{'triggers':12,'devices':2", "{'triggers':12,'devices':" + kMost,
         "by_count[1].devices" + from + "1 to 750599937895082"},
        {"{'triggers':12,'devices':2", "{'triggers':12,'devices':1},{'triggers':13,'devices':1",
         "worst[1].triggers: triggers.by_count has fewer devices"},
        {"'id':7,", "", "configs[0]: 'id' is missing"},
        {"'devices':0,'fired':0}", "'devices':0,'fired':1}", "configs[0].transitions[0].fired" + from + "0 to 0"},
        {"'configs':[", "'configs':[" + wrapped, "configs[0].devices" + from + "1 to 3"},
        {"'configs':[", "'configs':[" + wrapped, "configs[0].fired" + follows},
        {"\n", "\n" + changed(good, "'document':'", "'document':'0"), anotherRun},
        {"\n", "\n" + changed(good, "'id':7", "'id':9"), anotherRun},
        {"\n", "\n" + changed(good, "configs[0]", "configs[9]"), anotherRun},
        {"\n", "\n" + changed(good, "'from':'start", "'from':'"), anotherRun},
        {"\n", "\n" + changed(good, "'to':'start", "'to':'"), anotherRun},
        {good, "", "there is no summary to merge"},
    };
    for (const auto& each : cases) {
        ToolResult result = runVerb(summary, SummaryOptions(), changed(good, each[0], each[1]));
        EXPECT_EQ(result.status, 2) << each[1];
        std::ranges::replace(result.err, '"', '\'');
        EXPECT_THAT(result.err, HasSubstr(each[2]));
    }
    options.devices = {folder.path("none")};
    EXPECT_THAT(runVerb(summary, SummaryOptions(), changed(run(1).out, "'events':0", "'events':1")).err,
                HasSubstr(": events: expected an integer from 0 to 0"));
}

TEST(FleetSummary, PercentilesAreNumbersThatDevicesHave) {
    using Numbers = std::vector<std::uint64_t>;
    const std::pair<std::map<std::uint64_t, std::uint64_t>, Numbers> cases[] = {
        {{}, {0, 0, 0}},
        {{{4, 1}}, {4, 4, 4}},
        {{{1, 1}, {2, 1}}, {1, 2, 2}},
        {{{1, 1}, {2, 1}, {9, 1}}, {2, 9, 9}},
        {{{0, 50}, {5, 1}}, {0, 5, 5}},
        {{{0, 99}, {5, 1}}, {0, 0, 5}},
        {{{0, 98}, {5, 2}}, {0, 5, 5}},
        {{{0, 198}, {5, 1}, {7, 1}}, {0, 0, 7}},
        {{{0, std::uint64_t{1} << 60}, {1, 1}}, {0, 0, 1}},
    };
    for (const auto& [devicesByTriggers, expected] : cases) {
        FleetSummary summary;
        summary.devicesByTriggers = devicesByTriggers;
        EXPECT_EQ((Numbers{summary.percentile(50), summary.percentile(99), summary.percentile(100)}), expected);
    }
}

TEST(FleetSummary, StormIsManyTriggersForFewEventsAndTheWorstComeFirst) {
    FleetSummary summary;
    for (const auto& [device, triggers, events] : {std::tuple("few", 9, 9),
                                                   {"thin", 10, 1000},
                                                   {"b", 10, 999},
                                                   {"a", 10, 10},
                                                   {"c", 30, 40},
                                                   {"d", 12, 40},
                                                   {"e", 11, 40},
                                                   {"f", 5000, 9000}}) {
        summary.add({device, true, true, static_cast<std::uint64_t>(events), static_cast<std::uint64_t>(triggers)});
    }
    EXPECT_EQ(summary.stormyDevices, 6u);
    std::string worst;
    for (const auto& each : summary.worstStorms) {
        worst += each.device;
    }
    EXPECT_EQ(worst, "fcdea");
}

TEST(FleetSummary, FailedAndUnfinishedDevicesAreCountedApart) {
    FleetSummary summary;
    summary.add({"absent", false, false, 0, 0, {}, "problem"});
    summary.add({"broken", true, false, 1, 0, {}, "problem"});
    summary.add({"interrupted", true, false, 1});
    summary.add({"done", true, true, 1});
    EXPECT_EQ(std::tuple(summary.failed, summary.unfinished, summary.devices(), summary.events),
              std::tuple(2u, 1u, 3u, 3u));
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
