#include "platform/linux/overlays/StopSignals.h"
#include "base/NonCopyable.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <functional>

#include <gtest/gtest.h>

namespace quorvane {

namespace {

constexpr int allWell = 0;
constexpr int disturbed = 1;

/// A connection, on which the windows are that have to go.
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

/// A process as a shell starts it, in a group of its own: the system stops no other.
class Job : NonCopyable {
public:
    explicit Job(const std::function<int()>& work) : m_pid(fork()) {
        if (m_pid != 0)
            return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        setpgid(0, 0);
        _exit(work());
    }

    ~Job() {
        if (m_pid <= 0)
            return;
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }

    /// The signal that has stopped it; 0 if it has ended instead.
    [[nodiscard]] int awaitStop() {
        int status = 0;
        waitpid(m_pid, &status, WUNTRACED);
        if (WIFSTOPPED(status))
            return WSTOPSIG(status);
        m_pid = 0;
        return 0;
    }

    void stop() const { kill(m_pid, SIGTSTP); }

    void goOn() const { kill(m_pid, SIGCONT); }

    [[nodiscard]] int awaitEnd() {
        int status = 0;
        waitpid(m_pid, &status, 0);
        m_pid = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t m_pid;
};

class StopSignalsTest : public testing::TestWithParam<int> {};

} // namespace

TEST_P(StopSignalsTest, ConnectionIsShutDownBeforeTheProcessStopsAndItGoesOnAfter) {
    const Connection connection;
    Job job([&] {
        const StopSignals signals(connection.client());
        std::raise(GetParam());
        return allWell;
    });
    EXPECT_EQ(job.awaitStop(), GetParam());
    EXPECT_TRUE(connection.isShutDown());
    job.goOn();
    EXPECT_EQ(job.awaitEnd(), allWell);
}

INSTANTIATE_TEST_SUITE_P(Signals, StopSignalsTest, testing::Values(SIGTSTP, SIGTTIN, SIGTTOU));

TEST(StopSignals, ASecondStopWorksLikeTheFirst) {
    const Connection one;
    const Connection other;
    Job job([&] {
        {
            const StopSignals signals(one.client());
            std::raise(SIGTSTP);
        }
        const StopSignals signals(other.client());
        std::raise(SIGTSTP);
        return allWell;
    });
    EXPECT_EQ(job.awaitStop(), SIGTSTP);
    EXPECT_FALSE(other.isShutDown());
    job.goOn();
    EXPECT_EQ(job.awaitStop(), SIGTSTP);
    EXPECT_TRUE(other.isShutDown());
}

TEST(StopSignals, TwoStopsWithTheSamePanelUpBothStop) {
    const Connection connection;
    Job job([&] {
        const StopSignals signals(connection.client());
        std::raise(SIGTSTP);
        std::raise(SIGTSTP);
        struct sigaction action {};
        sigaction(SIGTSTP, nullptr, &action);
        return action.sa_handler == SIG_DFL ? disturbed : allWell;
    });
    EXPECT_EQ(job.awaitStop(), SIGTSTP);
    job.goOn();
    EXPECT_EQ(job.awaitStop(), SIGTSTP);
    job.goOn();
    EXPECT_EQ(job.awaitEnd(), allWell) << "it still listens for the third";
}

TEST(StopSignals, WithoutAPanelTheSystemStopsTheProcessAndTheConnectionStays) {
    const Connection connection;
    Job job([&] {
        { const StopSignals signals(connection.client()); }
        errno = ENOENT;
        std::raise(SIGTSTP);
        return errno == ENOENT ? allWell : disturbed;
    });
    EXPECT_EQ(job.awaitStop(), SIGTSTP);
    EXPECT_FALSE(connection.isShutDown());
    job.goOn();
    EXPECT_EQ(job.awaitEnd(), allWell);
}

TEST(StopSignals, ASystemCallThatWasWaitingGoesOnWaiting) {
    const Connection connection;
    std::array<int, 2> pipe{};
    ASSERT_EQ(pipe2(pipe.data(), O_CLOEXEC), 0);
    Job job([&] {
        const StopSignals signals(connection.client());
        char letter = 0;
        return read(pipe[0], &letter, 1) == 1 ? allWell : disturbed;
    });
    usleep(100'000);
    job.stop();
    EXPECT_EQ(job.awaitStop(), SIGTSTP);
    job.goOn();
    usleep(100'000);
    EXPECT_EQ(write(pipe[1], "a", 1), 1);
    EXPECT_EQ(job.awaitEnd(), allWell);
    close(pipe[0]);
    close(pipe[1]);
}

TEST(StopSignals, SignalThatWasToBeIgnoredStaysIgnored) {
    const Connection connection;
    Job job([&] {
        std::signal(SIGTSTP, SIG_IGN);
        const StopSignals signals(connection.client());
        std::raise(SIGTSTP);
        return connection.isShutDown() ? disturbed : allWell;
    });
    EXPECT_EQ(job.awaitStop(), 0);
}

} // namespace quorvane
