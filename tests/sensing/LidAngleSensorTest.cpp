#include "sensing/LidAngleSensor.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double pollInterval = 1.0 / 30;
constexpr auto fallbackLine =
    "⚠️ [SENSOR] No HID lid sensor found — using sleep/wake fallback";

class LidAngleSensorTest : public testing::Test {
protected:
    /// A sensor that has found a lid at `degrees`.
    void probeLidAt(unsigned degrees) {
        lid = machine.hid.addDevice(0x8104);
        lid->setAngle(degrees);
        sensor->probeSensor();
        ASSERT_FALSE(sensor->usingSleepWake());
    }

    /// Lets time pass to the next poll and no further.
    void advanceOnePoll() {
        machine.runLoop.advance(*machine.runLoop.nextDeadline() -
                                machine.runLoop.currentMediaTime());
    }

    SimulatedMachine machine;
    std::shared_ptr<LidAngleSensor> sensor = LidAngleSensor::create(machine.platform());
    std::shared_ptr<SimulatedHIDDevice> lid;
};

// Discovery.

TEST_F(LidAngleSensorTest, finds_the_first_known_product_and_says_so) {
    probeLidAt(112);
    EXPECT_TRUE(sensor->sensorFound());
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [SENSOR] Found lid sensor! ProductID=0x8104, angle=112°"));
}

TEST_F(LidAngleSensorTest, asks_a_manager_in_the_promised_order_and_keeps_it_open) {
    probeLidAt(112);
    EXPECT_THAT(machine.hid.calls(),
                ElementsAre("create", "match 1452:33028", "schedule", "open", "copy"));
}

TEST_F(LidAngleSensorTest, tries_the_products_in_their_order_and_then_every_device_of_the_maker) {
    sensor->probeSensor();
    std::vector<std::string> matches;
    std::copy_if(machine.hid.calls().begin(), machine.hid.calls().end(),
                 std::back_inserter(matches),
                 [](const std::string& call) { return call.starts_with("match"); });
    EXPECT_THAT(matches, ElementsAre("match 1452:33028", "match 1452:33026", "match 1452:33027",
                                     "match 1452:33029", "match 1452:33378", "match 1452"));
}

TEST_F(LidAngleSensorTest, a_later_product_is_found_when_the_earlier_ones_are_missing) {
    machine.hid.addDevice(0x8262)->setAngle(90);
    sensor->probeSensor();
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [SENSOR] Found lid sensor! ProductID=0x8262, angle=90°"));
}

TEST_F(LidAngleSensorTest, an_unknown_product_is_found_by_the_scan) {
    machine.hid.addDevice(0x0ABC)->setAngle(45);
    sensor->probeSensor();
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [SENSOR] Found lid sensor via scan! ProductID=0xabc, angle=45°"));
    EXPECT_FALSE(sensor->usingSleepWake());
}

TEST_F(LidAngleSensorTest, the_scan_calls_a_missing_product_id_zero) {
    machine.hid.addDevice(std::nullopt)->setAngle(45);
    sensor->probeSensor();
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [SENSOR] Found lid sensor via scan! ProductID=0x0, angle=45°"));
}

TEST_F(LidAngleSensorTest, another_makers_device_is_never_asked) {
    const auto other = machine.hid.addDevice(0x8104);
    other->vendorID = 0x046D;
    other->setAngle(100);
    sensor->probeSensor();
    EXPECT_EQ(other->readings(), 0);
    EXPECT_TRUE(sensor->usingSleepWake());
}

struct FirstAngle {
    unsigned degrees;
    bool accepted;
};

class FirstAngleTest : public LidAngleSensorTest, public testing::WithParamInterface<FirstAngle> {};

TEST_P(FirstAngleTest, decides_whether_the_device_is_the_sensor) {
    machine.hid.addDevice(0x8104)->setAngle(GetParam().degrees);
    sensor->probeSensor();
    EXPECT_EQ(!sensor->usingSleepWake(), GetParam().accepted);
    EXPECT_TRUE(sensor->sensorFound());
}

INSTANTIATE_TEST_SUITE_P(Angles, FirstAngleTest,
                         testing::Values(FirstAngle{0, false}, FirstAngle{1, true},
                                         FirstAngle{199, true}, FirstAngle{200, false},
                                         FirstAngle{0x0164, false}),
                         [](const auto& angle) { return std::to_string(angle.param.degrees); });

TEST_F(LidAngleSensorTest, a_report_of_two_bytes_is_a_failed_read_in_discovery) {
    machine.hid.addDevice(0x8104)->setReport(SimulatedHIDDevice::Report{1, 100});
    sensor->probeSensor();
    EXPECT_TRUE(sensor->usingSleepWake());
}

