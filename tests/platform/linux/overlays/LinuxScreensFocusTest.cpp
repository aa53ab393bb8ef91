// Panels where the keyboard follows the pointer.

#include <gmock/gmock.h>

#include "tests/platform/linux/overlays/LinuxScreensFixture.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

struct ManagerSettings {
    TemporaryFolder folder;
    std::vector<std::string> options{
        "--config-file", folder.write("rc.xml", "<openbox_config><focus><followMouse>yes"
                                                "</followMouse></focus></openbox_config>")};
};

} // namespace

class FocusFollowsPointerTest : private ManagerSettings, public LinuxScreensTest {
protected:
    FocusFollowsPointerTest() : LinuxScreensTest({}, options) {}

    bool comesToFocus(xcb_window_t window) {
        return waitUntil([&] { return m_desktop.focus() == window; });
    }

    void expectKeysReach(xcb_window_t window) {
        waitFor(100ms);
        EXPECT_EQ(m_desktop.focus(), window);
        m_desktop.pressKey();
        EXPECT_EQ(m_desktop.takeKeys(), 1);
    }
};

TEST_F(FocusFollowsPointerTest, WindowUnderThePointerKeepsTheKeyboardWhilePanelsComeAndGo) {
    const xcb_window_t other = m_desktop.openWindow({700, 100, 400, 300}, green);
    const xcb_window_t window = m_desktop.openWindow({100, 100, 400, 300}, red);
    m_desktop.movePointer({900, 250});
    ASSERT_TRUE(comesToFocus(other));
    m_desktop.movePointer({300, 250});
    ASSERT_TRUE(comesToFocus(window));
    for (const bool freeze : {false, true}) {
        const auto panel = freeze ? showFreeze() : showStopScreen();
        ASSERT_THAT(m_desktop.panels(), testing::ElementsAre(TestDesktop::whole));
        expectKeysReach(window);
        // Over the panel, where the other window is beneath it, and back.
        m_desktop.movePointer({900, 250});
        expectKeysReach(window);
        m_desktop.movePointer({300, 250});
        expectKeysReach(window);
        panel->orderOut();
        ASSERT_TRUE(waitUntil([&] { return m_desktop.panels().empty(); }));
        expectKeysReach(window);
    }
}

} // namespace quorvane
