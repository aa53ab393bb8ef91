#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <future>
#include <mutex>
#include <thread>

#include <gmock/gmock.h>

#include "platform/linux/common/FileDescriptor.h"
#include "platform/linux/keyboard/reader/ReaderLoop.h"
#include "tests/support/FakeKeyboardList.h"
#include "tests/support/KeyboardPipe.h"
#include "tests/support/OpenFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

/// A user whom the test moves. Any thread.
class FakeSeats final : public Seats {
public:
    void move(const std::set<std::string>& seats) {
        const std::lock_guard lock(m_mutex);
        m_seats = seats;
        m_changed.raise();
    }

    [[nodiscard]] std::array<pollfd, 2> polled() const override {
        return {{{.fd = -1, .events = 0, .revents = 0},
                 {.fd = m_changed.descriptor(), .events = POLLIN, .revents = 0}}};
    }

    [[nodiscard]] std::set<std::string> update() override {
        const std::lock_guard lock(m_mutex);
        m_changed.clear();
        return m_seats;
    }

private:
    std::mutex m_mutex;
    std::set<std::string> m_seats{"seat0"};
    ReadySignal m_changed;
};

/// A loop in a thread of its own, with a user at the first seat and one keyboard.
class ReaderLoopTest : public testing::Test {
protected:
    ReaderLoopTest() {
        std::signal(SIGPIPE, SIG_IGN);
        openPipe(m_input, m_inputEnd);
        openPipe(m_outputEnd, m_output);
        m_list.plugIn(m_keyboard.node());
    }

    ~ReaderLoopTest() override { m_inputEnd = {}; }

    static void openPipe(FileDescriptor& reading, FileDescriptor& writing) {
        std::array<int, 2> ends{};
        ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        reading = FileDescriptor(ends[0]);
        writing = FileDescriptor(ends[1]);
    }

    void start() {
        m_ended = std::async(std::launch::async, [this] {
            ReaderLoop(m_input.get(), m_output.get(), m_seats, m_keyboards).run();
        });
        ASSERT_EQ(output(1), "k") << "it runs";
    }

    void startListening() {
        start();
        send("o");
        ASSERT_TRUE(waitUntil([this] { return isOpen(m_keyboard); }));
    }

    void send(std::string_view bytes) const {
        ASSERT_EQ(write(m_inputEnd.get(), bytes.data(), bytes.size()),
                  static_cast<ssize_t>(bytes.size()));
    }

