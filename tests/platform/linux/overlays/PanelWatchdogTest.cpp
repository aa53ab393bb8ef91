#include "platform/linux/overlays/PanelWatchdog.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/ChildProcess.h"
#include "tests/support/NoThreads.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// A connection whose server is the test.
class PanelWatchdogTest : public testing::Test {
protected:
    PanelWatchdogTest() { socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, m_ends.data()); }

    ~PanelWatchdogTest() override {
        close(m_ends[0]);
        close(m_ends[1]);
    }

    [[nodiscard]] int client() const { return m_ends[0]; }

    /// Whether the client's end is shut down within that time.
    [[nodiscard]] bool isShutDownWithin(double seconds) const {
        pollfd server{.fd = m_ends[1], .events = POLLIN, .revents = 0};
        poll(&server, 1, static_cast<int>(seconds * 1000));
        return (server.revents & POLLHUP) != 0;
    }

private:
    std::array<int, 2> m_ends{};
};

} // namespace

TEST_F(PanelWatchdogTest, ConnectionIsShutDownTwoSecondsAfterTheTimeLimitAndReported) {
    CaptureStderr();
    const auto start = Clock::now();
    const PanelWatchdog watchdog(client(), 0.5);
    EXPECT_TRUE(isShutDownWithin(10));
    EXPECT_GT(secondsSince(start), 2.45);
    EXPECT_LT(secondsSince(start), 3.0);
    waitFor(100ms);
    EXPECT_EQ(GetCapturedStderr(),
              "quorvane: the main thread hangs: removed a panel that was overdue\n");
}

TEST_F(PanelWatchdogTest, PanelThatGoesInTimeLeavesTheConnectionAlone) {
    std::optional<PanelWatchdog> watchdog(std::in_place, client(), 0.1);
    EXPECT_FALSE(isShutDownWithin(1.8)) << "late by less than 2 s";
    const auto start = Clock::now();
    watchdog.reset();
    EXPECT_LT(secondsSince(start), 0.2) << "the destructor does not wait";
    EXPECT_FALSE(isShutDownWithin(1));
}

TEST_F(PanelWatchdogTest, WithoutAThreadItSaysThatItDoesNotWatch) {
    EXPECT_TRUE(PanelWatchdog(client(), 0.1).isWatching());
    CaptureStderr();
    const NoThreads noThreads;
    EXPECT_FALSE(PanelWatchdog(client(), 0.1).isWatching());
    EXPECT_NE(GetCapturedStderr(), "");
}

TEST_F(PanelWatchdogTest, ProcessThatWasStoppedHasHalfASecondToRemoveThePanelItself) {
    ChildProcess child([this] {
        std::optional<PanelWatchdog> watchdog(std::in_place, client(), 0.1);
        raise(SIGSTOP);
        waitFor(250ms);
        watchdog.reset();
        return 0;
    });
    ASSERT_EQ(child.waitForStop(), SIGSTOP);
    EXPECT_FALSE(isShutDownWithin(3)) << "the process is stopped";
    child.send(SIGCONT);
    EXPECT_FALSE(isShutDownWithin(1));
}

TEST_F(PanelWatchdogTest, ProcessThatWasStoppedAndStillHangsLosesThePanel) {
    CaptureStderr();
    ChildProcess child([this] {
        const PanelWatchdog watchdog(client(), 0.1);
        raise(SIGSTOP);
        waitFor(10s);
        return 0;
    });
    ASSERT_EQ(child.waitForStop(), SIGSTOP);
    waitFor(2500ms);
    child.send(SIGCONT);
    EXPECT_TRUE(isShutDownWithin(1));
    waitFor(100ms);
    child.end();
    EXPECT_NE(GetCapturedStderr(), "");
}

} // namespace quorvane
