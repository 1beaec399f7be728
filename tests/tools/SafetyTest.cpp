#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/check/CatalogueCommand.h"
#include "tools/vig/check/CheckCommand.h"
#include "tools/vig/fleet/FleetCommand.h"
#include "tools/vig/fleet/SummaryCommand.h"
#include "tools/vig/graph/GraphCommand.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/run/RunCommand.h"
#include "tools/vig/test/TestCommand.h"
#include "tools/vig/watch/WatchCommand.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

namespace fs = std::filesystem;

using support::MemoryFile;

// In JSON: a title for the terminal, an erasure begun by one character, and text written backwards.
const std::string kHostile = "\\u001b]0;\\u0007\xC2\x9B\x32J\x7F\xE2\x80\xAE";
const std::string kHostileName = "\x1B[2J\xC2\x9B\x32J\xE2\x80\xAE";

// Every verb, in every format that is text, on a document, events, tests and files whose names all are hostile.
class EveryVerb : public testing::Test {
  protected:
    using Verb = std::function<int(const Console&)>;

    EveryVerb() {
        const std::string trigger = R"([{"name":"TriggerVelora"}])";
        const std::string filters = support::filters({"integer " + kHostile + " > =0"});
        rules = write("rules", support::documentOf(
                                   {support::transition("start", kHostile, "ProcessMemoryHeartBeat", filters, trigger),
                                    support::transition(kHostile, "end", "Test")}));
        refused = write("refused", support::documentOf({support::transition("a", "b", kHostile)}));
        events = write("events", R"({"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":1,"vmSwapKB":2,")" + kHostile +
                                     R"(":1},"string":{"processName":")" + kHostile + "\"}}\n");
        tests = write("tests", R"({"rules":")" + fs::path(rules).filename().string().replace(5, 1, "\\u001b") +
                                   R"(","tests":[{"name":")" + kHostile + R"(","events":[],"expect":{"states":{"7":")" +
                                   kHostile + R"("},"log":[")" + kHostile + R"("]}}]})");
        support::writeMachine(folder, kHostileName);
        for (const auto format : {ReportFormat::Text, ReportFormat::Jsonl, ReportFormat::Json}) {
            const std::string number = std::to_string(static_cast<int>(format));
            if (format != ReportFormat::Json) {
                addWith<RunOptions>("run in format " + number, run, [this, format](auto& options) {
                    options.rules = rules;
                    options.events = events;
                    options.format = format;
                    options.explain = true;
                    options.whyNot = "configs[0].payload.data.transitions[1]";
                });
            }
            addWith<FleetOptions>("run of several in format " + number, fleet, [this, format](auto& options) {
                options.rules = rules;
                options.devices = {events, events};
                options.format = format;
            });
        }
        for (const auto format : {FindingFormat::Text, FindingFormat::Json, FindingFormat::Sarif}) {
            addWith<CheckOptions>("check", check, [this, format](auto& options) {
                options.rules = {rules, refused};
                options.format = format;
            });
        }
        for (const auto format : {GraphFormat::Dot, GraphFormat::Mermaid}) {
            addWith<GraphOptions>("graph", graph, [this, format](auto& options) {
                options.rules = rules;
                options.events = events;
                options.format = format;
            });
        }
        addWith<TestOptions>("test", test, [this](auto& options) {
            options.files = {tests};
            options.coverage = true;
            options.junitFile = folder.path("junit.xml");
        });
        addWith<CatalogueOptions>("catalogue", catalogue, [this](auto& options) { options.events = events; });
        addWith<WatchOptions>("watch", watch, [this](auto& options) {
            options.rules = rules;
            options.interval = options.duration = std::chrono::milliseconds(1);
            options.procFolder = folder.path("proc");
            options.sysFolder = folder.path("sys");
        });
        addWith<SummaryOptions>("summary", summary, [this](auto& options) { options.files = {summaryOfDevices()}; });
    }

    std::string write(const std::string& name, const std::string& text) {
        return folder.write(name + kHostileName, text);
    }

    std::string summaryOfDevices() {
        FleetOptions options;
        options.rules = rules;
        options.devices = {events, events};
        options.format = ReportFormat::Json;
        const MemoryFile out;
        fleet(options, {STDIN_FILENO, out.descriptor, out.descriptor}, interruption);
        return write("summary", out.content());
    }

    template <typename Options>
    void addWith(const std::string& name, int (*verb)(const Options&, const Console&, const Interruption&),
                 const std::function<void(Options&)>& set) {
        Options options;
        set(options);
        verbs.emplace_back(
            name, [this, verb, options](const Console& console) { return verb(options, console, interruption); });
    }

    const support::TemporaryFolder folder;
    Interruption interruption;
    const InterruptOnSignals signals{interruption};
    std::string rules;
    std::string refused;
    std::string events;
    std::string tests;
    std::vector<std::pair<std::string, Verb>> verbs;
};

TEST_F(EveryVerb, SendsNothingToATerminalThatItWouldActOn) {
    const auto expectHarmless = [](const std::string& text) {
        for (const std::string& line : support::linesWith(text, "")) {
            EXPECT_EQ(line, printable(line));
        }
    };
    for (const auto& [name, verb] : verbs) {
        SCOPED_TRACE(name);
        const MemoryFile out;
        const MemoryFile err;
        testing::internal::CaptureStderr();
        verb({STDIN_FILENO, out.descriptor, err.descriptor});
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "past the console";
        EXPECT_NE(out.content(), "");
        expectHarmless(out.content());
        expectHarmless(err.content());
    }
}

TEST_F(EveryVerb, SaysThatTheDiskIsFullAndNothingOfAReaderThatHasGone) {
    const Descriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    close(ends[0]);
    const Descriptor abandoned(ends[1]);
    for (const auto& [name, verb] : verbs) {
        SCOPED_TRACE(name);
        const MemoryFile err;
        EXPECT_EQ(verb({STDIN_FILENO, full.get(), err.descriptor}), 2);
        EXPECT_NE(err.content().find("vig: error: standard output: No space left on device\n"), std::string::npos);
        const MemoryFile quiet;
        EXPECT_NE(verb({STDIN_FILENO, abandoned.get(), quiet.descriptor}), 2);
        EXPECT_EQ(quiet.content(), "");
    }
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
