#include "app/FloatingEmoji.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "platform/simulated/SimulatedSystem.h"

namespace quorvane {
namespace {

// Draws are from 0 to 2^53.
constexpr std::uint64_t lowest = 0;
constexpr std::uint64_t highest = 9007199254740992;
constexpr std::uint64_t middle = 4503599627370496;
// Draws of 64 bits end here.
constexpr std::uint64_t bits = 18446744073709551615U;

TEST(FloatingEmoji, DrawsEachValueUniformlyInTheOrderOfTheFields) {
    SimulatedRandom random;
    random.script({11, 12, lowest, highest, middle, lowest, highest, middle});
    const auto emojis = FloatingEmoji::generate(1, random);
    ASSERT_EQ(emojis.size(), 1U);
    EXPECT_EQ(emojis[0].id,
              (std::pair<std::uint64_t, std::uint64_t>(0x400B, 0x8000'0000'0000'000C)));
    EXPECT_EQ(emojis[0].x, 0);
    EXPECT_EQ(emojis[0].y, 700);
    EXPECT_EQ(emojis[0].size, 50);
    EXPECT_EQ(emojis[0].opacity, 0.08);
    EXPECT_EQ(emojis[0].speed, 40);
    EXPECT_EQ(emojis[0].drift, 0);
    EXPECT_THAT(random.bounds(), testing::ElementsAre(bits, bits, highest, highest, highest,
                                                      highest, highest, highest));
}

TEST(FloatingEmoji, ReachesBothEndsOfEveryRange) {
    SimulatedRandom random;
    random.script({0, 0, lowest, lowest, lowest, lowest, lowest, lowest});
    random.script({bits, bits, highest, highest, highest, highest, highest, highest});
    const auto emojis = FloatingEmoji::generate(2, random);
    // UUIDs of version 4: all bits but those of the version and the variant are random.
    const FloatingEmoji low{.id = {0x0000'0000'0000'4000, 0x8000'0000'0000'0000},
                            .x = 0,
                            .y = -100,
                            .size = 40,
                            .opacity = 0.08,
                            .speed = 15,
                            .drift = -30};
    const FloatingEmoji high{.id = {0xFFFF'FFFF'FFFF'4FFF, 0xBFFF'FFFF'FFFF'FFFF},
                             .x = 500,
                             .y = 700,
                             .size = 60,
                             .opacity = 0.2,
                             .speed = 40,
                             .drift = 30};
    EXPECT_THAT(emojis, testing::ElementsAre(low, high));
}

TEST(FloatingEmoji, GlyphIsTheCryingFace) {
    EXPECT_STREQ(FloatingEmoji::glyph, "😭");
}

TEST(FloatingEmoji, NoneAtAllIsAnEmptyList) {
    SimulatedRandom random;
    EXPECT_TRUE(FloatingEmoji::generate(0, random).empty());
}

TEST(FloatingEmojiDeathTest, ANegativeCountEndsTheProgram) {
    SimulatedRandom random;
    EXPECT_DEATH((void)FloatingEmoji::generate(-1, random),
                 "quorvane: fatal: FloatingEmoji: a count of -1");
}

TEST(FloatingEmoji, IdentitiesAreUUIDsOfVersion4) {
    SimulatedRandom random;
    for (const auto& emoji : FloatingEmoji::generate(100, random)) {
        EXPECT_EQ(emoji.id.first >> 12U & 0xFU, 4U);
        EXPECT_EQ(emoji.id.second >> 62U, 2U);
    }
}

TEST(FloatingEmoji, IdentitiesDiffer) {
    SimulatedRandom random;
    std::set<std::pair<std::uint64_t, std::uint64_t>> ids;
    for (const auto& emoji : FloatingEmoji::generate(12, random))
        ids.insert(emoji.id);
    EXPECT_EQ(ids.size(), 12U);
}

TEST(FloatingEmoji, AStepIsATwentiethOfItsSpeeds) {
    SimulatedRandom random;
    FloatingEmoji emoji{
        .id = {}, .x = 100, .y = 300, .size = 50, .opacity = 0.1, .speed = 20, .drift = -30};
    emoji.step(random);
    EXPECT_DOUBLE_EQ(emoji.y, 299);
    EXPECT_DOUBLE_EQ(emoji.x, 98.5);
    EXPECT_TRUE(random.bounds().empty());
}

TEST(FloatingEmoji, StaysAtTheTopEdgeAndReentersBeyondIt) {
    SimulatedRandom random;
    random.script({highest, lowest, highest, middle});
    FloatingEmoji emoji{
        .id = {7, 8}, .x = 900, .y = -79, .size = 44, .opacity = 0.1, .speed = 20, .drift = 4};
    emoji.step(random);
    EXPECT_EQ(emoji.y, -80);
    EXPECT_DOUBLE_EQ(emoji.x, 900.2) << "sideways drift has no bounds";
    emoji.step(random);
    const FloatingEmoji respawned{
        .id = {7, 8}, .x = 500, .y = 700, .size = 44, .opacity = 0.14, .speed = 40, .drift = -30};
    EXPECT_DOUBLE_EQ(emoji.opacity, respawned.opacity);
    emoji.opacity = respawned.opacity;
    EXPECT_EQ(emoji, respawned) << "drawn in the order x, drift, speed, opacity";
}

TEST(FloatingEmoji, DriftsBeyondEitherSideAndStaysThereUntilItReenters) {
    SimulatedRandom random;
    FloatingEmoji emoji{
        .id = {}, .x = 1, .y = 300, .size = 50, .opacity = 0.1, .speed = 20, .drift = -30};
    emoji.step(random);
    EXPECT_DOUBLE_EQ(emoji.x, -0.5);
    emoji.step(random);
    EXPECT_DOUBLE_EQ(emoji.x, -2);
    emoji.x = 499;
    emoji.drift = 30;
    emoji.step(random);
    EXPECT_DOUBLE_EQ(emoji.x, 500.5);
    EXPECT_TRUE(random.bounds().empty());
    emoji.x = -40;
    emoji.y = -80;
    random.script({lowest, middle, middle, middle});
    emoji.step(random);
    EXPECT_EQ(emoji.x, 0);
    EXPECT_EQ(emoji.y, 700);
}

} // namespace
} // namespace quorvane
