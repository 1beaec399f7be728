#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tests/tools/fleet/ChangedText.h"
#include "tools/vig/fleet/DiffRunner.h"
#include "tools/vig/fleet/FleetDiffCommand.h"
#include "tools/vig/fleet/SummaryCommand.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using namespace support;
using testing::HasSubstr;

const std::string kTriggers = R"([{"name":"TriggerVelora"}])";

std::string trigger(const std::vector<std::string>& conditions) {
    return transition("start", "start", "ProcessMemoryHeartBeat", filters(conditions), kTriggers);
}

// The machine samples; where it waits, it may still go on by the next draw.
std::string sampling(const std::string& odds) {
    return config(7, {transition("start", "a", "EnteringState", filters({"double PseudoRandomDouble() < =0.5"})),
                      trigger({"double PseudoRandomDouble() < =" + odds}), transition("a", "start", "Test")});
}

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++found;
    }
    return found;
}

class FleetDiff : public testing::Test {
  protected:
    FleetDiff() {
        options.format.ofDevices = ReportFormat::Json;
        for (std::size_t i = 0; i < 40; ++i) {
            std::string records;
            for (std::size_t k = 0; k < i % 7 + 1; ++k) {
                records +=
                    "{\"event\":\"Test\"}\n"
                    R"({"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":)" +
                    std::to_string(k) + R"(,"vmSwapKB":1},"string":{"processName":"p"}})" + "\n";
            }
            options.devices.push_back(folder.write((i % 2 == 0 ? "\xFF" : "d") + std::to_string(i), records));
        }
    }

    ToolResult diff(const std::vector<std::string>& old, const std::vector<std::string>& now) {
        options.rules = folder.write("old.json", document(old));
        options.newRules = folder.write("new.json", document(now));
        return runVerb(fleetDiff, options);
    }

    const TemporaryFolder folder;
    FleetDiffOptions options;
};

TEST_F(FleetDiff, PartsMergedEqualTheWholeByteForByteWhateverTheNumberOfThreads) {
    const std::vector<std::string> old = {sampling("0.3"), config(8, {trigger({"integer vmRssKB > =4"})})};
    const std::vector<std::string> now = {sampling("0.4"), config(9, {trigger({"integer vmRssKB > =5"})})};
    const ToolResult whole = diff(old, now);
    EXPECT_EQ(whole.status, 1);
    options.threads = 4;
    EXPECT_EQ(diff(old, now).out, whole.out);
    options.format.ofDevices = ReportFormat::Text;
    const std::string all = diff(old, now).out;
    options.threads = 1;
    EXPECT_EQ(diff(old, now).out, all);
    options.format.ofDevices = ReportFormat::Json;
    SummaryOptions parts{{}, ReportFormat::Json};
    const std::vector<std::string> devices = std::exchange(options.devices, {});
    for (std::size_t i = 0; i < devices.size(); ++i) {
        options.devices.push_back(devices[i]);
        if (i % 9 == 0 || i + 1 == devices.size()) {
            parts.files.push_back(folder.write("part" + std::to_string(i), diff(old, now).out));
            options.devices.clear();
        }
    }
    std::ranges::reverse(parts.files);
    EXPECT_EQ(runVerb(summary, parts).out, whole.out);
}

TEST_F(FleetDiff, MachinesWithOneIdDrawTheSameNumbersWhateverElseDraws) {
    const std::string draw = "double PseudoRandomDouble() < =0.5";
    const std::string early = trigger({draw, "integer vmRssKB > =1"});
    const std::string late = trigger({"integer vmRssKB > =1", draw});
    const std::string seldom = trigger({draw, draw, draw});
    const std::string other = trigger({"double PseudoRandomDouble() >= =0.5", "integer vmRssKB > =1"});
    const std::string silent = config(1, {transition("start", "start", "Test", filters({draw}))});
    const std::pair<std::vector<std::string>, std::vector<std::string>> cases[] = {
        {{config(7, {early})}, {config(7, {late})}},
        {{config(7, {early})}, {silent, config(7, {late})}},
        {{config(7, {early}), config(7, {seldom})}, {config(7, {late}), silent, config(7, {seldom})}},
    };
    for (const auto& [old, now] : cases) {
        EXPECT_EQ(diff(old, now).status, 0) << joined(now);
    }
    EXPECT_EQ(diff({config(7, {early}), config(7, {seldom})}, {config(7, {seldom}), config(7, {late})}).status, 1);
    options.draws.numbers = {0.75, 0.25};
    EXPECT_THAT(diff({config(7, {seldom})}, {config(7, {trigger({draw})})}).out, HasSubstr(R"("old":0,"new":0)"));
    EXPECT_THAT(diff({config(7, {other})}, {config(7, {trigger({"double PseudoRandomDouble() > =0.3", draw})})}).out,
                HasSubstr(R"("triggers":{"old":81,"new":155})"));
}

