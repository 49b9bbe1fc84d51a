#include "base/Uuid.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <set>
#include <string>

namespace vantry {

TEST(RandomUuid, IsWrittenInUpperCaseWithItsVersionAndItsVariant) {
    for (int i = 0; i < 1000; ++i)
        ASSERT_THAT(randomUuid(),
                    testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
}

TEST(RandomUuid, IsFreshEveryTime) {
    std::set<std::string> texts;
    for (int i = 0; i < 10'000; ++i)
        EXPECT_TRUE(texts.insert(randomUuid()).second);
}

// With 2,000 of them the chance that a digit that may be any stays away from a place is below 1 in 10^53.
TEST(RandomUuid, EveryDigitOccursInEveryPlaceThatIsRandom) {
    std::map<std::size_t, std::set<char>> digits;
    for (int i = 0; i < 2000; ++i) {
        const std::string text = randomUuid();
        for (std::size_t place = 0; place < text.size(); ++place)
            digits[place].insert(text[place]);
    }
    for (const auto& [place, seen] : digits) {
        const bool isDash = place == 8 || place == 13 || place == 18 || place == 23;
        const std::size_t expected = isDash || place == 14 ? 1 : place == 19 ? 4 : 16;
        EXPECT_EQ(seen.size(), expected) << place;
    }
}

} // namespace vantry