    /// The next `count` bytes of the output, or fewer after 10 s.
    [[nodiscard]] std::string output(std::size_t count) const {
        std::string bytes(count, ' ');
        std::size_t size = 0;
        pollfd readable{.fd = m_outputEnd.get(), .events = POLLIN, .revents = 0};
        while (size < count && poll(&readable, 1, 10'000) > 0) {
            const ssize_t some = read(m_outputEnd.get(), &bytes[size], count - size);
            if (some <= 0)
                break;
            size += static_cast<std::size_t>(some);
        }
        return bytes.substr(0, size);
    }

    /// Ends the input; everything that comes out until the loop has ended.
    [[nodiscard]] std::string end() {
        m_inputEnd = {};
        EXPECT_TRUE(hasEnded());
        m_output = {};
        return output(1000);
    }

    [[nodiscard]] bool hasEnded() const {
        return m_ended.wait_for(10s) == std::future_status::ready;
    }

    /// Whether the loop has the keyboard open; the test has its pipe open itself.
    [[nodiscard]] static bool isOpen(const KeyboardPipe& keyboard) {
        std::size_t count = 0;
        for (const auto& name : openDescriptors()) {
            std::error_code error;
            count +=
                std::filesystem::read_symlink("/proc/self/fd/" + name, error) == keyboard.node();
        }
        return count > 1;
    }

    [[nodiscard]] bool closes() const {
        return waitUntil([this] { return !isOpen(m_keyboard); });
    }

    TemporaryFolder m_folder;
    KeyboardPipe m_keyboard{m_folder.path() / "event0"};
    FakeSeats m_seats;
    FakeKeyboardList m_list;
    Keyboards m_keyboards{m_list, [](const KeyboardNode&) {}};
    FileDescriptor m_input;
    FileDescriptor m_inputEnd;
    FileDescriptor m_output;
    FileDescriptor m_outputEnd;
    // Last, as its destructor waits for the thread.
    std::future<void> m_ended;
};

TEST_F(ReaderLoopTest, NoKeyboardIsOpenBeforeItIsAskedFor) {
    start();
    EXPECT_FALSE(isOpen(m_keyboard));
    m_keyboard.send(KEY_A, 1);
    EXPECT_EQ(end(), "");
}

TEST_F(ReaderLoopTest, EachKeyIsTheSameByteAndModifiersAndRepeatsAreNone) {
    startListening();
    for (const int key : {KEY_A, KEY_LEFTSHIFT, KEY_B, KEY_ENTER})
        for (const int value : {1, 2, 0})
            m_keyboard.send(key, value);
    EXPECT_EQ(output(3), "kkk");
    m_keyboard.send(KEY_Z, 1);
    EXPECT_EQ(output(1), "k");
    EXPECT_EQ(end(), "");
}

TEST_F(ReaderLoopTest, ClosingClosesTheKeyboardsAndTheyOpenAgain) {
    startListening();
    send("c");
    EXPECT_TRUE(closes());
    m_keyboard.send(KEY_A, 1);
    send("o");
    EXPECT_TRUE(waitUntil([this] { return isOpen(m_keyboard); }));
    EXPECT_EQ(end(), "k") << "what a pipe, unlike a keyboard, has kept";
}

TEST_F(ReaderLoopTest, OtherBytesOfTheInputChangeNothing) {
    start();
    send(std::string(200, 'x') + "c\n" + '\0' + "co");
    ASSERT_TRUE(waitUntil([this] { return isOpen(m_keyboard); }));
    send("ooOCk\xff");
    m_keyboard.send(KEY_A, 1);
    EXPECT_EQ(output(1), "k");
    EXPECT_TRUE(isOpen(m_keyboard));
}

TEST_F(ReaderLoopTest, AUserWhoIsNotAtTheSeatHasTheKeyboardsClosedUntilTheyAreBack) {
    startListening();
    m_seats.move({});
    EXPECT_TRUE(closes());
    send("co");
    m_list.plugIn(m_keyboard.node());
    m_seats.move({"seat1"});
    waitFor(50ms);
    EXPECT_FALSE(isOpen(m_keyboard));
    m_seats.move({"seat0"});
    EXPECT_TRUE(waitUntil([this] { return isOpen(m_keyboard); }));
    m_keyboard.send(KEY_A, 1);
    EXPECT_EQ(output(1), "k");
}

TEST_F(ReaderLoopTest, AUserWhoComesBackToASwitchedOffReaderIsNotHeard) {
    startListening();
    m_seats.move({});
    EXPECT_TRUE(closes());
    send("c");
    m_seats.move({"seat0"});
    waitFor(50ms);
    EXPECT_FALSE(isOpen(m_keyboard));
    EXPECT_EQ(end(), "");
}

TEST_F(ReaderLoopTest, AKeyboardThatIsPluggedInIsHeard) {
    startListening();
    const KeyboardPipe later(m_folder.path() / "event1");
    m_list.plugIn(later.node());
    ASSERT_TRUE(waitUntil([&] { return isOpen(later); }));
    later.send(KEY_A, 1);
    EXPECT_EQ(output(1), "k");
}

TEST_F(ReaderLoopTest, AKeyboardThatIsPulledOutWithAKeyDownEndsNothing) {
    startListening();
    m_keyboard.send(KEY_A, 1);
    m_keyboard.unplug();
    EXPECT_EQ(output(1), "k");
    const KeyboardPipe again(m_folder.path() / "event0");
    m_list.plugIn(again.node());
    ASSERT_TRUE(waitUntil([&] { return isOpen(again); }));
    again.send(KEY_A, 1);
    EXPECT_EQ(output(1), "k");
}

TEST_F(ReaderLoopTest, ItEndsWithItsInput) {
    startListening();
    EXPECT_EQ(end(), "");
}

TEST_F(ReaderLoopTest, ItEndsWithItsOutput) {
    startListening();
    m_outputEnd = {};
    EXPECT_TRUE(hasEnded());
}

TEST_F(ReaderLoopTest, WhatDoesNotFitIsDroppedAndItStillListensAndEnds) {
    ASSERT_GE(fcntl(m_output.get(), F_SETPIPE_SZ, 4096), 4096);
    startListening();
    for (int i = 0; i < 5000; ++i) {
        m_keyboard.send(KEY_A, 1);
        m_keyboard.send(KEY_A, 0);
        // A pipe, unlike a keyboard, does not take events without end.
        if (i % 100 == 99) {
            ASSERT_TRUE(waitUntil([this] { return m_keyboard.isEmpty(); }));
        }
    }
    EXPECT_EQ(output(4096), std::string(4096, 'k'));
    m_keyboard.send(KEY_A, 1);
    EXPECT_EQ(output(1), "k");
    EXPECT_EQ(end(), "");
}

TEST_F(ReaderLoopTest, WithAFullOutputItEndsWhenThatIsClosed) {
    ASSERT_GE(fcntl(m_output.get(), F_SETPIPE_SZ, 4096), 4096);
    startListening();
    const std::string fill(4096, 'x');
    ASSERT_EQ(write(m_output.get(), fill.data(), fill.size()), 4096);
    m_keyboard.send(KEY_A, 1);
    m_outputEnd = {};
    EXPECT_TRUE(hasEnded());
}

} // namespace

} // namespace quorvane