TEST(PairDraws, EachDeviceMachineEventAndDrawHasANumberOfItsOwn) {
    const Draws draws;
    PairDraws numbers(draws);
    std::set<double> drawn;
    double sum = 0;
    const MachinePair pairs[] = {{7, 0, {}}, {7, 1, {}}, {8, 0, {}}};
    for (const char* const device : {"a", "b"}) {
        numbers.beginDevice(device);
        for (std::size_t round = 0; round < 2; ++round) {
            for (std::uint64_t event = 0; event < 20; ++event) {
                numbers.beginEvent(event);
                for (const MachinePair& pair : pairs) {
                    for (int k = 0; k < 5; ++k) {
                        const double number = numbers.next(pair);
                        EXPECT_TRUE(Draws::canBe(number));
                        sum += number;
                        drawn.insert(number);
                    }
                }
            }
        }
    }
    // The second round brings no other ones.
    EXPECT_EQ(drawn.size(), 600u);
    EXPECT_NEAR(sum / 1200, 0.5, 0.03);
}

TEST_F(FleetDiff, ExplanationIsOfWhatTheMachinesDid) {
    options.format.ofDevices = ReportFormat::Jsonl;
    const std::vector<std::string> lines = linesWith(diff({sampling("0.3")}, {sampling("0.6")}).out, R"({"type":"dev)");
    EXPECT_GT(lines.size(), 5u);
    for (const std::string& line : lines) {
        // An explanation names the action of a transition that fires.
        EXPECT_EQ(count(line, "trigger_name"), count(line, R"("actions":["TriggerVelora"])")) << line;
    }
    const std::string atStart = transition("start", "end", "EnteringState", "[]", kTriggers);
    const ToolResult started = diff({config(7, {})}, {config(7, {atStart})});
    EXPECT_EQ(count(started.out, R"("change":"logs","triggers":{"old":0,"new":0},"event":0,"time_ms":null)"), 40u);
    EXPECT_EQ(count(started.out, R"("event_type":"EnteringState","state":"start")"), 40u);
}

TEST_F(FleetDiff, LongExplanationIsCut) {
    options.format.ofDevices = ReportFormat::Text;
    options.devices = {folder.write("d", "{\"event\":\"Test\"}\n")};
    const std::string cycle = transition("a", "a", "EnteringState", "[]", kTriggers);
    const std::string text = diff({config(7, {})}, {config(7, {transition("start", "a", "Test"), cycle})}).out;
    EXPECT_THAT(text, HasSubstr("in event.\n         and 950 more lines\n           Test in state start\n"));
    EXPECT_THAT(text, HasSubstr("\n         and 2952 more lines\n\nfleet\n"));
}

TEST_F(FleetDiff, SummaryThatDoesNotFitIsRefusedWithItsPlace) {
    const std::vector<std::string> old = {config(7, {trigger({"integer vmRssKB > =4"})}), config(8, {})};
    const std::string good = diff(old, {config(7, {trigger({"integer vmRssKB > =2"})})}).out;
    const std::string kMost = "9007199254740992";
    const std::string another = ":2: error: it summarises a run of another rule document than <stdin>:1\n";
    const std::string from = ": expected an integer from ";
    const std::string cases[][3] = {
        {"'devices':40", "'devices':41", "error: changes: 1 devices fewer than there are"},
        {"'devices':40", "'devices':0", "error: events" + from + "0 to 0"},
        {"'newly':12", "'newly':41", "error: changes.newly" + from + "0 to 40"},
        {"'logs':0", "'logs':0,'rest':0", "error: changes: unknown key 'rest'"},
        {"'more':10,'less':0", "'less':10,'more':0",
         "error: examples: does not fit the rest, of which it follows: 0 of"},
        {"'triggers':{'old':15", "'triggers':{'old':16", "error: machines: fewer triggers than there are"},
        {"'triggers':{'old':15", "'triggers':{'old':14", "error: machines[0].triggers.old" + from + "0 to 14"},
        {"'event':8}", "'event':311}", "error: examples[0].event" + from + "0 to 310"},
        {"{'change':'newly'", "{'change':'more'", "error: examples[0].change: does not fit the triggers"},
        {"{'change':'newly'", "{'change':'none'", "error: examples[0].change: does not fit the triggers"},
        {"/d11'", "/d99'", "error: examples[1]: is not in order"},
        {"'id':7,", "", "error: machines[0]: 'id' is missing"},
        {"'new':null,", "", "error: machines[1]: 'new' is missing"},
        {"'machines':[", "'machines':[1,", "error: machines[0]: expected an object, got a number"},
        {"\n", "\n" + changed(good, "'new':'", "'new':'0"), another},
        {"\n", "\n" + changed(good, "'id':8", "'id':9"), another},
        {"\n", "\n" + changed(good, "'old':'configs[1]'", "'old':'configs[9]'"), another},
        {"\n", "\n" + changed(good, "'failed':0", "'failed':" + kMost) + changed(good, "'failed':0", "'failed':1"),
         ":3: error: failed: more than " + kMost + " with the summaries before\n"},
    };
    for (const auto& each : cases) {
        ToolResult result = runVerb(summary, SummaryOptions(), changed(good, each[0], each[1]));
        EXPECT_EQ(result.status, 2) << each[1];
        std::ranges::replace(result.err, '"', '\'');
        EXPECT_THAT(result.err, HasSubstr(each[2])) << good;
    }
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
