#include "tools/vig/watch/SystemSampler.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tests/tools/events/Reading.h"
#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/events/EventRecord.h"

namespace Brenta::OS::VIG::Tool {

namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

// A made-up machine, sampled once a second on a clock of its own.
class SystemSamplerTest : public testing::Test {
  protected:
    void write(const std::string& path, const std::string& text) {
        fs::create_directories(machine.path(path).parent_path());
        machine.write(path, text);
    }

    void addProcess(int pid, const std::string& name, long ticks, int startTime = 5,
                    const std::string& use = "VmRSS:\t     100 kB\nVmSwap:\t       0 kB\n") {
        const std::string folder = fmt::format("proc/{}", pid);
        write(folder + "/status", fmt::format("Name:\t{}\nPid:\t{}\n{}", name, pid, use));
        write(folder + "/stat",
              fmt::format("{} ({}) S 1 1 1 0 -1 0 0 0 0 0 {} 0 0 0 20 0 1 0 {} 1 1\n", pid, name, ticks, startTime));
    }

    // The events as records, without what is the same in all of them.
    Strings sample() {
        std::vector<EventRecord> records;
        sampler.sample(1200, [&](const EventRecord& record) { records.push_back(record); });
        now += std::chrono::seconds(1);
        Strings lines = support::linesWith(support::written(records), "");
        const std::string time = ",\"time_ms\":1200";
        std::ranges::for_each(lines, [&](auto& line) { line = line.erase(line.find(time), time.size()).substr(10); });
        return lines;
    }

    static std::string memory(int pid, const std::string& name) {
        constexpr auto kForm =
            R"(ProcessMemoryHeartBeat","int64":{{"pid":{},"vmRssKB":100,"vmSwapKB":0}},"string":{{"processName":"{}"}}}})";
        return fmt::format(kForm, pid, name);
    }

    static std::string cpu(int pid, const std::string& name, const std::string& percent) {
        constexpr auto kForm =
            R"(ProcessCpuHeartBeat","int64":{{"pid":{}}},"double":{{"cpuAvgUtilization":{}}},"string":{{"processName":"{}"}}}})";
        return fmt::format(kForm, pid, percent, name);
    }

    const support::TemporaryFolder machine;
    const long second = sysconf(_SC_CLK_TCK);
    std::chrono::nanoseconds now{0};
    Strings notes;
    SystemSampler sampler{machine.path("proc"), machine.path("sys"), [this] { return now; },
                          [this](std::string_view note) { notes.emplace_back(note); }};
};

TEST_F(SystemSamplerTest, SystemMemoryComesBeforeZramDevicesAndProcessesByPid) {
    write("proc/meminfo", "MemTotal:       4000 kB\nMemFree:  3000 kB\nHugePages_Total:  7\nCached: 20 kB\n");
    write("proc/pressure/memory",
          "some avg10=1.50 avg60=0.25 avg300=0.00 total=12\nfull avg10=0.50 avg60=0.00 avg300=0.00 total=1\n");
    write("sys/block/zram10/mm_stat", "1 2 3 4 5 6 7 8 9 10\n");
    write("sys/block/zram2/mm_stat", " 8192   74 12288  0 16384  0  0\n");
    write("sys/block/sda/mm_stat", "1 2 3\n");
    addProcess(12, "late", 0);
    addProcess(9, "early", 0, 5, "VmRSS:\t     100 kB\n");
    addProcess(10, "kthread", 0, 5, "Kthread:\t1\n");
    write("proc/self/status", "Name:\tself\nVmRSS:\t1 kB\n");
    EXPECT_EQ(
        sample(),
        (Strings{R"(SystemMemoryHeartBeat","int64":{"cachedKB":20,"memFreeKB":3000,"memTotalKB":4000},"double":)"
                 R"({"psiFullAvg10":0.5,"psiFullAvg300":0,"psiFullAvg60":0,)"
                 R"("psiSomeAvg10":1.5,"psiSomeAvg300":0,"psiSomeAvg60":0.25}})",
                 R"(ZramHeartBeat","uint64":{"memLimitBytes":0,"memUsedMaxBytes":16384,"memUsedTotalBytes":12288,)"
                 R"("numCompressedDataBytes":74,"origDataBytes":8192,"pagesCompacted":0,"samePages":0},)"
                 R"("string":{"device":"zram2"}})",
                 R"(ZramHeartBeat","uint64":{"hugePages":8,"hugePagesSinceBoot":9,"memLimitBytes":4,)"
                 R"("memUsedMaxBytes":5,"memUsedTotalBytes":3,"numCompressedDataBytes":2,"origDataBytes":1,)"
                 R"("pagesCompacted":7,"samePages":6},"string":{"device":"zram10"}})",
                 memory(9, "early"), memory(12, "late")}));
    EXPECT_EQ(notes, Strings());
}

