#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/keyboard/LinuxAccessibility.h"
#include "tests/platform/linux/keyboard/KeyReaderFixture.h"
#include "tests/support/Environment.h"
#include "tests/support/FileRights.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

namespace fs = std::filesystem;

class LinuxAccessibilityTest : public testing::Test {
protected:
    /// Whether the program is trusted in a session with these displays, on a machine whose
    /// keyboards are `m_keyboards`.
    [[nodiscard]] bool isTrusted(const std::optional<std::string>& x11,
                                 const std::optional<std::string>& wayland) const {
        const EnvironmentVariable display("DISPLAY", x11);
        const EnvironmentVariable waylandDisplay("WAYLAND_DISPLAY", wayland);
        KeyReaderProcess reader([this] { return m_places; }, [this] { return m_keyboards; });
        return LinuxAccessibility(reader).isProcessTrusted();
    }

    TemporaryFolder m_folder;
    std::vector<fs::path> m_keyboards;
    KeyReaderPlaces m_places{.own = "/some/reader", .installed = {}};
};

TEST_F(LinuxAccessibilityTest, AnX11SessionIsTrustedWhateverTheKeyboards) {
    EXPECT_TRUE(isTrusted(":0", std::nullopt));
    EXPECT_TRUE(isTrusted(":0", ""));
}

TEST_F(LinuxAccessibilityTest, AWaylandSessionIsTrustedWhenSomeKeyboardCanBeRead) {
    EXPECT_FALSE(isTrusted(":0", "wayland-0"));
    m_keyboards = {m_folder.path() / "event0"};
    EXPECT_FALSE(isTrusted(":0", "wayland-0"));
    m_keyboards.push_back(m_folder.write("event1", ""));
    EXPECT_TRUE(isTrusted(":0", "wayland-0"));
    EXPECT_TRUE(isTrusted(std::nullopt, "wayland-0"));
}

TEST_F(LinuxAccessibilityTest, AReadOnlyKeyboardGivesTrust) {
    m_keyboards.push_back(m_folder.write("event1", ""));
    makeReadOnly(m_keyboards.back());
    const RightsOfAnotherUser rights(m_folder.path());
    EXPECT_TRUE(isTrusted(std::nullopt, "wayland-0"));
}

TEST_F(LinuxAccessibilityTest, AnUnreadableKeyboardGivesNoTrust) {
    m_keyboards.push_back(m_folder.write("event1", ""));
    fs::permissions(m_keyboards.back(), fs::perms::none);
    const RightsOfAnotherUser rights(m_folder.path());
    EXPECT_FALSE(isTrusted(std::nullopt, "wayland-0"));
}

TEST_F(LinuxAccessibilityTest, AReadableKeyboardGivesNoTrustWithoutAReader) {
    m_keyboards.push_back(m_folder.write("event1", ""));
    m_places.own.clear();
    EXPECT_FALSE(isTrusted(std::nullopt, "wayland-0"));
    EXPECT_TRUE(isTrusted(":0", std::nullopt));
}

TEST_F(LinuxAccessibilityTest, WithoutASessionOnlyAReadableKeyboardGivesTrust) {
    EXPECT_FALSE(isTrusted(std::nullopt, std::nullopt));
    m_keyboards.push_back(m_folder.write("event1", ""));
    EXPECT_TRUE(isTrusted(std::nullopt, std::nullopt));
}

/// A user who may read no keyboard, and a reader that polkit is asked for.
class LinuxAccessibilityPromptTest : public KeyReaderFixture {
protected:
    LinuxAccessibilityPromptTest() {
        m_keyboards = {m_standIn.folder().path() / "event1"};
        m_installed = m_standIn.program();
        const auto script = m_standIn.folder().write("pkexec", "#!/bin/sh\nexec \"$2\"\n");
        fs::permissions(script, fs::perms{0755});
    }

    EnvironmentVariable m_wayland{"WAYLAND_DISPLAY", "wayland-0"};
    EnvironmentVariable m_path{"PATH", m_standIn.folder().path().string() + ":/usr/bin:/bin"};
    LinuxAccessibility m_accessibility{*m_reader};
};

TEST_F(LinuxAccessibilityPromptTest, AReaderThatRunsGivesTrust) {
    EXPECT_FALSE(m_accessibility.isProcessTrustedWithOptions(true));
    EXPECT_TRUE(waitUntil([this] { return m_accessibility.isProcessTrusted(); }));
    EXPECT_TRUE(m_accessibility.isProcessTrustedWithOptions(false));
}

TEST_F(LinuxAccessibilityPromptTest, OnlyWhoIsNotTrustedAndWantsAPromptGetsIt) {
    m_installed.clear();
    EXPECT_FALSE(m_accessibility.isProcessTrusted());
    EXPECT_FALSE(m_accessibility.isProcessTrustedWithOptions(false));
    EXPECT_EQ(m_accessibility.obstacle(), "");
    m_keyboards = {m_standIn.readableNode()};
    EXPECT_TRUE(m_accessibility.isProcessTrustedWithOptions(true));
    EXPECT_EQ(m_accessibility.obstacle(), "");
    m_keyboards = {m_standIn.folder().path() / "event1"};
    EXPECT_FALSE(m_accessibility.isProcessTrustedWithOptions(true));
    EXPECT_NE(m_accessibility.obstacle(), "");
    m_accessibility.withdrawPrompt();
    EXPECT_EQ(m_accessibility.obstacle(), "");
}

TEST_F(LinuxAccessibilityPromptTest, TheAnswerIsToldToObservers) {
    std::vector<std::string> obstacles;
    const auto observation = m_accessibility.observeObstacle(
        [this, &obstacles] { obstacles.push_back(m_accessibility.obstacle()); });
    EXPECT_FALSE(m_accessibility.isProcessTrustedWithOptions(true));
    EXPECT_TRUE(waitUntil([&obstacles] { return obstacles.size() == 2; }));
    EXPECT_THAT(obstacles,
                testing::ElementsAre("Permission needed — answer the question on your screen",
                                     "Allowed — switch it on again"));
}

} // namespace

} // namespace quorvane
