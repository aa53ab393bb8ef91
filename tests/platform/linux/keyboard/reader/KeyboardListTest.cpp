#include <gtest/gtest.h>

#include "platform/linux/keyboard/reader/KeyboardList.h"

namespace quorvane {

namespace {

TEST(KeyboardListTest, ANameCannotForgeALineOfTheLog) {
    EXPECT_EQ(printableName("AT Translated Set 2 keyboard"), "AT Translated Set 2 keyboard");
    EXPECT_EQ(printableName("a\nb\x1b[1mc\x7f\xc3\xa4"), "a?b?[1mc???");
    EXPECT_EQ(printableName(nullptr), "unnamed");
}

} // namespace

} // namespace quorvane
