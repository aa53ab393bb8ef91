#include "tests/sensing/LidAngleSensorFixture.h"

#include <vector>

namespace quorvane {
namespace {

using testing::IsEmpty;

constexpr double pollInterval = 1.0 / 30;

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

TEST_F(LidAngleSensorPollingTest, ten_degrees_in_a_fifth_of_a_second_are_fifty_a_second) {
    probeLidAt(100);
    const double start = machine.runLoop.currentMediaTime();
    lid->setAngle([start](double time) { return 100 + 50 * (time - start); });
    sensor->start();
    machine.runLoop.advance(0.2);
    EXPECT_EQ(sensor->angle(), 110);
    EXPECT_NEAR(sensor->velocity(), 50, 1e-6);
}

TEST_F(LidAngleSensorPollingTest, a_sample_exactly_as_old_as_the_window_stays) {
    probeLidAt(100);
    sensor->start();
    lid->setAngle(106);
    machine.runLoop.advance(0.2);
    EXPECT_NEAR(sensor->velocity(), 6 / 0.2, 1e-6);
    advanceOnePoll();
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(LidAngleSensorPollingTest, a_falling_angle_has_a_negative_velocity) {
    probeLidAt(100);
    const double start = machine.runLoop.currentMediaTime();
    lid->setAngle([start](double time) { return 100 - 50 * (time - start); });
    sensor->start();
    machine.runLoop.advance(0.2);
    EXPECT_NEAR(sensor->velocity(), -50, 1e-6);
}

TEST_F(LidAngleSensorPollingTest, the_velocity_is_the_slope_from_the_oldest_sample_of_the_window) {
    probeLidAt(100);
    sensor->start();
    lid->setAngle(103);
    advanceOnePoll();
    EXPECT_NEAR(sensor->velocity(), 3 / pollInterval, 1e-5);
    advanceOnePoll();
    EXPECT_NEAR(sensor->velocity(), 3 / (2 * pollInterval), 1e-5);
}

TEST_F(LidAngleSensorPollingTest, the_velocity_is_zero_a_window_after_the_lid_stopped) {
    probeLidAt(100);
    sensor->start();
    machine.runLoop.advance(1);
    lid->setAngle(103);
    advanceOnePoll();
    for (int sample = 1; sample <= 5; ++sample) {
        EXPECT_GT(sensor->velocity(), 0) << "the resting sample is in the window";
        advanceOnePoll();
    }
    advanceOnePoll();
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(LidAngleSensorPollingTest,
       after_a_gap_longer_than_the_window_the_velocity_waits_for_new_samples) {
    probeLidAt(100);
    const double start = machine.runLoop.currentMediaTime();
    lid->setAngle([start](double time) { return 100 + 30 * (time - start); });
    sensor->start();
    machine.runLoop.advance(1);
    const double before = sensor->velocity();
    EXPECT_NEAR(before, 30, 6);
    machine.runLoop.block(0.5);
    lid->setAngle(20);
    machine.runLoop.advance(0);
    EXPECT_EQ(sensor->angle(), 20);
    EXPECT_EQ(sensor->velocity(), before) << "the history holds the newest sample alone";
    machine.runLoop.advance(0.05);
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(LidAngleSensorPollingTest,
       samples_closer_than_three_hundredths_of_a_second_give_no_velocity) {
    probeLidAt(100);
    sensor->start();
    // Late by most of a period: the next poll, on its grid, comes 0.02 s after this one.
    machine.runLoop.block(0.25 + pollInterval - 0.02);
    machine.runLoop.advance(0);
    lid->setAngle(110);
    const double velocity = sensor->velocity();
    machine.runLoop.advance(0.021);
    EXPECT_EQ(sensor->angle(), 110);
    EXPECT_EQ(sensor->velocity(), velocity);
    advanceOnePoll();
    EXPECT_GT(sensor->velocity(), 0);
}

TEST_F(LidAngleSensorPollingTest, a_failed_or_short_read_while_polling_changes_nothing) {
    probeLidAt(100);
    sensor->start();
    machine.runLoop.advance(0.1);
    lid->setReport(SimulatedHIDDevice::Report{1, 50});
    machine.runLoop.advance(0.5);
    EXPECT_EQ(sensor->angle(), 100);
    EXPECT_EQ(sensor->velocity(), 0);
    lid->setReport(std::nullopt);
    machine.runLoop.advance(0.5);
    EXPECT_EQ(sensor->angle(), 100);
}

TEST_F(LidAngleSensorPollingTest, one_short_report_at_the_fifth_poll_is_skipped) {
    probeLidAt(100);
    lid->setReportAt(lid->readings() + 5, SimulatedHIDDevice::Report{1, 9});
    sensor->start();
    std::vector<double> angles;
    const auto subscription = sensor->angle().observe([&] { angles.push_back(sensor->angle()); });
    machine.runLoop.advance(1);
    EXPECT_THAT(angles, IsEmpty());
}

TEST_F(LidAngleSensorPollingTest, a_device_that_vanishes_changes_nothing) {
    probeLidAt(100);
    sensor->start();
    lid->unplug();
    machine.runLoop.advance(2);
    EXPECT_TRUE(sensor->isRunning());
    EXPECT_EQ(sensor->angle(), 100);
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(LidAngleSensorPollingTest, stop_ends_the_polling_and_the_velocity_also_when_called_twice) {
    probeLidAt(100);
    const double start = machine.runLoop.currentMediaTime();
    lid->setAngle([start](double time) { return 100 + 30 * (time - start); });
    sensor->start();
    machine.runLoop.advance(1);
    ASSERT_NE(sensor->velocity(), 0);
    for (int i = 0; i < 2; ++i) {
        sensor->stop();
        EXPECT_EQ(sensor->velocity(), 0);
        EXPECT_FALSE(sensor->isRunning());
        EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
    }
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
