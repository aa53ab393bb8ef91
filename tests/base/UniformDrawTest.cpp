#include "base/UniformDraw.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace quorvane
