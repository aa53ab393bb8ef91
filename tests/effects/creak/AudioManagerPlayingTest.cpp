#include "tests/effects/creak/AudioManagerFixture.h"

#include <gmock/gmock.h>
#include <string>

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The threshold.

struct Trigger {
    double velocity;
    bool creaks;
};

class TriggerTest : public AudioManagerTest, public testing::WithParamInterface<Trigger> {};

TEST_P(TriggerTest, DecidesWhetherItCreaks) {
    load();
    manager->update(GetParam().velocity);
    EXPECT_EQ(manager->isPlaying(), GetParam().creaks);
    EXPECT_EQ(sounds().size(), GetParam().creaks ? 1U : 0U);
}

INSTANTIATE_TEST_SUITE_P(Velocities, TriggerTest,
                         testing::Values(Trigger{1.0, true}, Trigger{-1.0, true},
                                         Trigger{0.999, false}, Trigger{-0.999, false},
                                         Trigger{0, false}, Trigger{500, true}));

// Playing.

TEST_F(AudioManagerTest, TheFirstFastUpdateStartsTheEngineSchedulesAndPlays) {
    load();
    manager->update(50);
    EXPECT_THAT(node().calls(), ElementsAre("attach", "connect 1000/1", "schedule", "play"));
    EXPECT_EQ(machine.audio.engineStartCount(), 1U);
}

TEST_F(AudioManagerTest, AFastUpdateWhilePlayingChangesNothing) {
    load();
    manager->update(50);
    const auto calls = node().calls();
    machine.runLoop.advance(1);
    manager->update(90);
    EXPECT_EQ(node().calls(), calls);
}

TEST_F(AudioManagerTest, SlowUpdatesWhileIdleOrPausedChangeNothing) {
    load();
    manager->update(0.5);
    EXPECT_THAT(node().calls(), ElementsAre("attach", "connect 1000/1"));
    manager->update(50);
    manager->update(0);
    const auto calls = node().calls();
    manager->update(0);
    EXPECT_EQ(node().calls(), calls);
}

TEST_F(AudioManagerTest, ContinuousMotionPlaysTheCreakToItsEndAndThenAgain) {
    load();
    for (int i = 0; i < 60 * 5; ++i) {
        manager->update(20);
        machine.runLoop.advance(1.0 / 60);
    }
    ASSERT_EQ(sounds().size(), 3U);
    EXPECT_NEAR(sounds()[0].stopTime - sounds()[0].startTime, clipLength, 1e-6);
    EXPECT_EQ(sounds()[1].offset, 0);
    EXPECT_NEAR(sounds()[1].startTime - sounds()[0].stopTime, 0, 1.0 / 60 + 1e-6);
    EXPECT_THAT(machine.console.lines, ElementsAre(completionLine, completionLine));
}

TEST_F(AudioManagerTest, MotionThatStopsHalfWayPausesAndResumesInPlace) {
    load();
    manager->update(50);
    machine.runLoop.advance(1);
    manager->update(0.2);
    EXPECT_FALSE(manager->isPlaying());
    machine.runLoop.advance(30);
    manager->update(-3);
    EXPECT_TRUE(manager->isPlaying());
    ASSERT_EQ(sounds().size(), 2U);
    EXPECT_NEAR(sounds()[0].stopTime - sounds()[0].startTime, 1, 1e-9);
    EXPECT_NEAR(sounds()[1].offset, 1, 1e-9);
    EXPECT_EQ(std::count(node().calls().begin(), node().calls().end(), "schedule"), 1);
}

TEST_F(AudioManagerTest, TheCompletionResetsPrintsAndCallsTheHookOnTheMainThread) {
    load();
    bool onMain = false;
    int completed = 0;
    manager->onCompleted = [&] {
        ++completed;
        onMain = machine.runLoop.isMainThread();
        EXPECT_FALSE(manager->isPlaying());
    };
    manager->update(50);
    machine.runLoop.advance(clipLength + 0.01);
    EXPECT_EQ(completed, 1);
    EXPECT_TRUE(onMain);
    EXPECT_THAT(machine.console.lines, ElementsAre(completionLine));
}

