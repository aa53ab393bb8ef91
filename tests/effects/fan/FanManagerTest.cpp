#include "effects/fan/FanManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/simulated/SimulatedMachine.h"
#include "tests/support/ExchangedPlatform.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto fanPath = "sounds/fanmac.mp3";

class FanManagerTest : public testing::Test {
protected:
    FanManagerTest() {
        machine.audio.addFile(fanPath, {.sampleRate = 1000, .channels = 1},
                              std::vector<float>(2000, 0.5F));
        machine.bundle.addResource("fanmac", "mp3", fanPath);
    }

    ~FanManagerTest() override {
        if (manager)
            manager->stop();
    }

    void makeManager() { manager = FanManager::create(machine.platform()); }

    [[nodiscard]] const auto& pulses() const { return machine.haptics.pulses(); }

    SimulatedMachine machine;
    std::shared_ptr<FanManager> manager;
};

TEST_F(FanManagerTest, TheSoundIsSetToLoopAtItsVolumeAndPrepared) {
    makeManager();
    ASSERT_EQ(machine.audio.filePlayerCount(), 1U);
    EXPECT_THAT(machine.audio.filePlayer(0).calls(),
                ElementsAre("loops -1", "volume 0.6", "prepare"));
    EXPECT_THAT(machine.console.lines, ElementsAre("✅ [FAN] fanmac.mp3 loaded"));
}

TEST_F(FanManagerTest, AMissingSoundPrintsALineAndNothingStarts) {
    machine.bundle.removeResources();
    makeManager();
    manager->start();
    machine.runLoop.advance(1);
    EXPECT_THAT(machine.console.lines, ElementsAre("⚠️ [FAN] fanmac.mp3 not found"));
    EXPECT_FALSE(manager->isActive());
    EXPECT_THAT(pulses(), IsEmpty());
}

TEST_F(FanManagerTest, AnUndecodableSoundPrintsTheLoadedLineAndNothingStarts) {
    machine.audio.addNonAudioFile(fanPath);
    makeManager();
    manager->start();
    machine.runLoop.advance(1);
    EXPECT_THAT(machine.console.lines, ElementsAre("✅ [FAN] fanmac.mp3 loaded"));
    EXPECT_FALSE(manager->isActive());
    EXPECT_EQ(machine.haptics.lookups(), 0);
}

TEST_F(FanManagerTest, ADamagedSoundPrintsTheLoadedLineAndNothingStarts) {
    machine.audio.addDamagedFile(fanPath, {.sampleRate = 1000, .channels = 1},
                                 std::vector<float>(2000, 0.5F));
    makeManager();
    manager->start();
    machine.runLoop.advance(1);
    EXPECT_THAT(machine.console.lines, ElementsAre("✅ [FAN] fanmac.mp3 loaded"));
    EXPECT_FALSE(manager->isActive());
    EXPECT_THAT(machine.audio.filePlayer(0).calls(),
                ElementsAre("loops -1", "volume 0.6", "prepare"));
    EXPECT_EQ(machine.haptics.lookups(), 0);
}

TEST_F(FanManagerTest, TheSoundLoopsFromItsBeginningUntilItIsStopped) {
    makeManager();
    manager->start();
    EXPECT_TRUE(manager->isActive());
    machine.runLoop.advance(9);
    EXPECT_TRUE(machine.audio.filePlayer(0).isPlaying());
    const auto mix = machine.audio.render(0, 9, {.sampleRate = 1000, .channels = 1});
    EXPECT_THAT(mix, testing::Each(testing::FloatNear(0.3F, 1e-6F)));
    manager->stop();
    EXPECT_FALSE(machine.audio.filePlayer(0).isPlaying());
    EXPECT_FALSE(manager->isActive());
}

TEST_F(FanManagerTest, TheTrackpadPulsesTwiceEveryTwentiethOfASecond) {
    makeManager();
    manager->start();
    machine.runLoop.advance(0.049);
    EXPECT_THAT(pulses(), IsEmpty());
    machine.runLoop.advance(0.951);
    ASSERT_EQ(pulses().size(), 40U);
    for (std::size_t i = 0; i < pulses().size(); ++i) {
        const std::size_t tick = i / 2 + 1;
        EXPECT_NEAR(pulses()[i].at, 0.05 * static_cast<double>(tick), 1e-9);
        EXPECT_EQ(pulses()[i].pattern,
                  i % 2 == 0 ? HapticPattern::LevelChange : HapticPattern::Generic);
        EXPECT_EQ(pulses()[i].time, HapticPerformanceTime::Now);
    }
}

TEST_F(FanManagerTest, ThePerformerIsLookedUpOncePerStart) {
    makeManager();
    manager->start();
    machine.runLoop.advance(10);
    EXPECT_EQ(machine.haptics.lookups(), 1);
    manager->stop();
    manager->start();
    machine.runLoop.advance(10);
    EXPECT_EQ(machine.haptics.lookups(), 2);
}

