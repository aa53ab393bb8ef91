#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>
#include <utility>

#include "platform/simulated/SimulatedMachine.h"
#include "sensing/LidAngleSensor.h"
#include "tests/support/ExchangedPlatform.h"

namespace quorvane {
namespace {

class SleepWakeFallbackTest : public testing::Test {
protected:
    SleepWakeFallbackTest() {
        sensor->probeSensor();
        sensor->start();
    }

    void wake() { machine.workspace.post("NSWorkspaceScreensDidWakeNotification"); }

    void sleep() { machine.workspace.post("NSWorkspaceScreensDidSleepNotification"); }

    /// Runs the first `count` ticks of a burst.
    void ticks(int count) { machine.runLoop.advance(count * 0.05); }

    SimulatedMachine machine;
    std::shared_ptr<LidAngleSensor> sensor = LidAngleSensor::create(machine.platform());
};

TEST_F(SleepWakeFallbackTest, StartObservesBothNotificationsAndPrintsALine) {
    EXPECT_EQ(machine.console.lines.back(), "📡 [SENSOR] Sleep/wake monitoring started");
    EXPECT_EQ(machine.workspace.observerCount(), 2U);
    EXPECT_TRUE(sensor->isRunning());
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U) << "no timer between events";
}

TEST_F(SleepWakeFallbackTest, WakingScreensSimulateAnOpeningLid) {
    wake();
    EXPECT_EQ(sensor->velocity(), 80);
    ticks(1);
    EXPECT_NEAR(sensor->velocity(), 74.4, 1e-9);
    ticks(1);
    EXPECT_NEAR(sensor->velocity(), 69.192, 1e-9);
}

TEST_F(SleepWakeFallbackTest, SleepingScreensSimulateAClosingLid) {
    sleep();
    EXPECT_EQ(sensor->velocity(), -80);
    ticks(1);
    EXPECT_NEAR(sensor->velocity(), -74.4, 1e-9);
}

TEST_F(SleepWakeFallbackTest, AnOpeningBurstCreaksForExactlySixtyTicks) {
    wake();
    for (int n = 1; n <= 60; ++n) {
        ticks(1);
        EXPECT_NEAR(sensor->velocity(), 80 * std::pow(0.93, n), 1e-9);
        EXPECT_GE(sensor->velocity(), 1.0) << "at tick " << n;
    }
    EXPECT_NEAR(sensor->velocity(), 1.0282, 1e-4);
    ticks(1);
    EXPECT_EQ(sensor->velocity(), 0);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(SleepWakeFallbackTest, AClosingBurstMirrorsIt) {
    sleep();
    ticks(60);
    EXPECT_LE(sensor->velocity(), -1.0);
    ticks(1);
    EXPECT_EQ(sensor->velocity(), 0);
    EXPECT_FALSE(std::signbit(sensor->velocity()));
}

TEST_F(SleepWakeFallbackTest, AWakeDuringAClosingBurstReplacesItAtOnce) {
    sleep();
    ticks(10);
    wake();
    EXPECT_EQ(sensor->velocity(), 80);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U) << "the old timer stops";
    ticks(1);
    EXPECT_NEAR(sensor->velocity(), 74.4, 1e-9);
}

TEST_F(SleepWakeFallbackTest, TwoWakesInQuickSuccessionRestartTheBurstAndNeverAddUp) {
    wake();
    machine.runLoop.advance(0.12);
    wake();
    EXPECT_EQ(sensor->velocity(), 80);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
}

TEST_F(SleepWakeFallbackTest, ABurstCanFollowOneThatHasEnded) {
    wake();
    ticks(70);
    ASSERT_EQ(sensor->velocity(), 0);
    sleep();
    EXPECT_EQ(sensor->velocity(), -80);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
}

TEST_F(SleepWakeFallbackTest, StopDuringABurstLeavesNoVelocityNoTimerAndNoObserver) {
    wake();
    ticks(3);
    sensor->stop();
    EXPECT_EQ(sensor->velocity(), 0);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
    EXPECT_EQ(machine.workspace.observerCount(), 0U);
    wake();
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(SleepWakeFallbackTest, TheAngleStaysAsItWasThroughout) {
    int notices = 0;
    const auto subscription = sensor->angle().observe([&] { ++notices; });
    wake();
    ticks(5);
    sleep();
    ticks(70);
    EXPECT_EQ(sensor->angle(), 0);
    EXPECT_EQ(notices, 0);
}

TEST_F(SleepWakeFallbackTest, EveryTickOfABurstNotifies) {
    int notices = 0;
    wake();
    const auto subscription = sensor->velocity().observe([&] { ++notices; });
    ticks(60);
    EXPECT_EQ(notices, 60);
}

TEST_F(SleepWakeFallbackTest, ABurstWithoutItsSensorEndsItsTimer) {
    wake();
    sensor.reset();
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
    EXPECT_EQ(machine.workspace.observerCount(), 0U);
}

TEST_F(SleepWakeFallbackTest, ATickAfterTheLastReferenceEndsItsTimer) {
    wake();
    // Dropped on another thread, the sensor waits on the main queue for its destruction.
    machine.runLoop.holdMainQueue(true);
    std::thread([last = std::move(sensor)]() mutable { last.reset(); }).join();
    ASSERT_EQ(machine.runLoop.pendingCount(), 1U);
    ticks(1);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
    machine.runLoop.holdMainQueue(false);
    machine.runLoop.runMainQueue();
    EXPECT_EQ(machine.workspace.observerCount(), 0U);
}

TEST_F(SleepWakeFallbackTest, ANotificationAfterTheLastReferenceDoesNothing) {
    machine.runLoop.holdMainQueue(true);
    std::thread([last = std::move(sensor)]() mutable { last.reset(); }).join();
    wake();
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
    machine.runLoop.holdMainQueue(false);
    machine.runLoop.runMainQueue();
}

TEST_F(SleepWakeFallbackTest, ItWorksAgainAfterStoppingAndStarting) {
    wake();
    ticks(3);
    sensor->stop();
    const auto lines = machine.console.lines.size();
    sensor->start();
    EXPECT_TRUE(sensor->isRunning());
    EXPECT_EQ(machine.workspace.observerCount(), 2U);
    EXPECT_EQ(machine.console.lines.size(), lines + 1);
    EXPECT_EQ(machine.console.lines.back(), "📡 [SENSOR] Sleep/wake monitoring started");
    EXPECT_EQ(sensor->velocity(), 0) << "the earlier burst has ended";
    sleep();
    EXPECT_EQ(sensor->velocity(), -80);
    ticks(1);
    EXPECT_NEAR(sensor->velocity(), -74.4, 1e-9);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
}

/// A workspace centre that counts calls of `removeObserver`.
class CountingWorkspace final : public InProcessNotificationCenter {
public:
    void removeObserver(Token token) override {
        ++removals;
        InProcessNotificationCenter::removeObserver(token);
    }

    int removals = 0;
};

TEST(SleepWakeObservers, AreRemovedOnceEachHoweverOftenItIsStopped) {
    SimulatedMachine machine;
    CountingWorkspace workspace;
    const auto sensor =
        LidAngleSensor::create(exchange(machine.platform(), {.workspace = &workspace}));
    sensor->stop();
    EXPECT_EQ(workspace.removals, 0);
    sensor->probeSensor();
    sensor->start();
    sensor->stop();
    sensor->stop();
    EXPECT_EQ(workspace.removals, 2);
}

TEST_F(SleepWakeFallbackTest, StoppingPrintsNothing) {
    const auto lines = machine.console.lines;
    wake();
    sensor->stop();
    EXPECT_EQ(machine.console.lines, lines);
}

TEST_F(SleepWakeFallbackTest, NeitherTheMachinesOwnWakeUpNorTheDefaultCentreCounts) {
    machine.workspace.post("NSWorkspaceDidWakeNotification");
    machine.defaultCenter.post("NSWorkspaceScreensDidWakeNotification");
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(SleepWakeFallbackTest, TheBurstEndsAt61TicksOfATwentiethOfASecond) {
    wake();
    machine.runLoop.advance(3.049);
    EXPECT_GT(sensor->velocity(), 1);
    machine.runLoop.advance(0.001);
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(SleepWakeFallbackTest, ASecondStartAddsNoObservers) {
    sensor->start();
    EXPECT_EQ(machine.workspace.observerCount(), 2U);
}

} // namespace
} // namespace quorvane
