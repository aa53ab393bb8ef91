#include "effects/startup/Rumble.h"

#include <cmath>
#include <thread>
#include <utility>

#include "tests/effects/startup/StartupFixture.h"

namespace quorvane {
namespace {

using testing::Contains;

class HapticRampTest : public StartupFixture {
protected:
    HapticRampTest() { makeManager(); }
};

TEST_F(HapticRampTest, ThePulseRateRisesFrom5To25OverTheRampAndStays) {
    EXPECT_DOUBLE_EQ(hapticRate(0, 3), 5);
    EXPECT_DOUBLE_EQ(hapticRate(1.5, 3), 15);
    EXPECT_DOUBLE_EQ(hapticRate(3, 3), 25);
    EXPECT_DOUBLE_EQ(hapticRate(300, 3), 25);
    EXPECT_DOUBLE_EQ(hapticRate(-1.5, 3), -5) << "only after the clock was set back";
}

TEST_F(HapticRampTest, APulseIsDueInTheFirstSixtiethOfASecondOfItsPeriod) {
    EXPECT_TRUE(isHapticPulseDue(0, 5));
    EXPECT_TRUE(isHapticPulseDue(0.016, 5));
    EXPECT_FALSE(isHapticPulseDue(1.0 / 60, 5));
    EXPECT_FALSE(isHapticPulseDue(0.0167, 5));
    EXPECT_FALSE(isHapticPulseDue(0.199, 5));
    EXPECT_TRUE(isHapticPulseDue(0.201, 5));
}

TEST_F(HapticRampTest, TheTrackpadPulsesByThePhaseOfEachTick) {
    // Scheduled first, so it sees each tick's date just before the manager does.
    const double start = machine.runLoop.currentDate();
    std::vector<double> expected;
    machine.runLoop.scheduledTimer(1.0 / 60, true, [&](Timer&) {
        const double elapsed = machine.runLoop.currentDate() - start;
        const double rate = std::fmin(elapsed / 3, 1) * 20 + 5;
        if (std::fmod(elapsed, 1 / rate) < 1.0 / 60)
            expected.push_back(machine.runLoop.currentMediaTime());
    });
    manager->startHaptic();
    advance(6);
    ASSERT_GT(expected.size(), 100U);
    ASSERT_EQ(pulses().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(pulses()[i].at, expected[i]);
        EXPECT_EQ(pulses()[i].pattern, HapticPattern::Alignment);
        EXPECT_EQ(pulses()[i].time, HapticPerformanceTime::Now);
    }
}

TEST_F(HapticRampTest, AtFullRateTheTrackpadPulses25TimesASecond) {
    manager->startHaptic();
    advance(3);
    const auto before = pulses().size();
    advance(4);
    // Of the 12 ticks of 5 periods, 5 are well inside a pulse's sixtieth; one is on its edge, where
    // rounding decides.
    EXPECT_GE(pulses().size() - before, 100U);
    EXPECT_LE(pulses().size() - before, 120U);
}

TEST_F(HapticRampTest, StoppingEndsThePulsesAtOnce) {
    manager->startHaptic();
    advance(1.5);
    manager->stopHaptic();
    EXPECT_FALSE(manager->isPulsing());
    const auto count = pulses().size();
    advance(5);
    EXPECT_EQ(pulses().size(), count);
    EXPECT_THAT(machine.console.lines, Contains(hapticStoppedLine));
}

TEST_F(HapticRampTest, ANewStartRestartsTheRamp) {
    manager->startHaptic();
    advance(3);
    manager->stopHaptic();
    const auto before = pulses().size();
    manager->startHaptic();
    advance(1);
    // 5 a second rising to 11.7: some 8 in the first second, not 25.
    EXPECT_NEAR(static_cast<double>(pulses().size() - before), 8, 3);
}

TEST_F(HapticRampTest, ThePulsesFollowTheRampsLengthAtOnce) {
    manager->rampUpDuration() = 60;
    manager->startHaptic();
    advance(3);
    // 5 a second rising to 6; with the usual ramp it would be some 45.
    EXPECT_NEAR(static_cast<double>(pulses().size()), 16, 3);
    manager->rampUpDuration() = 1;
    const auto before = pulses().size();
    advance(4);
    // The full rate, as above.
    EXPECT_GE(pulses().size() - before, 100U);
    EXPECT_LE(pulses().size() - before, 120U);
}

// The ramp follows the wall clock, which the user may set; the sequence's end does not.

TEST_F(HapticRampTest, AClockSetForwardGivesTheFullRateAtOnce) {
    manager->startHaptic();
    advance(0.5);
    machine.runLoop.setDate(machine.runLoop.currentDate() + 3600);
    const auto before = pulses().size();
    advance(4);
    // As above; with the ramp it would be some 80.
    EXPECT_GE(pulses().size() - before, 100U);
    EXPECT_LE(pulses().size() - before, 120U);
}

TEST_F(HapticRampTest, AClockSetBackMakesEveryTickPulse) {
    manager->startHaptic();
    advance(0.5);
    machine.runLoop.setDate(machine.runLoop.currentDate() - 3600);
    const auto before = pulses().size();
    advance(2);
    EXPECT_EQ(pulses().size() - before, 120U);
    manager->stopHaptic();
    advance(2);
    EXPECT_EQ(pulses().size() - before, 120U);
}

TEST_F(HapticRampTest, SettingTheClockDoesNotMoveTheEndOfTheSequence) {
    for (const double seconds : {3600.0, -3600.0}) {
        makeManager();
        wakeUp();
        advance(1);
        machine.runLoop.setDate(machine.runLoop.currentDate() + seconds);
        advance(clipLength - 1.001);
        EXPECT_TRUE(manager->isPlayingTractor());
        advance(0.001);
        EXPECT_FALSE(manager->isPlayingTractor());
        EXPECT_FALSE(manager->isPulsing());
        EXPECT_EQ(machine.console.lines.back(), completeLine);
    }
}

TEST_F(HapticRampTest, ATickAfterTheLastReferenceDoesNothing) {
    manager->startHaptic();
    machine.runLoop.holdMainQueue(true);
    std::thread([last = std::move(manager)]() mutable { last.reset(); }).join();
    advance(1);
    EXPECT_TRUE(pulses().empty());
    machine.runLoop.holdMainQueue(false);
    machine.runLoop.runMainQueue();
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

} // namespace
} // namespace quorvane