TEST_F(FanManagerTest, ItIsActiveOnceAllOfItRunsAndInactiveOnceAllOfItHasEnded) {
    makeManager();
    std::vector<std::string> calls;
    std::vector<std::size_t> timers;
    const auto active = manager->isActive().observe([&] {
        calls.push_back(machine.audio.filePlayer(0).calls().back());
        timers.push_back(machine.runLoop.pendingCount());
    });
    manager->start();
    manager->stop();
    EXPECT_THAT(calls, ElementsAre("play", "stop"));
    EXPECT_THAT(timers, ElementsAre(1U, 0U));
}

/// Haptics that record how many sounds have begun when a performer is asked for.
class WatchedHaptics final : public HapticService {
public:
    explicit WatchedHaptics(SimulatedMachine& machine) : m_machine(machine) {}

    std::shared_ptr<HapticPerformer> defaultPerformer() override {
        soundsBefore = m_machine.audio.timeline().size();
        return m_machine.haptics.defaultPerformer();
    }

    std::size_t soundsBefore = 0;

private:
    SimulatedMachine& m_machine;
};

TEST_F(FanManagerTest, TheSoundBeginsBeforeThePulsesAreSetUp) {
    WatchedHaptics haptics(machine);
    manager = FanManager::create(exchange(machine.platform(), {.haptics = &haptics}));
    manager->start();
    EXPECT_EQ(haptics.soundsBefore, 1U);
    manager->stop();
}

TEST_F(FanManagerTest, ItRewindsBeforeItPlays) {
    makeManager();
    manager->start();
    EXPECT_THAT(machine.audio.filePlayer(0).calls(),
                ElementsAre("loops -1", "volume 0.6", "prepare", "currentTime 0", "play"));
}

TEST_F(FanManagerTest, StoppingWhileIdleStopsThePlayer) {
    makeManager();
    manager->stop();
    EXPECT_EQ(machine.audio.filePlayer(0).calls().back(), "stop");
}

TEST_F(FanManagerTest, StoppingWithoutASoundDoesNothing) {
    machine.bundle.removeResources();
    makeManager();
    manager->stop();
    EXPECT_FALSE(manager->isActive());
}

TEST_F(FanManagerTest, ASecondStartCreatesNoSecondTimerAndDoesNotRewind) {
    makeManager();
    manager->start();
    machine.runLoop.advance(0.5);
    const auto calls = machine.audio.filePlayer(0).calls();
    const auto pending = machine.runLoop.pendingCount();
    manager->start();
    EXPECT_EQ(machine.audio.filePlayer(0).calls(), calls);
    EXPECT_EQ(machine.runLoop.pendingCount(), pending);
    EXPECT_EQ(machine.haptics.lookups(), 1);
}

TEST_F(FanManagerTest, StoppingWhileIdleIsHarmlessAndPrintsNothing) {
    makeManager();
    const auto lines = machine.console.lines;
    manager->stop();
    EXPECT_FALSE(manager->isActive());
    EXPECT_EQ(machine.console.lines, lines);
}

TEST_F(FanManagerTest, StoppingEndsThePulsesAtOnceAndReleasesThePerformer) {
    makeManager();
    manager->start();
    machine.runLoop.advance(0.2);
    const auto count = pulses().size();
    EXPECT_EQ(machine.haptics.performersInUse(), 1);
    manager->stop();
    EXPECT_EQ(machine.haptics.performersInUse(), 0);
    machine.runLoop.advance(5);
    EXPECT_EQ(pulses().size(), count);
}

TEST_F(FanManagerTest, AfterStoppingItStartsFromTheBeginningAgain) {
    makeManager();
    manager->start();
    machine.runLoop.advance(0.7);
    manager->stop();
    machine.runLoop.advance(1);
    manager->start();
    EXPECT_EQ(machine.audio.timeline().back().offset, 0);
    EXPECT_EQ(machine.audio.timeline().back().startTime, 1.7);
}

TEST_F(FanManagerTest, ThePulsesHoldThePerformerNotTheManager) {
    makeManager();
    manager->start();
    const std::weak_ptr<FanManager> weak = manager;
    manager->stop();
    manager->start();
    manager.reset();
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(machine.haptics.performersInUse(), 1);
}

TEST_F(FanManagerTest, WithoutAnOutputDeviceTheTrackpadStillPulses) {
    machine.audio.setOutputDevicePresent(false);
    makeManager();
    manager->start();
    machine.runLoop.advance(1);
    EXPECT_TRUE(manager->isActive());
    EXPECT_EQ(pulses().size(), 40U);
}

} // namespace
} // namespace quorvane