TEST_F(LidAngleSensorTest, a_report_longer_than_three_bytes_counts) {
    machine.hid.addDevice(0x8104)->setReport(SimulatedHIDDevice::Report{1, 100, 0, 9, 9, 9, 9, 9});
    sensor->probeSensor();
    EXPECT_FALSE(sensor->usingSleepWake());
}

TEST_F(LidAngleSensorTest, the_next_device_is_tried_after_one_that_does_not_qualify) {
    const auto unopenable = machine.hid.addDevice(0x8104);
    unopenable->setAngle(50);
    unopenable->refusesOpen = true;
    const auto unreadable = machine.hid.addDevice(0x8104);
    unreadable->setReport(std::nullopt);
    const auto resting = machine.hid.addDevice(0x8104);
    resting->setAngle(0);
    machine.hid.addDevice(0x8104)->setAngle(77);
    machine.hid.addDevice(0x8104)->setAngle(78);
    sensor->probeSensor();
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ [SENSOR] Found lid sensor! ProductID=0x8104, angle=77°"));
    EXPECT_EQ(unopenable->readings(), 0);
    EXPECT_TRUE(resting->isOpen()) << "a rejected device is left open";
}

TEST_F(LidAngleSensorTest, a_manager_whose_devices_all_failed_is_closed_and_released) {
    machine.hid.addDevice(0x8104)->setAngle(0);
    sensor->probeSensor();
    const auto& calls = machine.hid.calls();
    ASSERT_GE(calls.size(), 7U);
    EXPECT_THAT(
        (std::vector(calls.begin(), calls.begin() + 7)),
        ElementsAre("create", "match 1452:33028", "schedule", "open", "copy", "close", "release"));
    EXPECT_THAT((std::vector(calls.end() - 2, calls.end())), ElementsAre("close", "release"));
}

TEST_F(LidAngleSensorTest, a_manager_without_devices_is_released_without_closing) {
    machine.hid.copyGivesNoSet = true;
    sensor->probeSensor();
    EXPECT_THAT(machine.hid.calls(), testing::Not(testing::Contains("close")));
    EXPECT_TRUE(sensor->usingSleepWake());
}

TEST_F(LidAngleSensorTest, a_manager_that_cannot_be_opened_is_released_without_closing) {
    machine.hid.managerRefusesOpen = true;
    machine.hid.addDevice(0x8104)->setAngle(100);
    sensor->probeSensor();
    EXPECT_THAT(machine.hid.calls(), testing::Not(testing::AnyOf(testing::Contains("close"),
                                                                 testing::Contains("copy"))));
    EXPECT_THAT(machine.console.lines, ElementsAre(fallbackLine));
}

TEST_F(LidAngleSensorTest, without_a_sensor_both_flags_are_set_and_one_line_is_printed) {
    sensor->probeSensor();
    EXPECT_TRUE(sensor->sensorFound());
    EXPECT_TRUE(sensor->usingSleepWake());
    EXPECT_THAT(machine.console.lines, ElementsAre(fallbackLine));
}

TEST_F(LidAngleSensorTest, a_repeated_probe_notifies_nobody_when_nothing_changed) {
    probeLidAt(100);
    int notices = 0;
    const auto found = sensor->sensorFound().observe([&] { ++notices; });
    const auto fallback = sensor->usingSleepWake().observe([&] { ++notices; });
    sensor->probeSensor();
    EXPECT_EQ(notices, 0);
}

TEST_F(LidAngleSensorTest, a_repeated_probe_that_finds_a_device_leaves_the_fallback) {
    sensor->probeSensor();
    probeLidAt(100);
    EXPECT_FALSE(sensor->usingSleepWake());
}

TEST_F(LidAngleSensorTest, a_repeated_probe_that_finds_nothing_makes_the_next_start_fall_back) {
    probeLidAt(100);
    machine.hid.forgetCalls();
    lid->setAngle(0);
    sensor->probeSensor();
    EXPECT_TRUE(sensor->usingSleepWake());
    EXPECT_EQ(std::count(machine.hid.calls().begin(), machine.hid.calls().end(), "release"), 6)
        << "the earlier manager is kept";
    sensor->start();
    EXPECT_EQ(machine.console.lines.back(), "📡 [SENSOR] Sleep/wake monitoring started");
}

// Polling.

TEST_F(LidAngleSensorTest, start_before_a_probe_does_nothing) {
    sensor->start();
    EXPECT_FALSE(sensor->isRunning());
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(LidAngleSensorTest, a_second_start_while_running_does_nothing) {
    probeLidAt(100);
    sensor->start();
    const int readings = lid->readings();
    sensor->start();
    EXPECT_EQ(lid->readings(), readings);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U);
}

TEST_F(LidAngleSensorTest, polls_at_once_and_then_thirty_times_a_second) {
    probeLidAt(100);
    const int before = lid->readings();
    sensor->start();
    EXPECT_EQ(lid->readings(), before + 1);
    machine.runLoop.advance(10);
    EXPECT_EQ(lid->readings(), before + 301);
}

