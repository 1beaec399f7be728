#include "tools/vig/run/RunCommand.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using support::document;
using support::TemporaryFolder;

TEST(RunCommand, InterruptedWaitsForNoPipeThatNobodyWritesToYet) {
    const TemporaryFolder folder;
    RunOptions options;
    options.rules = folder.write("rules.json", document({}));
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    Interruption interruption;
    interruption.request();
    for (std::string* const input : {&options.events, &options.contextFile}) {
        *input = pipe;
        EXPECT_EQ(run(options, Console(), interruption), 130);
    }
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
