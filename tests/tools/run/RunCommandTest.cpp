#include "tools/vig/run/RunCommand.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using namespace support;

TEST(RunCommand, InterruptionEndsTheRunWithItsSummary) {
    const TemporaryFolder folder;
    RunOptions options;
    options.rules = folder.write("rules.json", document({}));
    options.format = ReportFormat::Jsonl;
    const MemoryFile out;
    Interruption later;
    RuleRun ruleRun(options, options.format, {STDIN_FILENO, out.descriptor, STDERR_FILENO}, later);
    ASSERT_EQ(ruleRun.load(RuleSession::Changes::Ignore), std::nullopt);
    EXPECT_FALSE(ruleRun.mustStop());
    later.request();
    EXPECT_TRUE(ruleRun.mustStop());
    EXPECT_EQ(ruleRun.finish(kExitInterrupted, std::nullopt), 130);
    EXPECT_EQ(linesWith(out.content(), R"({"type":"end","events":0)").size(), 1u);

    // A pipe that nobody writes to yet is not waited for either.
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (std::string* const input : {&options.events, &options.contextFile}) {
        *input = pipe;
        EXPECT_EQ(run(options, Console(), later), 130);
    }
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
