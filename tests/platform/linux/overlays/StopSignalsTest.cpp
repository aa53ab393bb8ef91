#include "platform/linux/overlays/StopSignals.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include <gtest/gtest.h>

#include "base/NonCopyable.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

constexpr int allWell = 0;
constexpr int disturbed = 1;

/// Stands in for the panels' connection to the X server.
class Connection : NonCopyable {
public:
    Connection() { socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, m_ends.data()); }

    ~Connection() {
        close(m_ends[0]);
        close(m_ends[1]);
    }

    [[nodiscard]] int client() const { return m_ends[0]; }

    [[nodiscard]] bool isShutDown() const {
        pollfd server{.fd = m_ends[1], .events = POLLIN, .revents = 0};
        poll(&server, 1, 0);
        return (server.revents & POLLHUP) != 0;
    }

private:
    std::array<int, 2> m_ends{};
};

class StopSignalsTest : public testing::TestWithParam<int> {};

} // namespace

TEST_P(StopSignalsTest, ConnectionIsShutDownBeforeTheProcessStopsAndItGoesOnAfter) {
    const Connection connection;
    ChildProcess child([&] {
        const StopSignals stopSignals(connection.client());
        std::raise(GetParam());
        return allWell;
    });
    EXPECT_EQ(child.waitForStop(), GetParam());
    EXPECT_TRUE(connection.isShutDown());
    child.send(SIGCONT);
    EXPECT_EQ(child.wait(), allWell);
}

INSTANTIATE_TEST_SUITE_P(Signals, StopSignalsTest, testing::Values(SIGTSTP, SIGTTIN, SIGTTOU));

TEST(StopSignals, ASecondStopWorksLikeTheFirst) {
    const Connection one;
    const Connection other;
    ChildProcess child([&] {
        {
            const StopSignals stopSignals(one.client());
            std::raise(SIGTSTP);
        }
        const StopSignals stopSignals(other.client());
        std::raise(SIGTSTP);
        return allWell;
    });
    EXPECT_EQ(child.waitForStop(), SIGTSTP);
    EXPECT_FALSE(other.isShutDown());
    child.send(SIGCONT);
    EXPECT_EQ(child.waitForStop(), SIGTSTP);
    EXPECT_TRUE(other.isShutDown());
}

TEST(StopSignals, TwoStopsWithTheSamePanelUpBothStop) {
    const Connection connection;
    ChildProcess child([&] {
        const StopSignals stopSignals(connection.client());
        std::raise(SIGTSTP);
        std::raise(SIGTSTP);
        struct sigaction action {};
        sigaction(SIGTSTP, nullptr, &action);
        return action.sa_handler == SIG_DFL ? disturbed : allWell;
    });
    EXPECT_EQ(child.waitForStop(), SIGTSTP);
    child.send(SIGCONT);
    EXPECT_EQ(child.waitForStop(), SIGTSTP);
    child.send(SIGCONT);
    EXPECT_EQ(child.wait(), allWell) << "the handler is still set";
}

TEST(StopSignals, WithoutAPanelTheSystemStopsTheProcessAndTheConnectionStays) {
    const Connection connection;
    ChildProcess child([&] {
        { const StopSignals stopSignals(connection.client()); }
        errno = ENOENT;
        std::raise(SIGTSTP);
        return errno == ENOENT ? allWell : disturbed;
    });
    EXPECT_EQ(child.waitForStop(), SIGTSTP);
    EXPECT_FALSE(connection.isShutDown());
    child.send(SIGCONT);
    EXPECT_EQ(child.wait(), allWell);
}

TEST(StopSignals, ABlockedSystemCallGoesOnAfterAStop) {
    const Connection connection;
    std::array<int, 2> pipe{};
    ASSERT_EQ(pipe2(pipe.data(), O_CLOEXEC), 0);
    ChildProcess child([&] {
        const StopSignals stopSignals(connection.client());
        char letter = 0;
        return read(pipe[0], &letter, 1) == 1 ? allWell : disturbed;
    });
    waitFor(100ms);
    child.send(SIGTSTP);
    EXPECT_EQ(child.waitForStop(), SIGTSTP);
    child.send(SIGCONT);
    waitFor(100ms);
    EXPECT_EQ(write(pipe[1], "a", 1), 1);
    EXPECT_EQ(child.wait(), allWell);
    close(pipe[0]);
    close(pipe[1]);
}

TEST(StopSignals, SignalThatWasToBeIgnoredStaysIgnored) {
    const Connection connection;
    ChildProcess child([&] {
        std::signal(SIGTSTP, SIG_IGN);
        const StopSignals stopSignals(connection.client());
        std::raise(SIGTSTP);
        return connection.isShutDown() ? disturbed : allWell;
    });
    EXPECT_EQ(child.wait(), allWell);
}

} // namespace quorvane
