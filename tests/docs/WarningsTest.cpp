#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "tests/docs/Fragments.h"
#include "tests/support/Documents.h"
#include "tools/vig/check/DocumentCheck.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/findings/WarningNames.h"

namespace Tool = Brenta::OS::VIG::Tool;

namespace {

using Strings = std::vector<std::string>;

const std::string kWarnings = support::textOf(VIG_SOURCE_DIR "/docs/warnings.md");

std::vector<Tool::Finding> foundIn(const std::string& text) {
    return findingsIn(Tool::DocumentText("", text), Tool::libraryRegistry(), Tool::Catalogue::builtIn()).all;
}

Strings namesRaisedBy(const std::string& text) {
    Strings names;
    std::ranges::transform(foundIn(text), std::back_inserter(names), &Tool::Finding::name);
    return names;
}

TEST(Warnings, AreDocumentedEachWithAnExampleThatRaisesItAlone) {
    Strings names;
    const std::string withEvents = kWarnings.substr(kWarnings.find("These are\n"));
    const Strings shown = docs::allOf(withEvents.substr(0, withEvents.find(". ")), R"(\[([a-z-]+)\]\(#)");
    ASSERT_FALSE(shown.empty());
    for (const Tool::WarningName& each : Tool::kWarningNames) {
        const std::string& name = names.emplace_back(each.name);
        const std::string section = kWarnings.substr(kWarnings.find("\n## " + name + "\n"));
        const Strings blocks = docs::allOf(section.substr(0, section.find("\n## ", 1)), docs::kJsonBlock);
        ASSERT_EQ(blocks.size(), 1U) << name;
        EXPECT_EQ(namesRaisedBy(docs::wholeOf(blocks[0])), Strings{name}) << name;
        EXPECT_EQ(foundIn(docs::wholeOf(blocks[0])).front().witness != nullptr, std::ranges::count(shown, name) > 0)
            << name;
    }
    EXPECT_THAT(docs::allOf(kWarnings, "\n## ([a-z-]+)\n"), testing::UnorderedElementsAreArray(names));
}

TEST(Warnings, ExamplesAndDocumentsOfThePagesRaiseNone) {
    Strings documents = support::exampleDocuments();
    for (const char* const page : {"/README.md", "/docs/rule-documents.md"}) {
        const std::size_t before = documents.size();
        for (const std::string& block :
             docs::allOf(support::textOf(std::string(VIG_SOURCE_DIR) + page), docs::kJsonBlock)) {
            if (block.find("\"configs\"") != std::string::npos) {
                documents.push_back(block);
            }
        }
        EXPECT_GT(documents.size(), before) << page;
    }
    ASSERT_GT(documents.size(), 5U);
    for (const std::string& each : documents) {
        EXPECT_EQ(namesRaisedBy(each), Strings()) << each;
    }
}

}  // namespace
