// What a caller gets from a device that another thread reads.

#include <array>
#include <cerrno>
#include <chrono>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <thread>

#include "platform/ThreadedHIDDevice.h"
#include "tests/support/FakeHIDDevice.h"
#include "tests/support/NoThreads.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::Ge;
using testing::Lt;

class ThreadedHIDDeviceTest : public testing::Test {
protected:
    ~ThreadedHIDDeviceTest() override {
        m_device.reset();
        m_hardware->setStuck(false);
    }

    /// How long `call` takes.
    template <typename Call>
    static std::chrono::milliseconds time(const Call& call) {
        const auto begin = std::chrono::steady_clock::now();
        call();
        return std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - begin);
    }

    const std::shared_ptr<FakeHIDHardware> m_hardware = std::make_shared<FakeHIDHardware>();
    std::optional<ThreadedHIDDevice> m_device{FakeHIDDevice::maker(m_hardware)};
};

TEST_F(ThreadedHIDDeviceTest, ADeviceThatAnswersSlowlyAtFirstIsReadWhenItIsOpened) {
    m_hardware->answersAfter = 60ms;
    ASSERT_EQ(m_device->open(), hidSuccess);
    EXPECT_EQ(readAngle(*m_device), 112);
}

TEST_F(ThreadedHIDDeviceTest, ADeviceThatNeverAnswersIsWaitedForAQuarterOfASecondOnce) {
    m_hardware->answersAfter = 10ms;
    ASSERT_EQ(m_device->open(), hidSuccess);
    m_hardware->setStuck(true);
    EXPECT_THAT(time([&] { EXPECT_EQ(readAngle(*m_device), -ETIMEDOUT); }),
                testing::AllOf(Ge(200ms), Lt(400ms)));
    for (int call = 0; call < 10; ++call)
        EXPECT_THAT(time([&] { EXPECT_EQ(readAngle(*m_device), -ETIMEDOUT); }), Lt(50ms));
    EXPECT_THAT(time([&] { EXPECT_EQ(m_device->open(), hidSuccess); }), Lt(50ms));
    EXPECT_THAT(time([&] { EXPECT_EQ(readAngle(*m_device), -ETIMEDOUT); }), Lt(50ms));
}

TEST_F(ThreadedHIDDeviceTest, ADeviceThatHangsWhileItIsOpenedCannotBeUsed) {
    m_hardware->setStuck(true);
    EXPECT_THAT(time([&] { EXPECT_EQ(m_device->open(), ETIMEDOUT); }),
                testing::AllOf(Ge(200ms), Lt(400ms)));
    EXPECT_THAT(time([&] { EXPECT_EQ(m_device->open(), ETIMEDOUT); }), Lt(50ms));
    EXPECT_EQ(readAngle(*m_device), -ENODEV);
}

TEST_F(ThreadedHIDDeviceTest, WhatIsReadAheadNeedNotBeWaitedFor) {
    m_hardware->answersAfter = 200ms;
    EXPECT_EQ(m_device->readAhead(), hidSuccess);
    ASSERT_TRUE(waitUntil([&] { return m_hardware->answered.load().time_since_epoch() != 0ns; }));
    EXPECT_THAT(time([&] {
                    EXPECT_EQ(m_device->open(), hidSuccess);
                    EXPECT_EQ(readAngle(*m_device), 112);
                }),
                Lt(100ms));
}

TEST_F(ThreadedHIDDeviceTest, AnAnswerOlderThanAPollIsNotGiven) {
    ASSERT_EQ(m_device->open(), hidSuccess);
    EXPECT_EQ(readAngle(*m_device), 112);
    m_hardware->setStuck(true);
    EXPECT_TRUE(waitUntil([&] { return readAngle(*m_device) == -ETIMEDOUT; }));
    m_hardware->angle = 90;
    m_hardware->setStuck(false);
    EXPECT_TRUE(waitUntil([&] { return readAngle(*m_device) == 90; }));
}

