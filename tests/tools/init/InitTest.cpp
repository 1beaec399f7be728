#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/io/Descriptor.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using Strings = std::vector<std::string>;

class Init : public testing::Test {
  protected:
    // Runs the tool on a standard input.
    support::ToolResult run(const Strings& arguments, int input) {
        const support::MemoryFile out;
        const support::MemoryFile err;
        const Interruption interruption;
        const int status = support::runTool(arguments, {input, out.descriptor, err.descriptor}, interruption);
        return {status, out.content(), err.content()};
    }

    const support::TemporaryFolder folder;
    const std::string rules = folder.path("a.json");
    const std::string tests = folder.path("a.test.json");
};

TEST_F(Init, EveryKindIsCleanAndItsTestsNoticeEachSmallChange) {
    const Strings memory = {"--attribute", "vmRssKB", "--process"};
    const Strings cpu = {"--attribute", "cpuAvgUtilization", "--process"};
    const struct {
        Strings watched;
        Strings options;
    } cases[] = {
        {memory, {"camera", "--limit", "200MB"}},
        {memory, {"my camera", "--limit", "0", "--times", "2"}},
        {memory, {"c\"\\", "--limit", "1.5 GB", "--times", "3"}},
        {memory, {"gallery", "--limit", "200MB", "--release", "204800"}},
        {memory, {"x3", "--limit", "5", "--release", "0", "--times", "2"}},
        {memory, {"camera", "--limit", "200MB", "--share", "10%"}},
        {memory, {"camera", "--limit", "200MB", "--share", "0.25", "--trigger", "Test", "--release", "1KB"}},
        {memory, {"camera", "--limit", "200MB", "--second-limit", "204801"}},
        {memory,
         {"camera", "--limit", "200MB", "--times", "3", "--release", "140MB", "--second-limit", "1GB", "--share",
          "12.5%"}},
        {memory,
         {"camera", "--limit", "9", "--times", "20", "--release", "8", "--second-limit", "10", "--share", "99.5%"}},
        {memory, {"camera", "--limit", "1GB", "--times", "7", "--trigger", "Test"}},
        {cpu, {"a", "--limit", "1", "--release", "0"}},
        {cpu, {"camera", "--limit", "40%", "--release", "9.5", "--second-limit", "80", "--share", "0.01"}},
        {{"--attribute", "psiSomeAvg10"}, {"--limit", "25", "--times", "2", "--trigger", "Test"}},
    };
    for (const auto& [watched, options] : cases) {
        Strings arguments = {"init", rules, "--force"};
        arguments.insert(arguments.end(), watched.begin(), watched.end());
        arguments.insert(arguments.end(), options.begin(), options.end());
        const support::MemoryFile nothing;
        for (const Strings& each : {arguments, Strings{"check", "--strict", rules},
                                    Strings{"test", tests, "--coverage-min", "100", "--mutants"}}) {
            const auto result = run(each, nothing.descriptor);
            EXPECT_EQ(result.status, kExitDone) << testing::PrintToString(each) << result.out << result.err;
        }
    }
}

TEST_F(Init, AsksAPersonUntilTheAnswersAreRight) {
    const Descriptor person(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    ASSERT_TRUE(person.isOpen() && grantpt(person.get()) == 0 && unlockpt(person.get()) == 0);
    const Descriptor terminal(open(ptsname(person.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
    const auto answered = [&](const Strings& arguments, const std::string& answers) {
        EXPECT_EQ(write(person.get(), answers.data(), answers.size()), static_cast<ssize_t>(answers.size()));
        return run(arguments, terminal.get());
    };
    // The end of the input is typed as Ctrl-D.
    const auto ended = answered({"init", rules, "--attribute", "vmRssKB"}, "camera\n\x04");
    EXPECT_EQ(ended.status, kExitUnusable);
    EXPECT_EQ(support::linesWith(ended.err, "vig: "),
              Strings{"vig: error: the input ended before everything was answered, and nothing is written"});
    EXPECT_FALSE(std::filesystem::exists(rules));

    // What would be overwritten is told before anything is asked.
    folder.write("a.test.json", "mine");
    EXPECT_EQ(answered({"init", rules}, "").status, kExitUnusable);
    EXPECT_EQ(support::textOf(tests), "mine");
    std::filesystem::remove(tests);

    // What options say is not asked, and the right ones of two answers are these.
    const std::string answers = "vmRsKB\nvmRssKB\n\n camera \n200 M\n200 MB\n0\n3\n300MB\n\n10\n10%\nNone\n\n";
    const auto asked = answered({"init", "--second-limit", "1GB"}, answers + tests + "\n" + rules + "\n");
    EXPECT_EQ(asked.status, kExitDone) << asked.err;
    std::size_t mistakes = 0;
    for (std::size_t place = 0; (place = asked.err.find(", got ", place)) != std::string::npos; ++place) {
        ++mistakes;
    }
    EXPECT_EQ(mistakes, 7u) << asked.err;
    EXPECT_NE(asked.err.find("[none]: "), std::string::npos);
    EXPECT_EQ(asked.err.find("second"), std::string::npos);
    const std::string written = support::textOf(rules) + support::textOf(tests);
    run({"init", rules, "--force", "--attribute", "vmRssKB", "--process", "camera", "--limit", "204800", "--times", "3",
         "--second-limit", "1048576", "--share", "0.1", "--trigger", "TriggerVelora"},
        terminal.get());
    EXPECT_EQ(written, support::textOf(rules) + support::textOf(tests));

    // Nothing stays of a wrong answer, nor of a wrong option that could not be read at first.
    const auto mended =
        answered({"init", rules, "--force", "--process", "camera", "--limit", "200MB", "--release", "1GB"},
                 "vmRssKB\n21\n\nx\n300MB\nnone\n1MB\n\n20\nall\n\n");
    EXPECT_EQ(support::linesWith(mended.out, "rules "),
              Strings{"rules  TriggerVelora when vmRssKB of camera is above 204800 kB; never anew"});
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
