#include "vig/parsers/JsonValues.h"

#include <gmock/gmock.h>

#include "tests/vig/parsers/Json.h"

namespace {

using Brenta::OS::VIG::styledText;

TEST(StyledText, IsIndentedUpToThirtyTwoLevels) {
    const auto nested = [](std::size_t levels) { return std::string(levels, '[') + std::string(levels, ']'); };
    EXPECT_THAT(styledText(json(nested(32))), testing::StartsWith("[\n\t[\n\t\t["));
    EXPECT_EQ(styledText(json(nested(33))), nested(33) + "\n");
}

}  // namespace
