// The run loop while the wall clock is set.

#include <chrono>
#include <ctime>
#include <gtest/gtest.h>
#include <string>

#include "platform/linux/system/LinuxRunLoop.h"
#include "tests/support/QtApplication.h"
#include "tests/support/Waiting.h"

namespace {

/// Seconds by which the wall clock is set.
std::time_t wallClockOffset = 0;

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names.
extern "C" {

int __real_clock_gettime(clockid_t clock, timespec* time);

int __wrap_clock_gettime(clockid_t clock, timespec* time) {
    const int result = __real_clock_gettime(clock, time);
    if (clock == CLOCK_REALTIME)
        time->tv_sec += wallClockOffset;
    return result;
}
}

// NOLINTEND(bugprone-reserved-identifier)

namespace quorvane {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::time_t oneDay = 86400;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// The parameter is by how much the clock is set.
class LinuxRunLoopClockTest : public testing::TestWithParam<std::time_t> {
protected:
    ~LinuxRunLoopClockTest() override { wallClockOffset = 0; }

    static void setWallClock() { wallClockOffset = GetParam(); }

    QtApplication m_application;
    LinuxRunLoop m_runLoop;
};

TEST_P(LinuxRunLoopClockTest, ARepeatingTimerKeepsItsPace) {
    int firings = 0;
    const auto start = Clock::now();
    const auto timer = m_runLoop.scheduledTimer(0.1, true, [&](Timer&) { ++firings; });
    waitUntil([&] { return firings == 3; });
    setWallClock();
    EXPECT_TRUE(waitUntil([&] { return firings >= 10; }, 5s));
    EXPECT_GE(secondsSince(start), 0.99);
    EXPECT_LT(secondsSince(start), 2.0);
    EXPECT_LE(firings, 20) << "all that the set clock would make due";
}

TEST_P(LinuxRunLoopClockTest, ADelayedBlockComesAfterItsDelay) {
    bool came = false;
    const auto start = Clock::now();
    m_runLoop.asyncAfter(0.5, [&] { came = true; });
    setWallClock();
    EXPECT_TRUE(waitUntil([&] { return came; }, 5s));
    EXPECT_GE(secondsSince(start), 0.49);
    EXPECT_LT(secondsSince(start), 1.5);
}

TEST_P(LinuxRunLoopClockTest, OnlyTheDateIsSet) {
    const double media = m_runLoop.currentMediaTime();
    const double date = m_runLoop.currentDate();
    setWallClock();
    EXPECT_NEAR(m_runLoop.currentMediaTime(), media, 1);
    EXPECT_NEAR(m_runLoop.currentDate(), date + static_cast<double>(GetParam()), 1);
}

INSTANTIATE_TEST_SUITE_P(SetBy, LinuxRunLoopClockTest, testing::Values(-oneDay, oneDay),
                         [](const auto& offset) {
                             return std::string(offset.param < 0 ? "ADayBack" : "ADayAhead");
                         });

} // namespace

} // namespace quorvane
