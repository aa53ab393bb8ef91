#include "tests/platform/linux/keyboard/KeyReaderFixture.h"

#include <csignal>

#include "tests/support/Environment.h"
#include "tests/support/OpenFiles.h"

namespace quorvane {

namespace {

constexpr auto openHint = "Permission needed — answer the question on your screen";

/// A user who may read no keyboard, with a stand-in for pkexec.
class KeyReaderQuestionTest : public KeyReaderFixture {
protected:
    KeyReaderQuestionTest() {
        m_keyboards = {m_standIn.folder().path() / "event1"};
        m_installed = m_standIn.program();
        m_call = "--disable-internal-agent " + m_installed.string() + "\n";
        installPkexec();
    }

    /// It tells how it was called, waits for the answer, and runs the reader or exits with the
    /// answer's status.
    void installPkexec() const {
        const auto script =
            m_standIn.folder().write("pkexec", "#!/bin/sh\ncd " + folder().string() +
                                                   R"(
echo "$@" >>calls
echo $$ >process
while [ ! -e answer ]; do
    [ -e process ] || exit # The test has ended.
    sleep 0.02
done
read answer <answer
rm answer
[ $answer = yes ] || exit $answer
exec "$2"
)");
        std::filesystem::permissions(script, std::filesystem::perms{0755});
    }

    [[nodiscard]] std::filesystem::path folder() const { return m_standIn.folder().path(); }

    void answer(const std::string& text) const {
        m_standIn.folder().write("half", text + "\n");
        std::filesystem::rename(folder() / "half", folder() / "answer");
    }

    [[nodiscard]] bool wasCalled(const std::string& calls) const {
        return waitUntil([this, &calls] { return fileText(folder() / "calls") == calls; });
    }

    /// Asks and waits until the question is open.
    void ask() {
        m_reader->ask();
        ASSERT_TRUE(waitUntil([this] { return fileText(folder() / "process").ends_with('\n'); }));
        EXPECT_EQ(m_reader->obstacle().get(), openHint);
    }

    [[nodiscard]] bool isQuestionGone() const {
        const auto process = std::stoi(fileText(folder() / "process"));
        return waitUntil([process] { return kill(process, 0) != 0; });
    }

