// Panels while the window manager switches its virtual desktops.

#include <gmock/gmock.h>

#include "tests/platform/linux/overlays/LinuxScreensFixture.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;

} // namespace

class LinuxScreensWorkspacesTest : public LinuxScreensTest {
protected:
    LinuxScreensWorkspacesTest() {
        EXPECT_EQ(ChildProcess::run({"xdotool", "set_num_desktops", "3"}), 0);
        m_desktop.openWindow(TestDesktop::whole, red, true);
        EXPECT_TRUE(comesToShow(farFromText, red));
    }

    /// Switches to a virtual desktop, counted from 0; returns when it is shown.
    static void switchTo(const std::string& workspace) {
        ASSERT_EQ(ChildProcess::run({"xdotool", "set_desktop", workspace}), 0);
        ASSERT_TRUE(waitUntil([&] {
            return ChildProcess({"xdotool", "get_desktop"}).line() == workspace;
        }));
    }

    void expectOnEveryWorkspace(const std::shared_ptr<OverlayPanel>& panel, QRgb color) {
        for (const char* workspace : {"1", "2", "0", "1"}) {
            switchTo(workspace);
            waitFor(50ms);
            EXPECT_THAT(m_desktop.panels(), ElementsAre(TestDesktop::whole)) << workspace;
            EXPECT_TRUE(isNear(m_desktop.look(farFromText), color)) << workspace;
        }
        panel->orderOut();
        waitFor(50ms);
        EXPECT_FALSE(isNear(m_desktop.look(farFromText), red)) << "the window stays on its own one";
        switchTo("0");
        EXPECT_TRUE(comesToShow(farFromText, red));
    }
};

TEST_F(LinuxScreensWorkspacesTest, StopScreenStaysUpWhenTheWorkspaceIsSwitched) {
    expectOnEveryWorkspace(showStopScreen(), blue);
}

TEST_F(LinuxScreensWorkspacesTest, FreezeStaysUpWhenTheWorkspaceIsSwitched) {
    expectOnEveryWorkspace(showFreeze(), veiled(red));
}

} // namespace quorvane
