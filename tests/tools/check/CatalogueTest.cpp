#include "tools/vig/check/Catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tools/vig/check/ActionNeeds.h"
#include "tools/vig/check/Warnings.h"
#include "vig/EventTypeNames.h"

namespace Brenta::OS::VIG::Tool {

namespace {

TEST(Catalogue, ReadsWhatItWrites) {
    std::string problem;
    for (const std::string& text : {Catalogue::builtIn().text(), Catalogue().text()}) {
        const auto read = Catalogue::read(DocumentText("", text), problem);
        ASSERT_TRUE(read) << problem;
        EXPECT_EQ(read->text(), text);
    }
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
