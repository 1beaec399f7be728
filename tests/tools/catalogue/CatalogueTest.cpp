#include "tools/vig/catalogue/Catalogue.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Brenta::OS::VIG::Tool {

namespace {

TEST(Catalogue, ReadsWhatItWrites) {
    std::vector<std::string> errors;
    for (const std::string& text : {Catalogue::builtIn().text(), Catalogue().text()}) {
        const auto read = Catalogue::read(DocumentText("", text), errors);
        ASSERT_TRUE(read) << errors.front();
        EXPECT_EQ(read->text(), text);
    }
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
