#include "os/LookupTable.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using Brenta::OS::LookupTable;

constexpr LookupTable<3, int, const char*> kTexts{{{{1, "one"}, {2, "two"}, {3, "one"}}}};
constexpr LookupTable<2, int, std::string_view> kViews{{{{1, "one"}, {2, "on"}}}};

static_assert(kTexts.reverseLookup("two") == 2 && !kTexts.reverseLookup("three"));
static_assert(kViews.reverseLookup("on") == 2 && !kViews.reverseLookup(""));

TEST(LookupTable, FindsTheFirstKeyWhoseTextHasTheSameContent) {
    const std::string one = "one";
    const std::string untilNul("two\0three", 9);
    EXPECT_EQ(kTexts.reverseLookup(one.c_str()), 1);
    EXPECT_EQ(kTexts.reverseLookup(untilNul.c_str()), 2);
    for (const char* unknown : {"", "One", "on", "one "}) {
        EXPECT_EQ(kTexts.reverseLookup(unknown), std::nullopt) << unknown;
    }
}

}  // namespace
