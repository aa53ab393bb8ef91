#include <gtest/gtest.h>
#include <optional>

#include "platform/linux/keyboard/KeyboardAccessPrompt.h"
#include "platform/linux/keyboard/LinuxAccessibility.h"
#include "tests/support/Environment.h"
#include "tests/support/OpenFiles.h"
#include "tests/support/QtApplication.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

namespace fs = std::filesystem;

class KeyboardAccessPromptTest : public testing::Test {
protected:
    /// A stand-in for pkexec, which tells how it was called and then waits for the answer.
    void installPkexec() const {
        const auto script = m_folder.write("pkexec", "#!/bin/sh\n"
                                                     "echo \"$@\" >>" +
                                                         calls() +
                                                         "\n"
                                                         "echo noise; echo noise >&2\n"
                                                         "while [ ! -e " +
                                                         answered() +
                                                         " ]; do sleep 0.02; done\n"
                                                         "echo end >>" +
                                                         calls() + "\n");
        fs::permissions(script, fs::perms::owner_all);
    }

    [[nodiscard]] std::string calls() const { return (m_folder.path() / "calls").string(); }

    [[nodiscard]] std::string answered() const { return (m_folder.path() / "answer").string(); }

    void answer() const { m_folder.write("answer", ""); }

    [[nodiscard]] bool hasCalls(const std::string& text) const {
        return waitUntil([this, &text] { return fileText(calls()) == text; });
    }

    QtApplication m_application;
    TemporaryFolder m_folder;
    EnvironmentVariable m_path{"PATH", m_folder.path().string() + ":/usr/bin:/bin"};
    KeyboardAccessPrompt m_prompt{"/some/helper"};
    const std::string m_call = "--disable-internal-agent /some/helper\n";
};

TEST_F(KeyboardAccessPromptTest, PolkitIsAskedToRunTheHelperWithNothingElse) {
    installPkexec();
    m_prompt.show();
    EXPECT_TRUE(hasCalls(m_call));
    answer();
    EXPECT_TRUE(hasCalls(m_call + "end\n"));
}

TEST_F(KeyboardAccessPromptTest, ThereIsNoSecondPromptBesideAnother) {
    installPkexec();
    m_prompt.show();
    EXPECT_TRUE(hasCalls(m_call));
    m_prompt.show();
    answer();
    EXPECT_TRUE(hasCalls(m_call + "end\n"));
}

TEST_F(KeyboardAccessPromptTest, ThereIsAnotherPromptOnceTheFirstIsAnswered) {
    installPkexec();
    answer();
    const auto before = openDescriptors();
    m_prompt.show();
    EXPECT_TRUE(hasCalls(m_call + "end\n"));
    ASSERT_TRUE(waitUntil([&before] { return openDescriptors() == before; }));
    m_prompt.show();
    EXPECT_TRUE(hasCalls(m_call + "end\n" + m_call + "end\n"));
}

TEST_F(KeyboardAccessPromptTest, APromptIsNotWaitedForWhenTheProgramEnds) {
    installPkexec();
    {
        KeyboardAccessPrompt prompt("/some/helper");
        prompt.show();
        EXPECT_TRUE(hasCalls(m_call));
    }
    EXPECT_EQ(fileText(calls()), m_call);
    answer();
    EXPECT_TRUE(hasCalls(m_call + "end\n"));
}

TEST_F(KeyboardAccessPromptTest, ItSaysNothingOnTheConsole) {
    installPkexec();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    m_prompt.show();
    answer();
    EXPECT_TRUE(hasCalls(m_call + "end\n"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(KeyboardAccessPromptTest, OnlyWhoIsNotTrustedAndWantsAPromptGetsIt) {
    installPkexec();
    answer();
    const EnvironmentVariable wayland("WAYLAND_DISPLAY", "wayland-0");
    const auto node = m_folder.write("event0", "");
    const auto keyboards = [&node] { return std::vector{node}; };
    LinuxAccessibility accessibility(keyboards);
    EXPECT_TRUE(accessibility.isProcessTrustedWithOptions(true));
    waitFor(100ms);
    fs::remove(node);
    EXPECT_FALSE(accessibility.isProcessTrustedWithOptions(false));
    EXPECT_FALSE(accessibility.isProcessTrusted());
    waitFor(100ms);
    EXPECT_EQ(fileText(calls()), "");
    EXPECT_FALSE(accessibility.isProcessTrustedWithOptions(true));
    const auto helper =
        QCoreApplication::applicationDirPath().toStdString() + "/quorvane-keyboard-access";
    EXPECT_TRUE(hasCalls("--disable-internal-agent " + helper + "\nend\n"));
}

TEST_F(KeyboardAccessPromptTest, WithoutPolkitNothingHappens) {
    const EnvironmentVariable path("PATH", m_folder.path().string());
    testing::internal::CaptureStderr();
    const auto before = openDescriptors();
    m_prompt.show();
    EXPECT_TRUE(waitUntil([&before] { return openDescriptors() == before; }));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace

} // namespace quorvane