TEST_F(LidAngleSensorTest, the_first_poll_sets_the_angle_and_leaves_the_velocity) {
    probeLidAt(100);
    EXPECT_EQ(sensor->angle(), 0);
    lid->setAngle(140);
    sensor->start();
    EXPECT_EQ(sensor->angle(), 140);
    EXPECT_EQ(sensor->velocity(), 0);
    EXPECT_TRUE(sensor->isRunning());
}

TEST_F(LidAngleSensorTest, any_angle_counts_once_the_device_is_chosen) {
    probeLidAt(100);
    sensor->start();
    lid->setAngle(0);
    advanceOnePoll();
    EXPECT_EQ(sensor->angle(), 0);
    lid->setAngle(0xFFFF);
    advanceOnePoll();
    EXPECT_EQ(sensor->angle(), 65535);
}

TEST_F(LidAngleSensorTest, a_constant_angle_has_no_velocity) {
    probeLidAt(100);
    sensor->start();
    machine.runLoop.advance(1);
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(LidAngleSensorTest, ten_degrees_in_a_fifth_of_a_second_are_fifty_a_second) {
    probeLidAt(100);
    const double start = machine.runLoop.currentMediaTime();
    lid->setAngle([start](double time) { return 100 + 50 * (time - start); });
    sensor->start();
    machine.runLoop.advance(0.2);
    EXPECT_EQ(sensor->angle(), 110);
    EXPECT_NEAR(sensor->velocity(), 50, 1e-6);
}

TEST_F(LidAngleSensorTest, a_sample_exactly_as_old_as_the_window_stays) {
    probeLidAt(100);
    sensor->start();
    lid->setAngle(106);
    machine.runLoop.advance(0.2);
    EXPECT_NEAR(sensor->velocity(), 6 / 0.2, 1e-6);
    advanceOnePoll();
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(LidAngleSensorTest, a_falling_angle_has_a_negative_velocity) {
    probeLidAt(100);
    const double start = machine.runLoop.currentMediaTime();
    lid->setAngle([start](double time) { return 100 - 50 * (time - start); });
    sensor->start();
    machine.runLoop.advance(0.2);
    EXPECT_NEAR(sensor->velocity(), -50, 1e-6);
}

TEST_F(LidAngleSensorTest, the_velocity_is_the_slope_from_the_oldest_sample_of_the_window) {
    probeLidAt(100);
    sensor->start();
    lid->setAngle(103);
    advanceOnePoll();
    EXPECT_NEAR(sensor->velocity(), 3 / pollInterval, 1e-5);
    advanceOnePoll();
    EXPECT_NEAR(sensor->velocity(), 3 / (2 * pollInterval), 1e-5);
}

TEST_F(LidAngleSensorTest, the_velocity_is_zero_a_window_after_the_lid_stopped) {
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

TEST_F(LidAngleSensorTest, after_a_gap_longer_than_the_window_the_velocity_waits_for_new_samples) {
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

TEST_F(LidAngleSensorTest, samples_closer_than_three_hundredths_of_a_second_give_no_velocity) {
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

TEST_F(LidAngleSensorTest, a_failed_or_short_read_while_polling_changes_nothing) {
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

TEST_F(LidAngleSensorTest, one_short_report_at_the_fifth_poll_is_skipped) {
    probeLidAt(100);
    lid->setReportAt(lid->readings() + 5, SimulatedHIDDevice::Report{1, 9});
    sensor->start();
    std::vector<double> angles;
    const auto subscription = sensor->angle().observe([&] { angles.push_back(sensor->angle()); });
    machine.runLoop.advance(1);
    EXPECT_THAT(angles, IsEmpty());
}

TEST_F(LidAngleSensorTest, a_device_that_vanishes_changes_nothing) {
    probeLidAt(100);
    sensor->start();
    lid->unplug();
    machine.runLoop.advance(2);
    EXPECT_TRUE(sensor->isRunning());
    EXPECT_EQ(sensor->angle(), 100);
    EXPECT_EQ(sensor->velocity(), 0);
}

TEST_F(LidAngleSensorTest, stop_ends_the_polling_and_the_velocity_also_when_called_twice) {
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

TEST_F(LidAngleSensorTest, a_later_start_uses_the_device_that_was_found_earlier) {
    probeLidAt(100);
    sensor->start();
    sensor->stop();
    machine.hid.forgetCalls();
    lid->setAngle(120);
    sensor->start();
    EXPECT_EQ(sensor->angle(), 120);
    EXPECT_THAT(machine.hid.calls(), IsEmpty());
}

TEST_F(LidAngleSensorTest, its_destruction_stops_everything) {
    probeLidAt(100);
    sensor->start();
    sensor.reset();
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
    EXPECT_EQ(machine.hid.calls().back(), "release");
}

} // namespace
} // namespace quorvane
