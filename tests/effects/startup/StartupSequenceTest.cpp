#include "tests/effects/startup/StartupFixture.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using StartupSequenceTest = StartupFixture;

// Construction.

TEST_F(StartupSequenceTest, construction_loads_the_clip_and_makes_the_rumble_in_that_order) {
    manager = StartupSoundManager::create(machine.platform());
    EXPECT_THAT(machine.console.lines, ElementsAre(loadedLine, bufferLine));
    EXPECT_THAT(tractor().calls(), ElementsAre("prepare"));
    EXPECT_THAT(rumble().calls(), ElementsAre("attach", "connect 44100/1"));
    EXPECT_EQ(machine.audio.engineStartCount(), 0U);
    EXPECT_TRUE(manager->startupSoundEnabled());
    EXPECT_FALSE(manager->isPlayingTractor());
}

TEST_F(StartupSequenceTest, a_missing_clip_is_not_mentioned_and_nothing_ever_plays) {
    machine.bundle.removeResources();
    manager = StartupSoundManager::create(machine.platform());
    wakeUp();
    advance(10);
    EXPECT_THAT(machine.console.lines, ElementsAre(bufferLine));
    EXPECT_FALSE(manager->isPlayingTractor());
    EXPECT_THAT(machine.audio.timeline(), IsEmpty());
    EXPECT_THAT(pulses(), IsEmpty());
}

TEST_F(StartupSequenceTest, an_undecodable_clip_is_loaded_by_the_line_and_nothing_ever_plays) {
    machine.audio.addNonAudioFile(tractorPath);
    manager = StartupSoundManager::create(machine.platform());
    wakeUp();
    advance(10);
    EXPECT_THAT(machine.console.lines, ElementsAre(loadedLine, bufferLine));
    EXPECT_THAT(machine.audio.timeline(), IsEmpty());
}

// Waking up.

TEST_F(StartupSequenceTest, waking_up_plays_everything_at_once_and_ends_after_the_clips_length) {
    makeManager();
    wakeUp();
    EXPECT_TRUE(manager->isPlayingTractor());
    EXPECT_THAT(machine.console.lines, ElementsAre(playingLine, rumbleLine, hapticLine));
    EXPECT_THAT(tractor().calls(), ElementsAre("prepare", "currentTime 0", "play"));
    EXPECT_EQ(machine.audio.timeline().size(), 2U);
    advance(clipLength - 0.001);
    EXPECT_TRUE(manager->isPlayingTractor());
    advance(0.001);
    EXPECT_FALSE(manager->isPlayingTractor());
    EXPECT_THAT(machine.console.lines,
                ElementsAre(playingLine, rumbleLine, hapticLine, rumbleStoppedLine,
                            hapticStoppedLine, completeLine));
    EXPECT_EQ(rumble().state(), SimulatedAudioVoice::State::Stopped);
}

TEST_F(StartupSequenceTest, the_clip_is_not_stopped_by_the_sequence) {
    makeManager();
    wakeUp();
    advance(clipLength + 1);
    EXPECT_THAT(tractor().calls(), ElementsAre("prepare", "currentTime 0", "play"));
}

TEST_F(StartupSequenceTest, a_second_wake_up_meanwhile_is_ignored) {
    makeManager();
    wakeUp();
    advance(2);
    const auto lines = machine.console.lines;
    wakeUp();
    EXPECT_EQ(machine.console.lines, lines);
    advance(clipLength - 2);
    EXPECT_EQ(machine.console.lines.back(), completeLine);
    EXPECT_THAT(tractor().calls(), ElementsAre("prepare", "currentTime 0", "play"));
}

TEST_F(StartupSequenceTest, a_wake_up_after_the_end_starts_a_new_sequence) {
    makeManager();
    wakeUp();
    advance(clipLength);
    wakeUp();
    EXPECT_TRUE(manager->isPlayingTractor());
    advance(clipLength);
    EXPECT_THAT(tractor().calls(),
                ElementsAre("prepare", "currentTime 0", "play", "currentTime 0", "play"));
    EXPECT_EQ(machine.audio.engineStartCount(), 1U) << "the engine goes on between sequences";
}

TEST_F(StartupSequenceTest, waking_screens_start_nothing) {
    makeManager();
    machine.workspace.post(WorkspaceNotification::screensDidWake);
    machine.workspace.post(WorkspaceNotification::screensDidSleep);
    EXPECT_FALSE(manager->isPlayingTractor());
}

TEST_F(StartupSequenceTest, switched_off_no_wake_up_plays_anything) {
    makeManager();
    manager->startupSoundEnabled() = false;
    wakeUp();
    advance(10);
    EXPECT_THAT(machine.console.lines, IsEmpty());
    EXPECT_THAT(machine.audio.timeline(), IsEmpty());
    manager->startupSoundEnabled() = true;
    wakeUp();
    EXPECT_TRUE(manager->isPlayingTractor());
}

TEST_F(StartupSequenceTest, switching_off_on_the_way_cuts_nothing_short) {
    makeManager();
    wakeUp();
    advance(1);
    manager->startupSoundEnabled() = false;
    advance(clipLength - 1.001);
    EXPECT_TRUE(manager->isPlayingTractor());
    EXPECT_TRUE(tractor().isPlaying());
    advance(0.001);
    EXPECT_EQ(machine.console.lines.back(), completeLine);
}

