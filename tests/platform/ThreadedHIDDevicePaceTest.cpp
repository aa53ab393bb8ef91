// How often a device that another thread reads is asked, and how old its answers are.

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <gmock/gmock.h>
#include <iostream>
#include <memory>
#include <thread>
#include <vector>

#include "platform/ThreadedHIDDevice.h"
#include "tests/support/FakeHIDDevice.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using Clock = std::chrono::steady_clock;

class ThreadedHIDDevicePaceTest : public testing::Test {
protected:
    /// Reads the device 30 times a second for `seconds`, and returns the age of the answer of each
    /// reading that succeeded.
    std::vector<std::chrono::microseconds> poll(int seconds) {
        std::vector<std::chrono::microseconds> ages;
        auto next = Clock::now();
        for (int reading = 0; reading < 30 * seconds; ++reading) {
            if (readAngle(m_device) > 0)
                ages.push_back(std::chrono::duration_cast<std::chrono::microseconds>(
                    Clock::now() - m_hardware->answered.load()));
            next += 33333us;
            std::this_thread::sleep_until(next);
        }
        return ages;
    }

    const std::shared_ptr<FakeHIDHardware> m_hardware = std::make_shared<FakeHIDHardware>();
    ThreadedHIDDevice m_device{FakeHIDDevice::maker(m_hardware)};
};

TEST_F(ThreadedHIDDevicePaceTest, APollGetsAnAnswerOfAFewMilliseconds) {
    ASSERT_EQ(m_device.open(), hidSuccess);
    auto ages = poll(2);
    ASSERT_GT(ages.size(), 50U);
    std::sort(ages.begin(), ages.end());
    const auto median = ages[ages.size() / 2];
    std::cout << "answers: " << ages.size() << ", median age " << median.count() << " us, oldest "
              << ages.back().count() << " us\n";
    EXPECT_LT(median, 10ms);
    EXPECT_LE(ages.back(), 40ms);
}

TEST_F(ThreadedHIDDevicePaceTest, ADeviceIsReadAsOftenAsItIsPolled) {
    ASSERT_EQ(m_device.open(), hidSuccess);
    poll(2);
    EXPECT_GE(m_hardware->readings, 50);
    EXPECT_LE(m_hardware->readings, 63);
}

TEST_F(ThreadedHIDDevicePaceTest, ADeviceThatAnswersWithinAPollIsReadInEach) {
    m_hardware->answersAfter = 20ms;
    ASSERT_EQ(m_device.open(), hidSuccess);
    const auto ages = poll(2);
    EXPECT_GE(m_hardware->readings, 50);
    // On a busy machine some answers come too late.
    EXPECT_GT(ages.size(), 30U);
}

TEST_F(ThreadedHIDDevicePaceTest, ASlowDeviceIsLeftAloneAsLongAsItTookToAnswer) {
    m_hardware->answersAfter = 100ms;
    ASSERT_EQ(m_device.open(), hidSuccess);
    const auto ages = poll(2);
    EXPECT_LE(m_hardware->readings, 11);
    EXPECT_GE(m_hardware->readings, 6);
    EXPECT_GE(ages.size(), 5U);
}

TEST_F(ThreadedHIDDevicePaceTest, ASecondAfterTheLastPollTheDeviceIsClosedAndLeftAlone) {
    ASSERT_EQ(m_device.open(), hidSuccess);
    EXPECT_EQ(readAngle(m_device), 112);
    EXPECT_TRUE(waitUntil([&] { return m_hardware->open == 0; }, 3s));
    const int readings = m_hardware->readings;
    waitFor(200ms);
    EXPECT_EQ(m_hardware->readings, readings);
    EXPECT_EQ(m_hardware->openings, 1);
}

TEST_F(ThreadedHIDDevicePaceTest, TheSecondPollAfterARestGetsAnAnswer) {
    ASSERT_EQ(m_device.open(), hidSuccess);
    EXPECT_EQ(readAngle(m_device), 112);
    ASSERT_TRUE(waitUntil([&] { return m_hardware->open == 0; }, 3s));
    EXPECT_EQ(readAngle(m_device), -ETIMEDOUT);
    waitFor(33ms);
    EXPECT_EQ(readAngle(m_device), 112);
}

TEST_F(ThreadedHIDDevicePaceTest, ADeviceThatCannotBeOpenedAfterARestFails) {
    ASSERT_EQ(m_device.open(), hidSuccess);
    ASSERT_TRUE(waitUntil([&] { return m_hardware->open == 0; }, 3s));
    m_hardware->openResult = EACCES;
    EXPECT_EQ(m_device.open(), EACCES);
}

} // namespace

} // namespace quorvane
