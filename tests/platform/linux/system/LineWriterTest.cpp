#include "platform/posix/LineWriter.h"

#include <array>
#include <chrono>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <optional>
#include <poll.h>
#include <pty.h>
#include <string>
#include <termios.h>
#include <unistd.h>

#include "tests/support/NoThreads.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using Clock = std::chrono::steady_clock;

/// Both ends of a pipe or terminal; what was read so far.
class Ends : NonCopyable {
public:
    static std::unique_ptr<Ends> ofPipe() {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe(ends.data()), 0);
        return std::make_unique<Ends>(ends[0], ends[1]);
    }

    static std::unique_ptr<Ends> ofTerminal() {
        int reader = -1;
        int writer = -1;
        EXPECT_EQ(openpty(&reader, &writer, nullptr, nullptr, nullptr), 0);
        termios settings{};
        tcgetattr(writer, &settings);
        cfmakeraw(&settings);
        tcsetattr(writer, TCSANOW, &settings);
        return std::make_unique<Ends>(reader, writer);
    }

    Ends(int reader, int writer) : m_reader(reader), m_writer(writer) {}

    ~Ends() {
        close(m_reader);
        close(m_writer);
    }

    [[nodiscard]] int writer() const { return m_writer; }

    /// As Ctrl-S and Ctrl-Q do.
    void stop() const { tcflow(m_writer, TCOOFF); }

    void goOn() const { tcflow(m_writer, TCOON); }

    /// Fills a pipe with "-".
    void fill() const {
        const int flags = fcntl(m_writer, F_GETFL);
        fcntl(m_writer, F_SETFL, flags | O_NONBLOCK);
        const std::string some(4096, '-');
        while (write(m_writer, some.data(), some.size()) > 0) {
        }
        fcntl(m_writer, F_SETFL, flags);
    }

    /// Reads until `end` was read, for 10 s at most; returns what came, without the filling.
    std::string readUntil(const std::string& end) {
        while (!m_text.ends_with(end) && readSome(10'000)) {
        }
        return m_text;
    }

    void readWhatIsThere() {
        while (readSome(0)) {
        }
    }

private:
    bool readSome(int milliseconds) {
        pollfd waiting{.fd = m_reader, .events = POLLIN, .revents = 0};
        std::array<char, 4096> bytes{};
        const ssize_t count =
            poll(&waiting, 1, milliseconds) > 0 ? read(m_reader, bytes.data(), bytes.size()) : 0;
        for (ssize_t at = 0; at < count; ++at)
            if (const char byte = bytes.at(static_cast<std::size_t>(at)); byte != '-')
                m_text += byte;
        return count > 0;
    }

    int m_reader;
    int m_writer;
    std::string m_text;
};

std::string lines(int first, int last) {
    std::string text;
    for (int number = first; number <= last; ++number)
        text += std::to_string(number) + "\n";
    return text;
}

void print(LineWriter& writer, int first, int last) {
    for (int number = first; number <= last; ++number)
        writer.print(std::to_string(number));
}

} // namespace

TEST(LineWriterTest, LinesReachATerminalInOrder) {
    const auto terminal = Ends::ofTerminal();
    LineWriter writer(terminal->writer());
    print(writer, 1, 200);
    EXPECT_EQ(terminal->readUntil("\n200\n"), lines(1, 200));
}

TEST(LineWriterTest, AStoppedTerminalHoldsNobodyUpAndGetsItsLinesInOrderAfterwards) {
    const auto terminal = Ends::ofTerminal();
    LineWriter writer(terminal->writer());
    terminal->stop();
    const auto start = Clock::now();
    print(writer, 1, 200);
    EXPECT_LT(Clock::now() - start, 500ms);
    terminal->goOn();
    EXPECT_EQ(terminal->readUntil("\n200\n"), lines(1, 200));
}

TEST(LineWriterTest, ATerminalThatNobodyReadsHoldsNobodyUp) {
    const auto terminal = Ends::ofTerminal();
    LineWriter writer(terminal->writer());
    const auto start = Clock::now();
    // It takes some of a line when it is nearly full.
    for (int count = 0; count < 3000; ++count)
        writer.print(std::string(100, 'x'));
    EXPECT_LT(Clock::now() - start, 5s);
}

TEST(LineWriterTest, AFullPipeHoldsNobodyUpAndGetsItsLinesInOrderAfterwards) {
    const auto pipe = Ends::ofPipe();
    LineWriter writer(pipe->writer());
    pipe->fill();
    const auto start = Clock::now();
    print(writer, 1, 200);
    EXPECT_LT(Clock::now() - start, 500ms);
    EXPECT_EQ(pipe->readUntil("\n200\n"), lines(1, 200));
}

TEST(LineWriterTest, AfterASecondWithoutRoomTheOldestLinesAreLostAndCounted) {
    const auto terminal = Ends::ofTerminal();
    LineWriter writer(terminal->writer());
    terminal->stop();
    // The thread has the first in hand.
    print(writer, 1, 8);
    waitFor(1100ms);
    print(writer, 9, 10);
    terminal->goOn();
    EXPECT_EQ(terminal->readUntil("\n10\n"), "1\n7 lines lost\n9\n10\n");
    writer.print("11");
    EXPECT_EQ(terminal->readUntil("\n11\n"), "1\n7 lines lost\n9\n10\n11\n") << "counted once";
}

TEST(LineWriterTest, NoMoreThanAThousandLinesWait) {
    const auto pipe = Ends::ofPipe();
    LineWriter writer(pipe->writer());
    pipe->fill();
    print(writer, 0, 0);
    waitFor(50ms);
    print(writer, 1, 1005);
    EXPECT_EQ(pipe->readUntil("\n1005\n"), "0\n5 lines lost\n" + lines(6, 1005));
}

TEST(LineWriterTest, WhatWaitsAtTheEndGetsATenthOfASecond) {
    const auto pipe = Ends::ofPipe();
    pipe->fill();
    std::optional<LineWriter> writer(std::in_place, pipe->writer());
    writer->print("1");
    const auto start = Clock::now();
    writer.reset();
    EXPECT_GE(Clock::now() - start, 95ms);
    EXPECT_LT(Clock::now() - start, 500ms);
}

TEST(LineWriterTest, WhatWaitsAtTheEndIsWrittenIfThereIsRoomAgain) {
    const auto terminal = Ends::ofTerminal();
    std::optional<LineWriter> writer(std::in_place, terminal->writer());
    terminal->stop();
    print(*writer, 1, 50);
    terminal->goOn();
    writer.reset();
    EXPECT_EQ(terminal->readUntil("\n50\n"), lines(1, 50));
}

TEST(LineWriterTest, WithoutAThreadLinesAreWrittenWhereThereIsRoomAndElseCounted) {
    const auto terminal = Ends::ofTerminal();
    const auto pipe = Ends::ofPipe();
    const NoThreads noThreads;
    LineWriter(terminal->writer()).print("to the terminal");
    EXPECT_EQ(terminal->readUntil("\n"), "to the terminal\n");
    LineWriter writer(pipe->writer());
    pipe->fill();
    print(writer, 1, 3);
    pipe->readWhatIsThere();
    writer.print("4");
    EXPECT_EQ(pipe->readUntil("4\n"), "3 lines lost\n4\n");
}

} // namespace quorvane