// The guards.

TEST_F(StartupSequenceTest, the_guards_hold_for_every_caller) {
    makeManager();
    manager->startupSoundEnabled() = false;
    manager->playTractor();
    EXPECT_FALSE(manager->isPlayingTractor());
    manager->startupSoundEnabled() = true;
    manager->playTractor();
    EXPECT_TRUE(manager->isPlayingTractor());
    const auto lines = machine.console.lines;
    manager->playTractor();
    EXPECT_EQ(machine.console.lines, lines);
}

// The login.

TEST_F(StartupSequenceTest, opened_at_login_in_the_background_it_plays_once_after_half_a_second) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    makeManager();
    advance(0.499);
    EXPECT_FALSE(manager->isPlayingTractor());
    advance(0.001);
    EXPECT_TRUE(manager->isPlayingTractor());
    advance(60);
    EXPECT_EQ(machine.console.lines.size(), 6U);
}

TEST_F(StartupSequenceTest, not_registered_at_login_it_stays_silent) {
    for (const auto status : {LoginItemStatus::NotRegistered, LoginItemStatus::RequiresApproval,
                              LoginItemStatus::NotFound}) {
        machine.application.loginItem = status;
        makeManager();
        advance(2);
        EXPECT_THAT(machine.console.lines, IsEmpty());
    }
}

TEST_F(StartupSequenceTest, in_front_half_a_second_after_launch_it_stays_silent) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    makeManager();
    advance(0.4);
    machine.application.active = true;
    advance(2);
    EXPECT_THAT(machine.console.lines, IsEmpty());
}

TEST_F(StartupSequenceTest, in_front_at_launch_only_it_plays) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    machine.application.active = true;
    makeManager();
    advance(0.4);
    machine.application.active = false;
    advance(0.2);
    EXPECT_TRUE(manager->isPlayingTractor());
}

TEST_F(StartupSequenceTest, switched_off_within_the_half_second_the_login_stays_silent) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    makeManager();
    manager->startupSoundEnabled() = false;
    advance(2);
    EXPECT_THAT(machine.console.lines, IsEmpty());
}

// Leaving.

TEST_F(StartupSequenceTest, the_login_outlives_the_manager_harmlessly) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    makeManager();
    manager.reset();
    advance(2);
    EXPECT_THAT(machine.console.lines, IsEmpty());
}

TEST_F(StartupSequenceTest, the_last_line_is_printed_even_when_the_manager_is_gone) {
    makeManager();
    wakeUp();
    manager.reset();
    advance(clipLength);
    EXPECT_THAT(machine.console.lines,
                ElementsAre(playingLine, rumbleLine, hapticLine, completeLine));
}

TEST_F(StartupSequenceTest, letting_go_of_the_manager_ends_wake_ups_pulses_and_the_engine) {
    makeManager();
    wakeUp();
    advance(1);
    const auto count = pulses().size();
    ASSERT_GT(count, 0U);
    EXPECT_EQ(machine.audio.runningEngineCount(), 1U);
    manager.reset();
    EXPECT_EQ(machine.audio.runningEngineCount(), 0U);
    EXPECT_EQ(machine.workspace.observerCount(), 0U);
    advance(20);
    EXPECT_EQ(pulses().size(), count);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U) << "the ramp's timer ends itself";
}

// What goes wrong.

TEST_F(StartupSequenceTest, an_engine_that_does_not_start_costs_the_rumble_only) {
    machine.audio.setFault(AudioFault::EngineStart, "no such thing as sound");
    makeManager();
    wakeUp();
    EXPECT_THAT(
        machine.console.lines,
        ElementsAre(playingLine, "⚠️ [RUMBLE] Error: no such thing as sound", hapticLine));
    EXPECT_TRUE(tractor().isPlaying());
    EXPECT_FALSE(manager->isRamping());
    advance(clipLength);
    EXPECT_GT(pulses().size(), 0U);
    EXPECT_EQ(machine.console.lines.back(), completeLine);
    machine.audio.clearFault(AudioFault::EngineStart);
    wakeUp();
    EXPECT_TRUE(manager->isRamping()) << "the next sequence tries again";
}

TEST_F(StartupSequenceTest, without_memory_for_the_rumble_the_rest_goes_on) {
    machine.audio.setFault(AudioFault::BufferCreation, "");
    manager = StartupSoundManager::create(machine.platform());
    EXPECT_THAT(machine.console.lines, ElementsAre(loadedLine));
    machine.console.lines.clear();
    wakeUp();
    EXPECT_THAT(machine.console.lines, ElementsAre(playingLine, hapticLine));
    EXPECT_EQ(machine.audio.engineStartCount(), 0U);
    advance(clipLength);
    EXPECT_GT(pulses().size(), 0U);
}

TEST_F(StartupSequenceTest, without_an_output_device_its_own_timing_is_unaffected) {
    machine.audio.setOutputDevicePresent(false);
    makeManager();
    wakeUp();
    EXPECT_TRUE(manager->isPlayingTractor());
    advance(clipLength);
    EXPECT_FALSE(manager->isPlayingTractor());
    EXPECT_EQ(machine.console.lines.back(), completeLine);
}

} // namespace
} // namespace quorvane