TEST_F(SystemSamplerTest, AttributesAreExactlyThoseOfTheBuiltInCatalogue) {
    support::writeMachine(machine, "camera");
    std::string memory = "Active: 7 kB\n";  // is none
    for (const char* const name : {"MemTotal", "MemFree", "MemAvailable", "Buffers", "Cached", "SwapCached",
                                   "SwapTotal", "SwapFree", "Dirty", "AnonPages", "Mapped", "Shmem", "Slab"}) {
        memory += std::string(name) + ":  7 kB\n";
    }
    write("proc/meminfo", memory);
    Catalogue seen;
    for (int i = 0; i < 2; ++i) {
        sampler.sample(0, [&](const EventRecord& record) { seen.learn(record); });
        now += std::chrono::seconds(1);
    }
    EXPECT_EQ(seen.text(), Catalogue::builtIn().text());
}

TEST_F(SystemSamplerTest, CpuShareIsThatSinceTheLastSampleOfTheSameProcess) {
    addProcess(7, "busy", 0);
    addProcess(8, "reused", 50 * second);
    EXPECT_EQ(sample().size(), 2u);
    addProcess(7, "busy", 2 * second);
    addProcess(8, "another", 60 * second, 6);
    EXPECT_EQ(sample(), (Strings{memory(7, "busy"), cpu(7, "busy", "200"), memory(8, "another")}));
    now += std::chrono::seconds(2);
    addProcess(7, "busy", 3 * second);
    addProcess(8, "another", 59 * second, 6);  // the kernel's sum may go back a little
    EXPECT_EQ(sample(),
              (Strings{memory(7, "busy"), cpu(7, "busy", "33.33"), memory(8, "another"), cpu(8, "another", "0")}));
    notes.clear();
    fs::remove(machine.path("proc/7/status"));
    fs::remove(machine.path("proc/8/stat"));
    EXPECT_EQ(sample(), Strings{memory(8, "another")});
    EXPECT_EQ(notes, Strings());  // a process may vanish while it is read
}

TEST_F(SystemSamplerTest, AnyNameIsReadAsItIsOrMadeValid) {
    // As in status, and in JSON.
    const std::pair<std::string, std::string> cases[] = {
        {"a) R 1 (b", "a) R 1 (b"},
        {"with space", "with space"},
        {R"(line\nfeed)", R"(line\nfeed)"},
        {R"(back\\n)", R"(back\\n)"},
        {"\x1B[31m", R"(\u001b[31m)"},
        {"\xFF\xC3", "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"", ""},
    };
    for (const auto& [kernel, expected] : cases) {
        addProcess(7, kernel, 0);
        sample();
        addProcess(7, kernel, second);
        EXPECT_EQ(sample(), (Strings{memory(7, expected), cpu(7, expected, "100")})) << kernel;
    }
}

TEST_F(SystemSamplerTest, MissingSourceIsToldOnce) {
    EXPECT_EQ(sample(), Strings());
    EXPECT_EQ(sample(), Strings());
    const std::string proc = machine.path("proc");
    const std::string zram = machine.path("sys/block/zram*");
    const std::string missing = ": No such file or directory: no ";
    EXPECT_EQ(notes, (Strings{proc + "/meminfo" + missing + "amounts in SystemMemoryHeartBeat",
                              proc + "/pressure/memory" + missing + "pressure in SystemMemoryHeartBeat",
                              zram + missing + "ZramHeartBeat", proc + missing + "events of processes"}));
}

TEST(SystemSampler, ThisMachineHasAtLeastThisProcess) {
    bool found = false;
    SystemSampler(
        "/proc", "/sys", [] { return std::chrono::nanoseconds(0); }, [](std::string_view) {})
        .sample(0, [&](const EventRecord& record) {
            found |= record.attributes.find<std::int64_t>("pid") == getpid() &&
                     record.attributes.find<std::int64_t>("vmRssKB") > 1000;
        });
    EXPECT_TRUE(found);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