TEST_F(AudioManagerTest, AFastUpdateBetweenTheEndAndTheCompletionStepIsIgnored) {
    load();
    manager->update(50);
    machine.runLoop.holdMainQueue(true);
    machine.runLoop.advance(clipLength + 0.01);
    ASSERT_TRUE(manager->isPlaying());
    const auto calls = node().calls();
    manager->update(50);
    EXPECT_EQ(node().calls(), calls);
    machine.runLoop.holdMainQueue(false);
    machine.runLoop.runMainQueue();
    manager->update(50);
    EXPECT_EQ(sounds().size(), 2U);
}

TEST_F(AudioManagerTest, APendingCompletionDoesNothingAfterTheManagersDestruction) {
    load();
    manager->update(50);
    machine.runLoop.holdMainQueue(true);
    machine.runLoop.advance(clipLength + 0.01);
    manager.reset();
    machine.runLoop.holdMainQueue(false);
    machine.runLoop.runMainQueue();
    EXPECT_THAT(machine.console.lines, IsEmpty());
}

TEST_F(AudioManagerTest, TheFlagRisesAfterTheNodePlaysAndFallsAfterItIsSilent) {
    load();
    std::vector<std::string> order;
    const auto playing = manager->isPlaying().observe([&] {
        order.push_back(node().calls().back());
        order.emplace_back(manager->isPlaying() ? "on" : "off");
    });
    manager->update(50);
    manager->update(0);
    manager->update(50);
    manager->stop();
    EXPECT_THAT(order, ElementsAre("play", "on", "pause", "off", "play", "on", "stop", "off"));
}

TEST_F(AudioManagerTest, TheCompletionDropsTheFlagPrintsItsLineAndCallsTheHookLast) {
    load();
    std::vector<std::size_t> lines;
    const auto playing =
        manager->isPlaying().observe([&] { lines.push_back(machine.console.lines.size()); });
    manager->onCompleted = [&] { lines.push_back(machine.console.lines.size()); };
    manager->update(50);
    machine.runLoop.advance(clipLength + 0.01);
    EXPECT_THAT(lines, ElementsAre(0U, 0U, 1U)) << "played, silent, hook";
}

TEST_F(AudioManagerTest, AnEngineThatDoesNotStartIsTriedAgainSilently) {
    load();
    machine.faults->fail(Fault::EngineStart, "no device");
    manager->update(50);
    manager->update(50);
    EXPECT_FALSE(manager->isPlaying());
    EXPECT_THAT(machine.console.lines, IsEmpty());
    EXPECT_EQ(machine.audio.engineStartCount(), 2U);
    EXPECT_THAT(node().calls(), ElementsAre("attach", "connect 1000/1"))
        << "nothing is scheduled or played while the engine is not running";
    machine.faults->mend(Fault::EngineStart);
    manager->update(50);
    EXPECT_TRUE(manager->isPlaying());
    EXPECT_EQ(sounds().size(), 1U);
    EXPECT_EQ(node().scheduledCount(), 1U);
}

TEST_F(AudioManagerTest, AnOutputDeviceThatGoesAndComesBackIsUsedAgain) {
    load();
    int completed = 0;
    manager->onCompleted = [&] { ++completed; };
    manager->update(50);
    machine.runLoop.advance(1);
    machine.audio.setOutputDevicePresent(false);
    machine.runLoop.advance(0.1);
    EXPECT_FALSE(manager->isPlaying());
    EXPECT_EQ(completed, 1);
    manager->update(50);
    EXPECT_FALSE(manager->isPlaying());
    machine.audio.setOutputDevicePresent(true);
    manager->update(50);
    EXPECT_TRUE(manager->isPlaying());
    EXPECT_EQ(sounds().back().offset, 0);
}

TEST_F(AudioManagerTest, TheOutputIsTheClipItselfWhileItPlays) {
    load();
    const double start = machine.runLoop.currentMediaTime();
    manager->update(50);
    machine.runLoop.advance(0.5);
    manager->update(0);
    machine.runLoop.advance(0.5);
    const auto heard = machine.audio.render(start, start + 1, format);
    ASSERT_EQ(heard.size(), 1000U);
    EXPECT_EQ(heard[499], 0.5F);
    EXPECT_EQ(heard[501], 0.0F);
}

TEST_F(AudioManagerTest, FlagsNotifyOnlyWhenTheyChange) {
    load();
    int notices = 0;
    const auto playing = manager->isPlaying().observe([&] { ++notices; });
    manager->update(50);
    manager->update(60);
    EXPECT_EQ(notices, 1);
    manager->stop();
    manager->stop();
    EXPECT_EQ(notices, 2);
}

} // namespace
} // namespace quorvane
