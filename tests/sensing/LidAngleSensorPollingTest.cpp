#include "tests/sensing/LidAngleSensorFixture.h"

namespace quorvane {
namespace {

using testing::IsEmpty;

using LidAngleSensorPollingTest = LidAngleSensorFixture;

TEST_F(LidAngleSensorPollingTest, StartBeforeAProbeDoesNothing) {
    sensor->start();
    EXPECT_FALSE(sensor->isRunning());
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(LidAngleSensorPollingTest, ASecondStartWhileRunningDoesNothing) {
    probeLidAt(100);
    sensor->start();
    const int readings = lid->readings();
    sensor->start();
    EXPECT_EQ(lid->readings(), readings);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
}

TEST_F(LidAngleSensorPollingTest, PollsAtOnceAndThenThirtyTimesASecond) {
    probeLidAt(100);
    const int before = lid->readings();
    sensor->start();
    EXPECT_EQ(lid->readings(), before + 1);
    machine.runLoop.advance(10);
    EXPECT_EQ(lid->readings(), before + 301);
}

TEST_F(LidAngleSensorPollingTest, TheFirstPollSetsTheAngleAndLeavesTheVelocity) {
    probeLidAt(100);
    EXPECT_EQ(sensor->angle(), 0);
    lid->setAngle(140);
    sensor->start();
    EXPECT_EQ(sensor->angle(), 140);
    EXPECT_EQ(sensor->velocity(), 0);
    EXPECT_TRUE(sensor->isRunning());
}

TEST_F(LidAngleSensorPollingTest, IsRunningIsSetAfterTheFirstAngle) {
    probeLidAt(100);
    double angle = 0;
    const auto running = sensor->isRunning().observe([&] { angle = sensor->angle(); });
    sensor->start();
    EXPECT_EQ(angle, 100);
}

TEST_F(LidAngleSensorPollingTest, AnyAngleIsAcceptedOnceTheDeviceIsChosen) {
    probeLidAt(100);
    sensor->start();
    lid->setAngle(0);
    advanceOnePoll();
    EXPECT_EQ(sensor->angle(), 0);
    lid->setAngle(0xFFFF);
    advanceOnePoll();
    EXPECT_EQ(sensor->angle(), 65535);
}

TEST_F(LidAngleSensorPollingTest, AConstantAngleHasNoVelocity) {
    probeLidAt(100);
    sensor->start();
    machine.runLoop.advance(1);
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(LidAngleSensorPollingTest, StopEndsThePollingAndTheVelocityAlsoWhenCalledTwice) {
    pollMovingLid();
    for (int i = 0; i < 2; ++i) {
        sensor->stop();
        EXPECT_EQ(sensor->velocity(), 0);
        EXPECT_FALSE(sensor->isRunning());
        EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
    }
    EXPECT_EQ(sensor->angle(), 130) << "the last angle stays";
    EXPECT_TRUE(sensor->sensorFound());
}

TEST_F(LidAngleSensorPollingTest, ALaterStartUsesTheDeviceThatWasFoundEarlier) {
    probeLidAt(100);
    sensor->start();
    sensor->stop();
    machine.hid.forgetCalls();
    lid->setAngle(120);
    sensor->start();
    EXPECT_EQ(sensor->angle(), 120);
    EXPECT_THAT(machine.hid.calls(), IsEmpty());
}

TEST_F(LidAngleSensorPollingTest, ItsDestructionStopsEverything) {
    probeLidAt(100);
    sensor->start();
    sensor.reset();
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
    EXPECT_EQ(machine.hid.calls().back(), "release");
}

} // namespace
} // namespace quorvane
