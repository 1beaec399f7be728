#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

namespace fs = std::filesystem;

using support::MemoryFile;

// This is, in JSON, a title for the terminal, an erasure begun by one character, and text written backwards.
const std::string kHostile = "\\u001b]0;\\u0007\xC2\x9B\x32J\x7F\xE2\x80\xAE";
const std::string kHostileName = "\x1B[2J\xC2\x9B\x32J\xE2\x80\xAE";

// It has every verb, in every format that is text, read a document, events, tests and files whose names all are
// hostile.
class EveryVerb : public testing::Test {
  protected:
    EveryVerb() {
        const std::string trigger = R"([{"name":"TriggerVelora"}])";
        const std::string filters = support::filters({"integer " + kHostile + " > =0"});
        const std::string rules = write(
            "rules",
            support::documentOf({support::transition("start", kHostile, "ProcessMemoryHeartBeat", filters, trigger),
                                 support::transition(kHostile, "end", "Test")}));
        const std::string refused = write("refused", support::documentOf({support::transition("a", "b", kHostile)}));
        const std::string events =
            write("events", R"({"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":1,"vmSwapKB":2,")" + kHostile +
                                R"(":1},"string":{"processName":")" + kHostile + "\"}}\n");
        const std::string tests =
            write("tests", R"({"rules":")" + fs::path(rules).filename().string().replace(5, 1, "\\u001b") +
                               R"(","tests":[{"name":")" + kHostile + R"(","events":[],"expect":{"states":{"7":")" +
                               kHostile + R"("},"log":[")" + kHostile + R"("]}}]})");
        support::writeMachine(folder, kHostileName);
        const std::string junit = folder.path("junit.xml");
        commands = {
            {"test", tests, "--coverage", "--junit", junit},
            {"catalogue", events},
            {"watch", rules, "--interval", "1ms", "--duration", "1ms"},
            {"run", rules, events, events, "--format", "json"},
        };
        const MemoryFile summary;
        runWith(commands.back(), summary.descriptor, summary.descriptor);
        commands.push_back({"summary", write("summary", summary.content())});
        for (const char* const format : {"text", "jsonl"}) {
            commands.push_back({"run", rules, events, events, "--format", format});
            commands.push_back({"run", rules, events, "--format", format, "--explain", "--why-not",
                                "configs[0].payload.data.transitions[1]"});
        }
        for (const char* const format : {"text", "json", "sarif"}) {
            commands.push_back({"check", rules, refused, "--format", format});
        }
        for (const char* const format : {"text", "json"}) {
            commands.push_back({"prove", rules, "--format", format});
        }
        for (const char* const format : {"dot", "mermaid"}) {
            commands.push_back({"graph", rules, "--events", events, "--format", format});
        }
    }

    std::string write(const std::string& name, const std::string& text) {
        return folder.write(name + kHostileName, text);
    }

    int runWith(const std::vector<std::string>& command, int out, int err) {
        return support::runTool(command, {STDIN_FILENO, out, err}, interruption, folder.path());
    }

    const support::TemporaryFolder folder;
    Interruption interruption;
    const InterruptOnSignals signals{interruption};
    std::vector<std::vector<std::string>> commands;
};

TEST_F(EveryVerb, SendsNothingToATerminalThatItWouldActOn) {
    const auto expectHarmless = [](const std::string& text) {
        for (const std::string& line : support::linesWith(text, "")) {
            EXPECT_EQ(line, printable(line));
        }
    };
    for (const auto& command : commands) {
        SCOPED_TRACE(command[0]);
        const MemoryFile out;
        const MemoryFile err;
        testing::internal::CaptureStderr();
        runWith(command, out.descriptor, err.descriptor);
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
    for (const auto& command : commands) {
        SCOPED_TRACE(command[0]);
        const MemoryFile err;
        EXPECT_EQ(runWith(command, full.get(), err.descriptor), 2);
        EXPECT_NE(err.content().find("vig: error: standard output: No space left on device\n"), std::string::npos);
        const MemoryFile quiet;
        EXPECT_NE(runWith(command, abandoned.get(), quiet.descriptor), 2);
        EXPECT_EQ(quiet.content().find("vig: error:"), std::string::npos);
    }
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
