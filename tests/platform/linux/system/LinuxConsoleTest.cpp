#include <array>
#include <chrono>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <thread>
#include <unistd.h>

#include "platform/linux/system/LinuxConsole.h"

namespace quorvane {

namespace {

class LinuxConsoleTest : public testing::Test {
protected:
    LinuxConsoleTest() { EXPECT_EQ(pipe(m_ends.data()), 0); }

    ~LinuxConsoleTest() override {
        closeEnd(0);
        closeEnd(1);
    }

    void closeEnd(std::size_t end) {
        if (m_ends.at(end) >= 0)
            close(m_ends.at(end));
        m_ends.at(end) = -1;
    }

    std::array<int, 2> m_ends{-1, -1};
};

TEST_F(LinuxConsoleTest, AClosedPipeIsIgnored) {
    LinuxConsole console(m_ends[1]);
    closeEnd(0);
    console.print("nobody hears this");
    console.print("nor this");
    // No SIGPIPE is left pending.
    sigset_t pending{};
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
}

TEST_F(LinuxConsoleTest, TheProcessKeepsItsOwnActionForSIGPIPE) {
    LinuxConsole console(m_ends[1]);
    closeEnd(0);
    console.print("nobody hears this");
    EXPECT_DEATH(
        {
            const char byte = 0;
            (void)!write(m_ends[1], &byte, 1);
        },
        "");
}

TEST_F(LinuxConsoleTest, AClosedDescriptorIsIgnoredAndItsReusedNumberNotWrittenTo) {
    const int number = m_ends[1];
    closeEnd(1);
    LinuxConsole console(number);
    std::array<int, 2> others{};
    ASSERT_EQ(pipe(others.data()), 0);
    // A writable pipe now has the descriptor's number.
    const int reader = dup(others[0]);
    ASSERT_EQ(dup2(others[1], number), number);
    console.print("lost");
    fcntl(reader, F_SETFL, O_NONBLOCK);
    char byte = 0;
    EXPECT_EQ(read(reader, &byte, 1), -1);
    for (const int descriptor : {others[0], others[1], number, reader})
        close(descriptor);
}

TEST_F(LinuxConsoleTest, ASignalThatWasPendingStaysPending) {
    sigset_t brokenPipe{};
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    sigset_t before{};
    pthread_sigmask(SIG_BLOCK, &brokenPipe, &before);
    raise(SIGPIPE);
    LinuxConsole console(m_ends[1]);
    closeEnd(0);
    console.print("nobody hears this");
    const timespec noTime{};
    EXPECT_EQ(sigtimedwait(&brokenPipe, nullptr, &noTime), SIGPIPE);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TEST_F(LinuxConsoleTest, ALineLongerThanThePipeComesWholeToASlowReader) {
    fcntl(m_ends[1], F_SETFL, O_NONBLOCK);
    std::optional<LinuxConsole> console(m_ends[1]);
    const std::string line(1'000'000, 'x');
    std::string received;
    std::thread reader([&] {
        std::array<char, 4096> bytes{};
        ssize_t count = 0;
        while ((count = read(m_ends[0], bytes.data(), bytes.size())) > 0)
            received.append(bytes.data(), static_cast<std::size_t>(count));
    });
    console->print(line);
    // The rest is written while the console ends.
    console.reset();
    closeEnd(1);
    reader.join();
    EXPECT_TRUE(received == line + "\n");
}

TEST_F(LinuxConsoleTest, AReaderThatStopsReadingDoesNotBlockTheProgram) {
    for (const int flags : {0, O_NONBLOCK}) {
        fcntl(m_ends[1], F_SETFL, flags);
        const auto start = std::chrono::steady_clock::now();
        {
            LinuxConsole console(m_ends[1]);
            console.print(std::string(1'000'000, 'x'));
        }
        // A tenth of a second, and some more for a busy machine.
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    }
}

} // namespace

} // namespace quorvane
