#include "tests/sensing/LidAngleSensorFixture.h"

namespace quorvane {
namespace {

using testing::IsEmpty;

using LidAngleSensorPollingTest = LidAngleSensorFixture;

TEST_F(LidAngleSensorPollingTest, start_before_a_probe_does_nothing) {
    sensor->start();
    EXPECT_FALSE(sensor->isRunning());
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(LidAngleSensorPollingTest, a_second_start_while_running_does_nothing) {
    probeLidAt(100);
    sensor->start();
    const int readings = lid->readings();
    sensor->start();
    EXPECT_EQ(lid->readings(), readings);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
}

TEST_F(LidAngleSensorPollingTest, polls_at_once_and_then_thirty_times_a_second) {
    probeLidAt(100);
    const int before = lid->readings();
    sensor->start();
    EXPECT_EQ(lid->readings(), before + 1);
    machine.runLoop.advance(10);
    EXPECT_EQ(lid->readings(), before + 301);
}

TEST_F(LidAngleSensorPollingTest, the_first_poll_sets_the_angle_and_leaves_the_velocity) {
    probeLidAt(100);
    EXPECT_EQ(sensor->angle(), 0);
    lid->setAngle(140);
    sensor->start();
    EXPECT_EQ(sensor->angle(), 140);
    EXPECT_EQ(sensor->velocity(), 0);
    EXPECT_TRUE(sensor->isRunning());
}

TEST_F(LidAngleSensorPollingTest, it_runs_only_once_the_first_angle_is_there) {
    probeLidAt(100);
    double angle = 0;
    const auto running = sensor->isRunning().observe([&] { angle = sensor->angle(); });
    sensor->start();
    EXPECT_EQ(angle, 100);
}

TEST_F(LidAngleSensorPollingTest, any_angle_counts_once_the_device_is_chosen) {
    probeLidAt(100);
    sensor->start();
    lid->setAngle(0);
    advanceOnePoll();
    EXPECT_EQ(sensor->angle(), 0);
    lid->setAngle(0xFFFF);
    advanceOnePoll();
    EXPECT_EQ(sensor->angle(), 65535);
}

TEST_F(LidAngleSensorPollingTest, a_constant_angle_has_no_velocity) {
    probeLidAt(100);
    sensor->start();
    machine.runLoop.advance(1);
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(LidAngleSensorPollingTest, stop_ends_the_polling_and_the_velocity_also_when_called_twice) {
    probeLidAt(100);
    moveLid(30);
    sensor->start();
    machine.runLoop.advance(1);
    ASSERT_NE(sensor->velocity(), 0);
    for (int i = 0; i < 2; ++i) {
        sensor->stop();
        EXPECT_EQ(sensor->velocity(), 0);
        EXPECT_FALSE(sensor->isRunning());
        EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
    }
    EXPECT_EQ(sensor->angle(), 130) << "the last angle stays";
    EXPECT_TRUE(sensor->sensorFound());
}

TEST_F(LidAngleSensorPollingTest, a_later_start_uses_the_device_that_was_found_earlier) {
    probeLidAt(100);
    sensor->start();
    sensor->stop();
    machine.hid.forgetCalls();
    lid->setAngle(120);
    sensor->start();
    EXPECT_EQ(sensor->angle(), 120);
    EXPECT_THAT(machine.hid.calls(), IsEmpty());
}

TEST_F(LidAngleSensorPollingTest, its_destruction_stops_everything) {
    probeLidAt(100);
    sensor->start();
    sensor.reset();
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
    EXPECT_EQ(machine.hid.calls().back(), "release");
}

} // namespace
} // namespace quorvane
