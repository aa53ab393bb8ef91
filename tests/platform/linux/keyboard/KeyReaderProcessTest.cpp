#include "tests/platform/linux/keyboard/KeyReaderFixture.h"

#include <algorithm>
#include <thread>

#include "tests/support/OpenFiles.h"

namespace quorvane {

namespace {

using KeyReaderProcessTest = KeyReaderFixture;

TEST_F(KeyReaderProcessTest, ReaderRunsOnceItsFirstByteHasComeHoweverLate) {
    m_standIn.write(m_standIn.relay());
    ASSERT_TRUE(m_reader->start());
    const auto listening = countKeys();
    waitFor(200ms);
    EXPECT_FALSE(m_reader->isRunning());
    EXPECT_EQ(m_standIn.told(), "") << "it is told nothing before it runs";
    m_standIn.send("k");
    EXPECT_TRUE(waitUntil([this] { return m_reader->isRunning(); }));
    EXPECT_TRUE(wasTold("o"));
    EXPECT_EQ(m_keys, 0) << "the first byte is no key";
}

TEST_F(KeyReaderProcessTest, EachByteIsAKey) {
    startReader();
    const auto listening = countKeys();
    m_standIn.send("kkk");
    EXPECT_TRUE(waitUntil([this] { return m_keys == 3; }));
    m_standIn.send("k");
    EXPECT_TRUE(waitUntil([this] { return m_keys == 4; }));
}

TEST_F(KeyReaderProcessTest, OtherBytesMeanNothing) {
    m_standIn.write(m_standIn.relay());
    ASSERT_TRUE(m_reader->start());
    const auto listening = countKeys();
    using namespace std::string_view_literals;
    m_standIn.send("K\0\xFFo\n"sv);
    waitFor(100ms);
    EXPECT_FALSE(m_reader->isRunning());
    m_standIn.send("xkz\0k\xEBk"sv);
    EXPECT_TRUE(waitUntil([this] { return m_keys == 2; }));
}

TEST_F(KeyReaderProcessTest, KeyboardsAreOpenOnlyWhileSomebodyListens) {
    startReader();
    auto one = countKeys();
    auto other = countKeys();
    EXPECT_TRUE(wasTold("o"));
    one.cancel();
    waitFor(50ms);
    EXPECT_EQ(m_standIn.told(), "o");
    other.cancel();
    EXPECT_TRUE(wasTold("oc"));
    one = countKeys();
    EXPECT_TRUE(wasTold("oco"));
}

TEST_F(KeyReaderProcessTest, KeysAreLostWhileNobodyListens) {
    startReader();
    m_standIn.send("kk");
    waitFor(100ms);
    const auto listening = countKeys();
    m_standIn.send("k");
    EXPECT_TRUE(waitUntil([this] { return m_keys > 0; }));
    EXPECT_EQ(m_keys, 1);
}

TEST_F(KeyReaderProcessTest, FloodOfKeysIsTakenInSmallPieces) {
    startReader();
    const auto listening = countKeys();
    EXPECT_TRUE(wasTold("o"));
    m_standIn.send(std::string(5000, 'k'));
    // All of it waits in the pipe when the event loop turns again.
    std::this_thread::sleep_for(300ms);
    int most = 0;
    for (int turn = 0; turn < 5000 && m_keys < 5000; ++turn) {
        const int before = m_keys;
        QCoreApplication::processEvents();
        most = std::max(most, m_keys - before);
    }
    EXPECT_EQ(m_keys, 5000);
    EXPECT_LE(most, 64);
}

/// Switches the keys on and off while the reader does not read its input, until that is full; then
/// it reads all.
class FullInputTest : public KeyReaderFixture {
protected:
    [[nodiscard]] std::string toldAfterwards(bool listensAtTheEnd) {
        m_standIn.write("printf k\nread line <" + m_standIn.keys().string() + "\ncat >>" +
                        m_standIn.toldFile().string() + "\n");
        startReader();
        Subscription listening;
        for (int i = 0; i < 5000; ++i) {
            listening = countKeys();
            listening.cancel();
        }
        if (listensAtTheEnd)
            listening = countKeys();
        m_standIn.send("go\n");
        const char last = listensAtTheEnd ? 'o' : 'c';
        EXPECT_TRUE(waitUntil([this, last] { return m_standIn.told().ends_with(last); }));
        waitFor(100ms);
        return m_standIn.told();
    }
};

TEST_F(FullInputTest, ReaderLearnsAtLastThatTheKeysAreWanted) {
    const auto told = toldAfterwards(true);
    EXPECT_LT(told.size(), 10000U) << "its input was never full";
    EXPECT_TRUE(told.ends_with("co"));
}

TEST_F(FullInputTest, ReaderLearnsAtLastThatTheKeysAreNotWanted) {
    const auto told = toldAfterwards(false);
    EXPECT_LT(told.size(), 10000U) << "its input was never full";
    EXPECT_TRUE(told.ends_with("oc"));
}

TEST_F(KeyReaderProcessTest, ReaderHasAProcessGroupOfItsOwn) {
    m_standIn.write("echo $$ $(cut -d' ' -f5 /proc/$$/stat) >" + m_standIn.toldFile().string() +
                    "\nprintf k\ncat\n");
    startReader();
    const auto told = m_standIn.told();
    const auto process = told.substr(0, told.find(' '));
    EXPECT_EQ(told, process + " " + process + "\n");
}

TEST_F(KeyReaderProcessTest, ThereIsOneReader) {
    startReader();
    const auto before = openDescriptors();
    EXPECT_TRUE(m_reader->start());
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(KeyReaderProcessTest, WithoutAKeyboardThatMayBeReadNothingIsStarted) {
    m_keyboards = {m_standIn.folder().path() / "event1"};
    EXPECT_FALSE(m_reader->start());
    m_keyboards.clear();
    EXPECT_FALSE(m_reader->start());
}

TEST_F(KeyReaderProcessTest, ProgramThatCannotBeStartedLeavesNothingBehind) {
    QCoreApplication::processEvents();
    const auto before = openDescriptors();
    m_own = m_standIn.folder().path() / "missing";
    EXPECT_FALSE(m_reader->start());
    m_own = m_standIn.readableNode();
    EXPECT_FALSE(m_reader->start()) << "it is no program";
    m_own.clear();
    EXPECT_FALSE(m_reader->start());
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_FALSE(m_reader->isRunning());
}

TEST_F(KeyReaderProcessTest, ReaderEndsWithItsClientWhichWaitsForNothing) {
    QCoreApplication::processEvents();
    const auto before = openDescriptors();
    startReader();
    auto listening = countKeys();
    EXPECT_TRUE(wasTold("o"));
    listening.cancel();
    m_reader.reset();
    EXPECT_TRUE(waitUntil([this] { return m_standIn.ends() == "end\n"; }));
    EXPECT_TRUE(waitUntil([&before] { return openDescriptors() == before; }));
}

} // namespace

} // namespace quorvane
