#include <gtest/gtest.h>
#include <optional>

#include "platform/linux/keyboard/LinuxAccessibility.h"
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
        return LinuxAccessibility([this] { return m_keyboards; }).isProcessTrusted();
    }

    TemporaryFolder m_folder;
    std::vector<fs::path> m_keyboards;
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

TEST_F(LinuxAccessibilityTest, WithoutASessionOnlyAReadableKeyboardGivesTrust) {
    EXPECT_FALSE(isTrusted(std::nullopt, std::nullopt));
    m_keyboards.push_back(m_folder.write("event1", ""));
    EXPECT_TRUE(isTrusted(std::nullopt, std::nullopt));
}

} // namespace

} // namespace quorvane
