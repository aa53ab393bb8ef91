#include "tests/platform/linux/keyboard/KeyReaderFixture.h"

namespace quorvane {

namespace {

class KeyReaderEndTest : public KeyReaderFixture {
protected:
    /// A reader that runs until it is sent a line, and then executes `commands`.
    void runUntilALineComes(const std::string& commands) {
        m_standIn.write("printf k\nread line <" + m_standIn.keys().string() + "\n" + commands +
                        "\n");
        startReader();
    }

    /// What the client writes to standard error about a reader that ends now.
    [[nodiscard]] std::string saysAtItsEnd() {
        testing::internal::CaptureStderr();
        m_standIn.send("end\n");
        EXPECT_TRUE(waitUntil([this] { return !m_reader->isRunning(); }));
        return testing::internal::GetCapturedStderr();
    }
};

constexpr auto failedHint = "Key reader failed — use the switch to start it again";

TEST_F(KeyReaderEndTest, ReaderThatDiesWhileKeysAreWantedLeavesItsReasonAndAHint) {
    runUntilALineComes("exit 7");
    const auto listening = countKeys();
    EXPECT_EQ(saysAtItsEnd(), "quorvane: the key reader ended: status 7\n");
    EXPECT_EQ(m_reader->obstacle().get(), failedHint);
}

TEST_F(KeyReaderEndTest, ReaderThatIsKilledLeavesTheSignal) {
    runUntilALineComes("kill -9 $$");
    const auto listening = countKeys();
    EXPECT_EQ(saysAtItsEnd(), "quorvane: the key reader ended: signal 9\n");
    EXPECT_EQ(m_reader->obstacle().get(), failedHint);
}

TEST_F(KeyReaderEndTest, ReaderThatDiesWhileNoKeysAreWantedLeavesNoHint) {
    runUntilALineComes("exit 7");
    EXPECT_EQ(saysAtItsEnd(), "quorvane: the key reader ended: status 7\n");
    EXPECT_EQ(m_reader->obstacle().get(), "");
}

TEST_F(KeyReaderEndTest, ReaderThatDiedIsStartedAgainByTheNextStart) {
    runUntilALineComes("exit 7");
    auto listening = countKeys();
    EXPECT_NE(saysAtItsEnd(), "");
    listening.cancel();
    m_standIn.write("printf k\n" + m_standIn.relay());
    startReader();
    EXPECT_EQ(m_reader->obstacle().get(), "");
    listening = countKeys();
    EXPECT_TRUE(wasTold("o"));
    m_standIn.send("k");
    EXPECT_TRUE(waitUntil([this] { return m_keys == 1; }));
}

TEST_F(KeyReaderEndTest, ReaderThatRefusesASessionNotOnASeatLeavesAHint) {
    m_standIn.write("exit 3\n");
    ASSERT_TRUE(m_reader->start());
    const auto listening = countKeys();
    testing::internal::CaptureStderr();
    EXPECT_TRUE(hasHint("No active session at this screen — switch it on again there"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "quorvane: the key reader ended: status 3\n");
}

TEST_F(KeyReaderEndTest, ReaderThatEndsBeforeItRunsLeavesAHint) {
    for (const auto* status : {"0", "1", "2", "126", "127"}) {
        m_standIn.write(std::string("exit ") + status + "\n");
        ASSERT_TRUE(m_reader->start());
        EXPECT_EQ(m_reader->obstacle().get(), "");
        const auto listening = countKeys();
        testing::internal::CaptureStderr();
        EXPECT_TRUE(hasHint(failedHint));
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  std::string("quorvane: the key reader ended: status ") + status + "\n");
    }
}

TEST_F(KeyReaderEndTest, ReaderThatClosesItsOutputIsMadeToEnd) {
    runUntilALineComes("exec >&-\ncat >/dev/null\nexit 5");
    EXPECT_EQ(saysAtItsEnd(), "quorvane: the key reader ended: status 5\n");
}

} // namespace

} // namespace quorvane
