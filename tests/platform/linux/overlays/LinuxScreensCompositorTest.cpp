// A compositor that starts or ends while a freeze is up.

#include <gmock/gmock.h>

#include "tests/platform/linux/overlays/LinuxScreensFixture.h"

namespace quorvane {

/// Over a red window.
class LinuxScreensCompositorTest : public LinuxScreensTest {
protected:
    LinuxScreensCompositorTest() { EXPECT_TRUE(comesToShow(farFromText, red)); }

    void expectTakesTheClicks() {
        EXPECT_THAT(m_desktop.panels(), testing::ElementsAre(TestDesktop::whole));
        m_desktop.click(farFromText);
        EXPECT_EQ(m_desktop.takeClicks(), 0);
    }

    void expectLeaves(OverlayPanel& panel) {
        panel.orderOut();
        EXPECT_TRUE(waitUntil([&] { return m_desktop.panels().empty(); }));
        EXPECT_TRUE(comesToShow(farFromText, red));
        m_desktop.click(farFromText);
        EXPECT_EQ(m_desktop.takeClicks(), 1);
    }

    xcb_window_t m_window = m_desktop.openWindow(TestDesktop::whole, red, true);
};

TEST_F(LinuxScreensCompositorTest, FreezeKeepsItsScreenshotWhenACompositorStarts) {
    const auto panel = showFreeze();
    ASSERT_TRUE(comesToShow(farFromText, veiled(red)));
    const auto compositor = m_desktop.startCompositor();
    m_desktop.recolor(m_window, green);
    waitFor(300ms);
    EXPECT_TRUE(isNear(m_desktop.look(farFromText), veiled(red)));
    expectTakesTheClicks();
    m_desktop.recolor(m_window, red);
    expectLeaves(*panel);
    // The next one is blended.
    const auto next = showFreeze();
    EXPECT_TRUE(comesToShow(farFromText, veiled(red)));
    m_desktop.recolor(m_window, green);
    EXPECT_TRUE(comesToShow(farFromText, veiled(green)));
}

TEST_F(LinuxScreensCompositorTest, FreezeIsPlainGreyWhenTheCompositorEnds) {
    auto compositor = m_desktop.startCompositor();
    // It may not draw all of a window that comes up while it starts.
    waitFor(300ms);
    const auto panel = showFreeze();
    ASSERT_TRUE(comesToShow(farFromText, veiled(red)));
    compositor.reset();
    // The server shows the window's own pixels: the veil over black.
    const QRgb grey = qRgb(140, 140, 140);
    EXPECT_TRUE(comesToShow(farFromText, grey));
    const xcb_window_t menu = m_desktop.openMenu({900, 600, 300, 150}, green);
    EXPECT_TRUE(comesToShow(farFromText, grey));
    expectTakesTheClicks();
    m_desktop.close(menu);
    expectLeaves(*panel);
    // The next one shows a screenshot.
    const auto next = showFreeze();
    EXPECT_TRUE(comesToShow(farFromText, veiled(red)));
}

} // namespace quorvane