TEST_F(ThreadedHIDDeviceTest, AFailedReadingIsPassedOn) {
    ASSERT_EQ(m_device->open(), hidSuccess);
    m_hardware->readResult = EPIPE;
    EXPECT_TRUE(waitUntil([&] { return readAngle(*m_device) == -EPIPE; }));
    m_hardware->readResult = hidSuccess;
    EXPECT_TRUE(waitUntil([&] { return readAngle(*m_device) == 112; }));
    EXPECT_EQ(m_hardware->openings, 1);
}

TEST_F(ThreadedHIDDeviceTest, ADeviceThatMayNotBeOpenedFailsWithItsError) {
    m_hardware->openResult = EACCES;
    EXPECT_EQ(m_device->open(), EACCES);
    EXPECT_EQ(readAngle(*m_device), -ENODEV);
}

TEST_F(ThreadedHIDDeviceTest, ADeviceThatWasReplacedIsReadInItsNewPlace) {
    ASSERT_EQ(m_device->open(), hidSuccess);
    m_hardware->readResult = ENODEV;
    ASSERT_TRUE(waitUntil([&] { return readAngle(*m_device) == -ENODEV; }));
    const auto again = std::make_shared<FakeHIDHardware>();
    again->angle = 90;
    m_device->replace(FakeHIDDevice::maker(again));
    EXPECT_TRUE(waitUntil([&] { return readAngle(*m_device) == 90; }, 500ms));
    EXPECT_EQ(m_hardware->open, 0);
}

TEST_F(ThreadedHIDDeviceTest, ADeviceThatIsGoneIsOpenedAgainASecondLater) {
    ASSERT_EQ(m_device->open(), hidSuccess);
    m_hardware->readResult = ENODEV;
    ASSERT_TRUE(waitUntil([&] { return readAngle(*m_device) == -ENODEV; }));
    EXPECT_EQ(m_device->open(), ENODEV);
    m_hardware->readResult = hidSuccess;
    const auto gone = std::chrono::steady_clock::now();
    EXPECT_TRUE(waitUntil([&] { return readAngle(*m_device) == 112; }));
    EXPECT_GT(std::chrono::steady_clock::now() - gone, 800ms);
    EXPECT_EQ(m_hardware->openings, 2);
}

TEST_F(ThreadedHIDDeviceTest, TheEndDoesNotWaitForADeviceThatHangs) {
    ASSERT_EQ(m_device->open(), hidSuccess);
    m_hardware->setStuck(true);
    ASSERT_TRUE(waitUntil([&] { return readAngle(*m_device) == -ETIMEDOUT; }));
    EXPECT_THAT(time([&] { m_device.reset(); }), Lt(50ms));
    m_hardware->setStuck(false);
    EXPECT_TRUE(waitUntil([&] { return m_hardware->open == 0; }));
}

TEST_F(ThreadedHIDDeviceTest, AThreadThatCannotStartIsAFailure) {
    {
        const NoThreads memoryIsShort;
        EXPECT_EQ(m_device->open(), EAGAIN);
    }
    EXPECT_EQ(m_device->open(), hidSuccess);
    EXPECT_EQ(readAngle(*m_device), 112);
}

TEST_F(ThreadedHIDDeviceTest, AReportIsCutToTheBuffer) {
    ASSERT_EQ(m_device->open(), hidSuccess);
    std::array<std::uint8_t, 8> bytes{};
    bytes.fill(0xEE);
    std::size_t length = 2;
    ASSERT_EQ(m_device->getReport(HIDReportType::Feature, 1, bytes, length), hidSuccess);
    EXPECT_EQ(length, 2U);
    EXPECT_THAT(bytes, ElementsAre(1, 112, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE));
    length = 100;
    ASSERT_EQ(m_device->getReport(HIDReportType::Feature, 1, std::span(bytes).first(1), length),
              hidSuccess);
    EXPECT_EQ(length, 1U);
    length = 0;
    EXPECT_EQ(m_device->getReport(HIDReportType::Feature, 1, bytes, length), EINVAL);
}

} // namespace

} // namespace quorvane
