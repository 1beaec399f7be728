#include "rulesengine/ShortText.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string_view>
#include <vector>

namespace {

using Brenta::OS::RulesEngine::areEqualTexts;

// Each text is a piece of the heap of its own, so that the address sanitizer sees a byte that is read beside it.
TEST(ShortTextTest, ComparesEveryByteOfATextAndNoneBesideIt) {
    const auto areEqual = [](const std::vector<char>& left, const std::vector<char>& right) {
        return areEqualTexts({left.data(), left.size()}, {right.data(), right.size()});
    };
    for (std::size_t size = 0; size <= 40; ++size) {
        const std::vector<char> text(size, 'a');
        std::vector<char> other(size, 'a');
        EXPECT_TRUE(areEqual(text, other)) << size;
        for (std::size_t place = 0; place < size; ++place) {
            other[place] = '\xE1';  // one bit is another
            EXPECT_FALSE(areEqual(text, other)) << size << " at " << place;
            other[place] = 'a';
        }
        EXPECT_FALSE(areEqual(text, std::vector<char>(size + 1, 'a'))) << size;
    }
}

}  // namespace
