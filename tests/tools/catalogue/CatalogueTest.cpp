#include "tools/vig/catalogue/Catalogue.h"

#include <gtest/gtest.h>

#include <string>

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
