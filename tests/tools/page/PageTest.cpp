#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/page/Columns.h"
#include "tools/vig/page/PageFiles.h"
#include "tools/vig/page/ReplayPage.h"
#include "tools/vig/page/RunPage.h"
#include "tools/vig/test/TestPage.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using namespace support;

ToolResult pageOfExample() {
    RunOptions options;
    options.rules = VIG_SOURCE_DIR "/examples/escalation.json";
    options.events = VIG_SOURCE_DIR "/examples/trace.jsonl";
    return runVerb(runToPage, options);
}

// Returns the names of all that begins in a page, and of all that ends.
std::vector<std::string> tagsOf(const std::string& page) {
    std::vector<std::string> tags;
    for (std::size_t at = page.find('<'); at != page.npos; at = page.find('<', at + 1)) {
        tags.push_back(page.substr(at, page.find_first_of("> \n", at) - at));
    }
    return tags;
}

TEST(EventColumns, CountWhatTheyTakeAlsoOfWhatIsAbsent) {
    constexpr std::size_t kEvents = 100;
    EventColumns columns;
    for (std::size_t i = 0; i < kEvents; ++i) {
        EventRecord record{RulesEngine::EventType::Test};
        record.attributes.add<std::int64_t>("attribute " + std::to_string(i), 1);
        columns.add(static_cast<std::uint32_t>(i + 1), record);
    }
    ColumnWriter writer;
    columns.json(writer);
    EXPECT_GE(columns.size(), writer.bytes().size());
}

TEST(EventColumns, CountATextOnce) {
    EventRecord record{RulesEngine::EventType::Test};
    record.attributes.add<std::string_view>("text", std::string(10000, 'x'));
    EventColumns columns;
    columns.add(1, record);
    EXPECT_GT(columns.size(), 10000U);
    columns.add(2, record);
    EXPECT_LT(columns.size(), 11000U);
}

TEST(ReplayPage, HasTheFilesOfTheRepositoryByteForByte) {
    const std::string page = pageOfExample().out;
    std::vector<std::string> names;
    for (const PageFile& each : pageFiles()) {
        const std::string name(names.emplace_back(each.name));
        const std::string text = support::textOf(VIG_SOURCE_DIR "/tools/vig/page/" + name);
        const std::string element = name.ends_with(".js")    ? "<script>" + text + "</script>"
                                    : name.ends_with(".css") ? "<style>" + text + "</style>"
                                                             : "<body>\n" + text;
        EXPECT_NE(page.find(element), page.npos) << name;
    }
    EXPECT_EQ(linesWith(outputOf("cd " VIG_SOURCE_DIR "/tools/vig/page && ls *.html *.css *.js"), "").size(),
              names.size());
}

TEST(ReplayPage, HasAPolicyThatLetsItsOwnFilesRunAndNothingElse) {
    const std::string page = pageOfExample().out;
    const std::string hash = "'sha256-[A-Za-z0-9+/]{43}='";
    const std::string scripts = std::to_string(pageFiles().size() - 2);
    const std::regex policy("<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; script-src( " +
                            hash + "){" + scripts + "}; style-src " + hash +
                            "; base-uri 'none'; form-action 'none'\">");
    EXPECT_TRUE(std::regex_search(page.substr(0, page.find("<title>")), policy));
}

TEST(ReplayPage, IsOfTheSameElementsWhateverTextsSay) {
    const auto pageOf = [](const std::string& text) {
        return replayPage(text, {text, text}, {{text, {text, text}, std::nullopt, 0, false, text}});
    };
    const std::vector<std::string> expected = tagsOf(pageOf("text"));
    for (const char* const text : {"</script><script>", "<!--<script>", "--></title></head><body>", "]]>", "</SCRIPT >",
                                   "<img src=x onerror=\"f()\">", "&lt;b>", "\xff</style>", "\\u003c/script\\u003e"}) {
        EXPECT_EQ(tagsOf(pageOf(text)), expected) << text;
    }
}

TEST(TestPage, TellsWhatItHasNoRoomFor) {
    constexpr std::size_t kEvents = 100;
    TestCase test{"t"};
    std::vector<EventRecord> events(kEvents, EventRecord{RulesEngine::EventType::Test});
    for (std::size_t i = 0; i < kEvents; ++i) {
        events[i].attributes.add<std::string_view>("text", std::string(100, 'x') + std::to_string(i));
    }
    test.events = std::make_shared<const std::vector<EventRecord>>(std::move(events));
    const TestOutcome outcome{RuleSession::Loading::Done, "", {"it failed"}};
    const TemporaryFolder folder;
    const std::string rules = folder.write("rules.json", documentOf({transition("start", "start", "Test")}));
    const Console console{-1, -1, -1};
    const Interruption interruption;
    TestPage page(console, interruption, 5000);
    for (int i = 0; i < 3; ++i) {
        page.add(rules, "t", &test, outcome);
    }
    const std::string html = page.html("title", "report");
    std::smatch said;
    ASSERT_TRUE(std::regex_search(html, said, std::regex("The page has ([0-9]+) of 100 events: it cannot hold more.")));
    EXPECT_GT(std::stoul(said[1]), 20U);
    EXPECT_LT(std::stoul(said[1]), 50U);
    EXPECT_NE(html.find("The page has no room for 2 more tests that failed."), html.npos);
    EXPECT_EQ(linesWith(html, "<script type=\"application/gzip\"").size(), 1U);
}

TEST(Pictures, OfAPageInTheDocumentationAreCurrent) {
    EXPECT_TRUE(support::textOf(VIG_SOURCE_DIR "/docs/escalation-replay.html") == pageOfExample().out)
        << "docs/escalation-replay.html is not what `vig run --format html` writes of examples/escalation.json";
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
