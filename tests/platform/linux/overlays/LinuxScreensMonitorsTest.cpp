#include "tests/platform/linux/overlays/LinuxScreensFixture.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

namespace quorvane {

namespace {

using testing::ElementsAre;

constexpr QRect leftHalf{0, 0, 640, 800};
constexpr QRect rightHalf{640, 0, 640, 800};

} // namespace

TEST_F(LinuxScreensTest, MainScreenIsTheOneWithTheKeyboard) {
    splitScreen();
    const xcb_window_t left = m_desktop.openWindow({50, 100, 300, 300}, red);
    m_desktop.openWindow({800, 100, 300, 300}, green);
    EXPECT_EQ(m_screens.mainScreen()->frame(), (Rect{.x = 640, .width = 640, .height = 800}));
    m_desktop.activate(left);
    EXPECT_EQ(m_screens.mainScreen()->frame(), (Rect{.width = 640, .height = 800}));
    const auto panel = showStopScreen();
    EXPECT_THAT(m_desktop.panels(), ElementsAre(QRect(0, 0, 640, 800)));
}

TEST_F(LinuxScreensTest, PanelGoesToTheMainScreenWhenItsOwnIsUnplugged) {
    splitScreen();
    m_desktop.openWindow({800, 100, 300, 300}, green);
    const auto panel = showStopScreen();
    ASSERT_THAT(m_desktop.panels(), ElementsAre(QRect(640, 0, 640, 800)));
    ASSERT_EQ(xrandr({"--delmonitor", "right"}), 0);
    EXPECT_TRUE(comesToCover({0, 0, 640, 800}));
    EXPECT_TRUE(comesToShow({639, 799}, blue));
}

TEST_F(LinuxScreensTest, PanelCoversAScreenThatIsResized) {
    const auto panel = showStopScreen();
    useSmallMode();
    EXPECT_TRUE(comesToCover({0, 0, 1024, 600}));
    m_stop->progress = 0.5;
    ASSERT_EQ(xrandr({"--output", "screen", "--mode", "1280x800"}), 0);
    EXPECT_TRUE(comesToCover(TestDesktop::whole));
    EXPECT_TRUE(comesToShow({1279, 799}, blue));
}

TEST_F(LinuxScreensTest, WithoutAnyScreenThereIsNoMainScreenAndThePanelGoes) {
    const auto panel = showStopScreen();
    xrandr({"--output", "screen", "--off"});
    EXPECT_TRUE(waitUntil([&] { return m_desktop.panels().empty(); }));
    EXPECT_EQ(m_screens.mainScreen(), nullptr);
    m_stop->progress = 0.5;
    panel->orderOut();
}

TEST_F(LinuxScreensTest, WithoutAFocusedWindowTheMainScreenIsThePrimaryOne) {
    splitScreen("right");
    EXPECT_EQ(m_screens.mainScreen()->frame(), (Rect{.x = 640, .width = 640, .height = 800}));
}

TEST_F(LinuxScreensTest, WindowOnTwoMonitorsIsOnTheOneWithMoreOfIt) {
    splitScreen("left");
    EXPECT_EQ(m_screens.mainScreen()->frame(), (Rect{.width = 640, .height = 800}));
    m_desktop.openWindow({500, 100, 400, 300}, red);
    EXPECT_EQ(m_screens.mainScreen()->frame(), (Rect{.x = 640, .width = 640, .height = 800}));
    m_desktop.openWindow({350, 100, 400, 300}, red);
    EXPECT_EQ(m_screens.mainScreen()->frame(), (Rect{.width = 640, .height = 800}));
}

TEST_F(LinuxScreensTest, PanelCoversAScreenThatIsResizedWhileThePanelIsMade) {
    /// Resized after its frame has been read for the first time.
    class Resized final : public Screen {
    public:
        explicit Resized(std::shared_ptr<Screen> screen) : m_screen(std::move(screen)) {}

        [[nodiscard]] Rect frame() const override {
            const Rect frame = m_screen->frame();
            if (m_reads++ == 0)
                useSmallMode();
            return frame;
        }

    private:
        std::shared_ptr<Screen> m_screen;
        mutable int m_reads = 0;
    };

    const auto panel =
        showOverlay(m_screens, Resized(m_screens.mainScreen()),
                    {.opaque = true, .background = BSODView::background, .ignoresMouseEvents = {}},
                    std::make_shared<BSODView>(m_stop));
    // At once, and not only when the panel hears of the change.
    EXPECT_THAT(m_desktop.panels(), ElementsAre(QRect(0, 0, 1024, 600)));
    EXPECT_TRUE(comesToShow({1023, 599}, blue));
}

TEST_F(LinuxScreensTest, ScreenHasItsCurrentSize) {
    const auto screen = m_screens.mainScreen();
    ASSERT_EQ(screen->frame(), (Rect{.width = 1280, .height = 800}));
    useSmallMode();
    EXPECT_EQ(screen->frame(), (Rect{.width = 1024, .height = 600}));
}

TEST_F(LinuxScreensTest, ClicksOnTheOtherMonitorReachTheWindowsThere) {
    splitScreen();
    m_desktop.openWindow({50, 100, 300, 300}, red);
    const xcb_window_t covered = m_desktop.openWindow({800, 100, 300, 300}, green);
    for (const bool freeze : {false, true}) {
        m_desktop.activate(covered);
        const auto panel = freeze ? showFreeze() : showStopScreen();
        ASSERT_THAT(m_desktop.panels(), ElementsAre(rightHalf));
        m_desktop.click({900, 250});
        EXPECT_EQ(m_desktop.takeClicks(), 0) << "freeze: " << freeze;
        m_desktop.click({150, 250});
        EXPECT_EQ(m_desktop.takeClicks(), 1) << "freeze: " << freeze;
        panel->orderOut();
        ASSERT_TRUE(waitUntil([&] { return m_desktop.panels().empty(); }));
        m_desktop.click({900, 250});
        EXPECT_EQ(m_desktop.takeClicks(), 1) << "freeze: " << freeze;
    }
}

TEST_F(LinuxScreensTest, PanelCoversItsMonitorToTheEdgeAndNoPixelOfTheOther) {
    splitScreen();
    m_desktop.openMenu(leftHalf, red);
    m_desktop.openWindow({800, 100, 300, 300}, green);
    const auto panel = showStopScreen();
    ASSERT_THAT(m_desktop.panels(), ElementsAre(rightHalf));
    const QImage picture = m_desktop.look();
    EXPECT_TRUE(drawnIn(picture, leftHalf, red).isEmpty());
    for (const QPoint corner :
         {QPoint(640, 0), QPoint(1279, 0), QPoint(640, 799), QPoint(1279, 799)})
        EXPECT_TRUE(isNear(picture.pixel(corner), blue));
    // Its content starts at this monitor's corner.
    EXPECT_NEAR(drawnIn(picture, rightHalf).left(), 740, 3);
}

TEST_F(LinuxScreensTest, MonitorsHaveTheirCornersInPixelsAndTheirSizesInPoints) {
    splitScreen();
    m_desktop.openWindow({800, 100, 300, 300}, green);
    ChildProcess program({"env", "QT_SCALE_FACTOR=2", QUORVANE_OVERLAY_PROBE, "stop", "0"});
    EXPECT_EQ(program.line(), "frame 640 0 320 400");
    EXPECT_TRUE(comesToCover(rightHalf));
}

TEST_F(LinuxScreensTest, MonitorOfAnotherScaleIsCoveredExactly) {
    // In points the third would be where the second is.
    ASSERT_EQ(xrandr({"--setmonitor", "one", "320/85x400/105+0+0", "screen"}), 0);
    ASSERT_EQ(xrandr({"--setmonitor", "two", "320/85x400/105+320+0", "none"}), 0);
    ASSERT_EQ(xrandr({"--setmonitor", "three", "640/170x800/210+640+0", "none"}), 0);
    m_desktop.openWindow({800, 100, 300, 300}, green);
    ChildProcess program(
        {"env", "QT_SCREEN_SCALE_FACTORS=1;1;2", QUORVANE_OVERLAY_PROBE, "stop", "0"});
    EXPECT_EQ(program.line(), "frame 640 0 320 400");
    EXPECT_TRUE(comesToCover(rightHalf));
    EXPECT_TRUE(comesToShow({1279, 799}, blue));
    // The padding, at scale 2.
    EXPECT_TRUE(waitUntil(
        [&] { return std::abs(drawnIn(m_desktop.look(), rightHalf).left() - (640 + 200)) <= 16; }));
}

TEST_F(LinuxScreensTest, PointerInAWindowTellsTheMainScreenWhereNoneHasTheKeyboard) {
    splitScreen("left");
    m_desktop.openMenu({800, 100, 300, 300}, green);
    m_desktop.click({900, 200});
    EXPECT_EQ(m_screens.mainScreen()->frame(), (Rect{.x = 640, .width = 640, .height = 800}));
    m_desktop.click({1250, 700});
    EXPECT_EQ(m_screens.mainScreen()->frame(), (Rect{.width = 640, .height = 800}));
}

} // namespace quorvane
