#include "tests/effects/creak/AudioManagerFixture.h"

#include <gmock/gmock.h>

namespace quorvane {
namespace {

using testing::ElementsAre;

TEST_F(AudioManagerTest, StopBeforeTheCompletionArrivesLeavesItIdle) {
    load();
    bool completed = false;
    manager->onCompleted = [&] { completed = true; };
    manager->update(50);
    machine.runLoop.holdMainQueue(true);
    machine.runLoop.advance(clipLength + 0.01);
    manager->stop();
    EXPECT_FALSE(manager->isPlaying());
    machine.runLoop.holdMainQueue(false);
    machine.runLoop.runMainQueue();
    EXPECT_FALSE(manager->isPlaying());
    EXPECT_FALSE(completed) << "it was stopped";
    EXPECT_THAT(machine.console.lines, ElementsAre(completionLine));
    manager->update(50);
    EXPECT_EQ(node().scheduledCount(), 1U);
    EXPECT_EQ(sounds().back().offset, 0);
}

TEST_F(AudioManagerTest, TheCompletionOfACreakThatWasStoppedChangesNothingMore) {
    load();
    manager->update(50);
    machine.runLoop.advance(1);
    manager->stop();
    machine.runLoop.runMainQueue();
    EXPECT_FALSE(manager->isPlaying());
    manager->update(50);
    EXPECT_EQ(node().scheduledCount(), 1U);
    machine.runLoop.advance(clipLength - 0.001);
    EXPECT_TRUE(manager->isPlaying());
    machine.runLoop.advance(0.002);
    EXPECT_FALSE(manager->isPlaying());
    EXPECT_EQ(node().scheduledCount(), 0U);
}

TEST_F(AudioManagerTest, TheCompletionOfAStoppedCreakOnlyPrintsItsLine) {
    load();
    int completed = 0;
    manager->onCompleted = [&] { ++completed; };
    manager->update(50);
    machine.runLoop.advance(1);
    manager->stop();
    machine.runLoop.runMainQueue();
    EXPECT_THAT(machine.console.lines, ElementsAre(completionLine));
    EXPECT_EQ(completed, 0);
}

TEST_F(AudioManagerTest, TheLateCompletionOfAStoppedCreakLeavesTheNextOneAlone) {
    load();
    int completed = 0;
    manager->onCompleted = [&] { ++completed; };
    manager->update(50);
    machine.runLoop.advance(1);
    manager->stop();
    manager->update(50);
    machine.runLoop.runMainQueue();
    EXPECT_THAT(machine.console.lines, ElementsAre(completionLine)) << "of the stopped one";
    EXPECT_TRUE(manager->isPlaying());
    EXPECT_EQ(completed, 0);
    machine.runLoop.advance(1);
    manager->update(0);
    manager->update(50);
    EXPECT_EQ(node().scheduledCount(), 1U) << "it is not scheduled a second time";
    EXPECT_EQ(sounds().back().offset, 1.0);
    machine.runLoop.advance(clipLength);
    EXPECT_FALSE(manager->isPlaying());
    EXPECT_EQ(completed, 1);
    EXPECT_THAT(machine.console.lines, ElementsAre(completionLine, completionLine));
}

TEST_F(AudioManagerTest, LateCompletionsOfSeveralStoppedCreaksLeaveTheLastOneAlone) {
    load();
    for (int i = 0; i < 3; ++i) {
        manager->stop();
        manager->update(50);
    }
    machine.runLoop.runMainQueue();
    EXPECT_THAT(machine.console.lines, ElementsAre(completionLine, completionLine));
    EXPECT_TRUE(manager->isPlaying());
    EXPECT_EQ(node().scheduledCount(), 1U);
}

TEST_F(AudioManagerTest, StopFallsSilentAndTheNextCreakStartsFromItsBeginning) {
    load();
    manager->update(50);
    machine.runLoop.advance(1);
    manager->stop();
    EXPECT_EQ(machine.audio.runningEngineCount(), 1U) << "the engine keeps running";
    machine.runLoop.advance(1);
    EXPECT_FALSE(manager->isPlaying());
    EXPECT_NEAR(sounds()[0].stopTime - sounds()[0].startTime, 1, 1e-9);
    manager->update(50);
    EXPECT_EQ(sounds().back().offset, 0);
    EXPECT_EQ(machine.audio.engineStartCount(), 1U);
}

TEST_F(AudioManagerTest, AfterStopTheNextCreakWaitsForNoCompletion) {
    load();
    manager->update(50);
    machine.runLoop.holdMainQueue(true);
    manager->stop();
    manager->update(50);
    EXPECT_EQ(node().state(), SimulatedAudioVoice::State::Sounding);
    EXPECT_EQ(node().scheduledCount(), 1U);
    machine.runLoop.holdMainQueue(false);
}

TEST_F(AudioManagerTest, StopWhilePausedForgetsThePosition) {
    load();
    manager->update(50);
    machine.runLoop.advance(1);
    manager->update(0);
    manager->stop();
    machine.runLoop.advance(0.1);
    manager->update(50);
    EXPECT_EQ(sounds().back().offset, 0);
}

TEST_F(AudioManagerTest, StopReachesTheNodeAlsoWhileNothingPlays) {
    load();
    manager->stop();
    EXPECT_THAT(node().calls(), ElementsAre("attach", "connect 1000/1", "stop"));
}

TEST_F(AudioManagerTest, StopBeforeAnythingWasPlayedIsHarmless) {
    manager->stop();
    load();
    manager->stop();
    manager->update(50);
    EXPECT_TRUE(manager->isPlaying());
}

TEST_F(AudioManagerTest, ItsDestructionStopsTheEngine) {
    load();
    manager->update(50);
    EXPECT_EQ(machine.audio.engineStopCount(), 0U);
    manager.reset();
    EXPECT_EQ(machine.audio.engineStopCount(), 1U);
    EXPECT_EQ(machine.audio.runningEngineCount(), 0U);
}

} // namespace
} // namespace quorvane
