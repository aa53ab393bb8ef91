#include "base/UniformDraw.h"

#include <gtest/gtest.h>
#include <vector>

namespace quorvane {
namespace {

TEST(UniformDraw, TheBoundIsTwoToThe53rd) {
    EXPECT_EQ(uniformDrawBound, 9007199254740992U);
}

TEST(UniformDraw, BothEndsAndAllBetweenCanBeReached) {
    EXPECT_EQ(uniformInRange(0, 20, 40), 20);
    EXPECT_EQ(uniformInRange(9007199254740992, 20, 40), 40);
    EXPECT_EQ(uniformInRange(2251799813685248, 20, 40), 25);
    EXPECT_EQ(uniformInRange(4503599627370496, -30, 30), 0);
    EXPECT_LT(uniformInRange(9007199254740991, 3, 4), 4.0000000001);
    EXPECT_GT(uniformInRange(9007199254740991, 0, 1), 0.9999999);
    EXPECT_LT(uniformInRange(9007199254740991, 0, 1), 1);
}

TEST(UniformDraw, DrawsAgainWhileTheBitsOfTheBoundAreTooLarge) {
    std::vector<std::uint64_t> draws{0xF7, 0xF6, 0xF5, 0xF4};
    const auto draw = [&draws] {
        const std::uint64_t bits = draws.front();
        draws.erase(draws.begin());
        return bits;
    };
    EXPECT_EQ(uniformUpTo(5, draw), 5U);
    EXPECT_EQ(draws.size(), 1U);
    EXPECT_EQ(uniformUpTo(0, draw), 0U);
    draws = {~std::uint64_t{0}};
    EXPECT_EQ(uniformUpTo(~std::uint64_t{0}, draw), ~std::uint64_t{0});
}

} // namespace
} // namespace quorvane