    std::string m_call;
    EnvironmentVariable m_path{"PATH", m_standIn.folder().path().string() + ":/usr/bin:/bin"};
};

TEST_F(KeyReaderQuestionTest, PolkitIsAskedToRunTheInstalledReaderWithNothingElse) {
    EXPECT_FALSE(m_reader->start());
    m_reader->ask();
    EXPECT_TRUE(wasCalled(m_call));
    EXPECT_EQ(m_reader->obstacle().get(), openHint);
    EXPECT_FALSE(m_reader->isRunning());
}

TEST_F(KeyReaderQuestionTest, AllowedReaderWaitsUntilItIsWanted) {
    ask();
    answer("yes");
    EXPECT_TRUE(waitUntil([this] { return m_reader->isRunning(); }));
    EXPECT_EQ(m_reader->obstacle().get(), "Allowed — switch it on again");
    EXPECT_TRUE(m_reader->start());
    EXPECT_EQ(m_reader->obstacle().get(), "");
    EXPECT_EQ(m_standIn.told(), "");
    const auto listening = countKeys();
    EXPECT_TRUE(wasTold("o"));
    m_standIn.send("k");
    EXPECT_TRUE(waitUntil([this] { return m_keys == 1; }));
    EXPECT_TRUE(wasCalled(m_call)) << "asked once";
}

TEST_F(KeyReaderQuestionTest, EveryAnswerHasItsHint) {
    struct Answer {
        std::string status;
        std::string hint;
        std::string said;
    };

    const std::string failed = "Key reader failed — use the switch to start it again";
    const std::string said = "quorvane: the key reader ended: status ";
    for (const Answer& each : std::vector<Answer>{
             {"126", "Permission refused — switch it on again to be asked again", ""},
             {"127", "Not allowed — needs a polkit agent and an administrator's password", ""},
             {"3", "No active session at this screen — switch it on again there", said + "3\n"},
             {"1", failed, said + "1\n"},
             {"2", failed, said + "2\n"},
             {"0", failed, said + "0\n"}}) {
        ask();
        testing::internal::CaptureStderr();
        answer(each.status);
        EXPECT_TRUE(hasHint(each.hint)) << each.status;
        EXPECT_EQ(testing::internal::GetCapturedStderr(), each.said);
        EXPECT_FALSE(m_reader->isRunning());
    }
}

TEST_F(KeyReaderQuestionTest, ThereIsNoSecondQuestionBesideAnother) {
    ask();
    m_reader->ask();
    waitFor(100ms);
    EXPECT_TRUE(wasCalled(m_call));
    answer("126");
    EXPECT_TRUE(waitUntil([this] { return m_reader->obstacle().get() != openHint; }));
    m_reader->ask();
    EXPECT_TRUE(wasCalled(m_call + m_call));
}

TEST_F(KeyReaderQuestionTest, QuestionThatIsWithdrawnGoesAndLeavesNothing) {
    QCoreApplication::processEvents();
    const auto before = openDescriptors();
    ask();
    testing::internal::CaptureStderr();
    m_reader->withdraw();
    EXPECT_EQ(m_reader->obstacle().get(), "");
    EXPECT_TRUE(isQuestionGone());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(waitUntil([&before] { return openDescriptors() == before; }));
    EXPECT_EQ(m_reader->obstacle().get(), "");
    ask();
    EXPECT_TRUE(wasCalled(m_call + m_call));
}

TEST_F(KeyReaderQuestionTest, WithdrawingLeavesAReaderThatWasAllowed) {
    ask();
    answer("yes");
    EXPECT_TRUE(waitUntil([this] { return m_reader->isRunning(); }));
    m_reader->withdraw();
    EXPECT_EQ(m_reader->obstacle().get(), "");
    waitFor(100ms);
    EXPECT_TRUE(m_reader->isRunning());
    EXPECT_TRUE(m_reader->start());
}

TEST_F(KeyReaderQuestionTest, OpenQuestionGoesWithItsClient) {
    ask();
    m_reader.reset();
    EXPECT_TRUE(isQuestionGone());
}

TEST_F(KeyReaderQuestionTest, AllowedReaderThatDiesUnusedLeavesNoHint) {
    m_standIn.write("printf k\nread line <" + m_standIn.keys().string() + "\nexit 7\n");
    ask();
    answer("yes");
    EXPECT_TRUE(waitUntil([this] { return m_reader->isRunning(); }));
    testing::internal::CaptureStderr();
    m_standIn.send("end\n");
    EXPECT_TRUE(waitUntil([this] { return !m_reader->isRunning(); }));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "quorvane: the key reader ended: status 7\n");
    EXPECT_EQ(m_reader->obstacle().get(), "");
    EXPECT_FALSE(m_reader->start()) << "it takes another question";
}

TEST_F(KeyReaderQuestionTest, KeyboardThatBecomesReadableTakesTheQuestionAway) {
    ask();
    m_keyboards = {m_standIn.readableNode()};
    startReader();
    EXPECT_TRUE(isQuestionGone());
    EXPECT_EQ(m_reader->obstacle().get(), "");
}

TEST_F(KeyReaderQuestionTest, WithoutPkexecAHintNamesIt) {
    const EnvironmentVariable path("PATH", "/nonexistent");
    QCoreApplication::processEvents();
    const auto before = openDescriptors();
    testing::internal::CaptureStderr();
    m_reader->ask();
    EXPECT_EQ(m_reader->obstacle().get(), "pkexec needed to ask for permission — install polkit");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(KeyReaderQuestionTest, NobodyIsAskedToRunAReaderThatIsNotInstalled) {
    m_installed.clear();
    m_reader->ask();
    EXPECT_EQ(m_reader->obstacle().get(),
              "Not installed — as root: cmake --install build --prefix /usr");
    waitFor(100ms);
    EXPECT_EQ(fileText(folder() / "calls"), "");
}

TEST_F(KeyReaderQuestionTest, NobodyIsAskedWhereThereIsNoKeyboard) {
    m_keyboards.clear();
    m_reader->ask();
    EXPECT_EQ(m_reader->obstacle().get(),
              "Keyboard not found — plug one in and switch it on again");
    waitFor(100ms);
    EXPECT_EQ(fileText(folder() / "calls"), "");
}

} // namespace

} // namespace quorvane
