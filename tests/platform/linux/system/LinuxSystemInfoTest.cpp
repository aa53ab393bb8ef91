#include <gtest/gtest.h>
#include <optional>

#include "platform/linux/system/LinuxSystemInfo.h"
#include "tests/support/Environment.h"
#include "tests/support/FileRights.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

namespace fs = std::filesystem;

class LinuxSystemInfoTest : public testing::Test {
protected:
    [[nodiscard]] std::string model() const { return LinuxSystemInfo(m_root.path()).modelName(); }

    /// Whether the program is trusted in a session with these displays, on a machine whose
    /// keyboards are `m_keyboards`.
    [[nodiscard]] bool isTrusted(const std::optional<std::string>& x11,
                                 const std::optional<std::string>& wayland) const {
        const EnvironmentVariable display("DISPLAY", x11);
        const EnvironmentVariable waylandDisplay("WAYLAND_DISPLAY", wayland);
        return LinuxSystemInfo("/", [this] { return m_keyboards; }).isProcessTrusted();
    }

    TemporaryFolder m_root;
    std::vector<fs::path> m_keyboards;
};

TEST_F(LinuxSystemInfoTest, TheModelIsTheProductNameOfTheFirmware) {
    m_root.write("sys/class/dmi/id/product_name", "  MacBookPro11,3 \n");
    m_root.write("proc/device-tree/model", "something else");
    EXPECT_EQ(model(), "MacBookPro11,3");
}

TEST_F(LinuxSystemInfoTest, WithoutAFirmwareNameTheDeviceTreeTellsTheModel) {
    m_root.write("proc/device-tree/model", std::string("Apple MacBook Air (M1, 2020)\0", 29));
    EXPECT_EQ(model(), "Apple MacBook Air (M1, 2020)");
    m_root.write("sys/class/dmi/id/product_name", "\n");
    EXPECT_EQ(model(), "Apple MacBook Air (M1, 2020)");
}

TEST_F(LinuxSystemInfoTest, AFolderInTheNamesPlaceLeavesTheModelUnknown) {
    m_root.write("sys/class/dmi/id/product_name/inside", "");
    EXPECT_EQ(model(), "");
}

TEST_F(LinuxSystemInfoTest, AnX11SessionIsTrustedWhateverTheKeyboards) {
    EXPECT_TRUE(isTrusted(":0", std::nullopt));
    EXPECT_TRUE(isTrusted(":0", ""));
}

TEST_F(LinuxSystemInfoTest, AWaylandSessionIsTrustedWhenSomeKeyboardCanBeRead) {
    EXPECT_FALSE(isTrusted(":0", "wayland-0"));
    m_keyboards = {m_root.path() / "event0"};
    EXPECT_FALSE(isTrusted(":0", "wayland-0"));
    m_keyboards.push_back(m_root.write("event1", ""));
    EXPECT_TRUE(isTrusted(":0", "wayland-0"));
    EXPECT_TRUE(isTrusted(std::nullopt, "wayland-0"));
}

TEST_F(LinuxSystemInfoTest, AKeyboardThatMayOnlyBeReadMakesTrust) {
    m_keyboards.push_back(m_root.write("event1", ""));
    makeReadOnly(m_keyboards.back());
    const RightsOfAnotherUser rights(m_root.path());
    EXPECT_TRUE(isTrusted(std::nullopt, "wayland-0"));
}

TEST_F(LinuxSystemInfoTest, AKeyboardThatMayNotBeReadMakesNone) {
    m_keyboards.push_back(m_root.write("event1", ""));
    fs::permissions(m_keyboards.back(), fs::perms::none);
    const RightsOfAnotherUser rights(m_root.path());
    EXPECT_FALSE(isTrusted(std::nullopt, "wayland-0"));
}

TEST_F(LinuxSystemInfoTest, WithoutAnySessionOnlyAKeyboardMakesTrust) {
    EXPECT_FALSE(isTrusted(std::nullopt, std::nullopt));
    m_keyboards.push_back(m_root.write("event1", ""));
    EXPECT_TRUE(isTrusted(std::nullopt, std::nullopt));
}

} // namespace

} // namespace quorvane
