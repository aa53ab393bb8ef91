// Overlays on root windows whose colours do not have 8 bits each.

#include <gmock/gmock.h>

#include "platform/linux/common/X11Connection.h"
#include "tests/platform/linux/overlays/LinuxScreensFixture.h"

namespace quorvane {

namespace {

struct Root {
    int depth;
    /// The largest difference between a colour and the nearest that the root window has, of 255.
    int step;
};

} // namespace

class LinuxScreensDepthTest : public LinuxScreensTest, public testing::WithParamInterface<Root> {
protected:
    LinuxScreensDepthTest()
        : LinuxScreensTest({"-screen", "0", "1280x800x" + std::to_string(GetParam().depth)}) {
        m_desktop.openWindow(TestDesktop::whole, red, true);
        EXPECT_TRUE(waitUntil([this] { return shows(farFromText, red); }));
    }

    [[nodiscard]] bool shows(QPoint place, QRgb color) const {
        return isNear(m_desktop.look(place), color, GetParam().step);
    }
};

TEST_P(LinuxScreensDepthTest, StopScreenHasItsColors) {
    const auto panel = showStopScreen();
    const int step = GetParam().step;
    for (const unsigned done : {20U, 30U}) {
        m_stop->progress = done / 40.0;
        EXPECT_TRUE(waitUntil([&] {
            return ringIn(m_desktop.look(), 1, step) ==
                   std::string(done, '#') + std::string(40 - done, '.');
        }));
    }
    const QImage picture = m_desktop.look();
    for (const QPoint corner : {QPoint(0, 0), QPoint(1279, 0), QPoint(0, 799), QPoint(1279, 799)})
        EXPECT_TRUE(isNear(picture.pixel(corner), blue, step));
    EXPECT_TRUE(isNear(strongestIn(picture, {100, 80, 300, 145}), white, step));
    panel->orderOut();
    EXPECT_TRUE(waitUntil([this] { return shows(farFromText, red); }));
}

TEST_P(LinuxScreensDepthTest, FreezeShowsTheDesktopUnderTheVeil) {
    const auto panel = showFreeze();
    EXPECT_TRUE(waitUntil([this] { return shows(farFromText, veiled(red)); }));
    waitFor(100ms);
    const QImage picture = m_desktop.look();
    const int step = GetParam().step;
    const QRgb veil = picture.pixel(0, 0);
    const QRect drawn = drawnIn(picture, TestDesktop::whole, veil, step);
    EXPECT_TRUE(QRect(540, 310, 200, 150).contains(drawn));
    EXPECT_TRUE(isNear(strongestIn(picture, drawn, veil), qRgb(142, 142, 147), step));
    panel->orderOut();
    EXPECT_TRUE(waitUntil([this] { return shows(farFromText, red); }));
}

INSTANTIATE_TEST_SUITE_P(Depths, LinuxScreensDepthTest,
                         testing::Values(Root{.depth = 16, .step = 9},
                                         Root{.depth = 30, .step = 2}),
                         [](const auto& root) { return std::to_string(root.param.depth); });

/// On a root window whose pixels are places in a colour map that programs may change. Such servers
/// are not for openbox.
class ColorMapTest : public testing::TestWithParam<std::vector<std::string>> {
protected:
    [[nodiscard]] int windows() const {
        m_display.sync();
        const XcbReply<xcb_query_tree_reply_t> tree{xcb_query_tree_reply(
            m_display.connection(), xcb_query_tree(m_display.connection(), m_display.root()),
            nullptr)};
        return xcb_query_tree_children_length(tree.get());
    }

    EnvironmentVariable m_systemBus{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere"};
    EnvironmentVariable m_sessionBus{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere"};
    EnvironmentVariable m_platform{"QT_QPA_PLATFORM", "xcb"};
    VirtualDisplay m_display{"1280x800", GetParam()};
    ApplicationOf<QGuiApplication> m_application;
    LinuxScreens m_screens;
};

TEST_P(ColorMapTest, ThereIsNoScreenAndPanelsAreNotShown) {
    EXPECT_EQ(m_screens.mainScreen(), nullptr);
    const int before = windows();
    const auto panel = m_screens.createPanel({.width = 1280, .height = 800}, 128, 2, false);
    panel->setContentView(std::make_shared<FreezeView>());
    panel->orderFrontRegardless();
    waitFor(50ms);
    EXPECT_EQ(windows(), before);
    panel->orderOut();
}

// PseudoColor and DirectColor.
INSTANTIATE_TEST_SUITE_P(Roots, ColorMapTest,
                         testing::Values(std::vector<std::string>{"-screen", "0", "1280x800x8"},
                                         std::vector<std::string>{"-cc", "5"}));

} // namespace quorvane
