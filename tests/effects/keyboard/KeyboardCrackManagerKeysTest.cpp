#include "tests/effects/keyboard/KeyboardCrackManagerFixture.h"

#include <gmock/gmock.h>

namespace quorvane {
namespace {

using testing::ElementsAre;

TEST_F(KeyboardCrackManagerTest, a_key_cracks_from_the_main_queue_not_from_the_tap) {
    makeListening();
    machine.runLoop.holdMainQueue(true);
    EXPECT_TRUE(machine.eventTaps.pressKey());
    EXPECT_EQ(cracks(), 0U);
    machine.runLoop.holdMainQueue(false);
    machine.runLoop.runMainQueue();
    EXPECT_EQ(cracks(), 1U);
}

TEST_F(KeyboardCrackManagerTest, the_first_crack_after_launch_always_plays) {
    makeListening();
    press();
    EXPECT_EQ(cracks(), 1U);
}

TEST_F(KeyboardCrackManagerTest, two_keys_0_149_s_apart_give_one_crack) {
    makeListening();
    press();
    machine.runLoop.advance(0.149);
    press();
    EXPECT_EQ(cracks(), 1U);
}

TEST_F(KeyboardCrackManagerTest, two_keys_0_15_s_apart_give_two_cracks) {
    makeListening();
    machine.runLoop.advance(0.25);
    press();
    // Both instants are such that their difference, as doubles, is no less than 0.15.
    machine.runLoop.advance(0.15);
    ASSERT_GE(machine.runLoop.currentMediaTime() - 10.25, 0.15);
    press();
    EXPECT_EQ(cracks(), 2U);
}

TEST_F(KeyboardCrackManagerTest, a_key_that_was_too_early_does_not_delay_the_next_crack) {
    makeListening();
    press();
    machine.runLoop.advance(0.1);
    press();
    machine.runLoop.advance(0.06);
    press();
    EXPECT_EQ(cracks(), 2U);
}

TEST_F(KeyboardCrackManagerTest, a_burst_of_keys_at_one_instant_gives_one_crack_and_no_replay) {
    makeListening();
    for (int i = 0; i < 64; ++i)
        EXPECT_TRUE(machine.eventTaps.pressKey());
    machine.runLoop.runMainQueue();
    machine.runLoop.advance(60);
    EXPECT_EQ(cracks(), 1U);
}

TEST_F(KeyboardCrackManagerTest, a_held_key_cracks_once_however_long_it_is_held) {
    makeListening();
    press();
    for (int i = 0; i < 100; ++i) {
        machine.runLoop.advance(0.2);
        press(/*autorepeat=*/1);
    }
    EXPECT_EQ(cracks(), 1U);
}

TEST_F(KeyboardCrackManagerTest, key_ups_modifiers_and_notices_never_crack_nor_reenable) {
    makeListening();
    const auto calls = machine.eventTaps.calls();
    for (const auto type : {TapEventType::KeyUp, TapEventType::FlagsChanged,
                            TapEventType::DisabledByTimeout, TapEventType::DisabledByUserInput})
        EXPECT_TRUE(machine.eventTaps.send({.type = type}));
    machine.runLoop.advance(1);
    EXPECT_EQ(cracks(), 0U);
    EXPECT_EQ(machine.eventTaps.calls(), calls);
}

TEST_F(KeyboardCrackManagerTest, every_crack_starts_the_clip_anew_and_cuts_the_one_before) {
    makeListening();
    press();
    machine.runLoop.advance(0.16);
    press();
    const auto& sounds = machine.audio.timeline();
    ASSERT_EQ(sounds.size(), 2U);
    EXPECT_EQ(sounds[1].offset, 0);
    EXPECT_NEAR(sounds[0].stopTime, sounds[1].startTime, 1e-9);
    EXPECT_THAT(
        machine.audio.filePlayer(0).calls(),
        ElementsAre("prepare", "volume 0.5", "currentTime 0", "play", "currentTime 0", "play"));
}

// Stopping.

} // namespace
} // namespace quorvane
