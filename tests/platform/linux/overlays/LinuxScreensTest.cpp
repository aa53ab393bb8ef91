#include "tests/platform/linux/overlays/LinuxScreensFixture.h"

#include <QElapsedTimer>
#include <algorithm>
#include <fstream>

#include <unistd.h>

#include <gmock/gmock.h>

#include "tests/support/Environment.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The resident memory of this process, in MiB; libraries reserve more than they use.
double megabytes() {
    double reserved = 0;
    double pages = 0;
    std::ifstream("/proc/self/statm") >> reserved >> pages;
    return pages * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

} // namespace

TEST_F(LinuxScreensTest, StopScreenCoversAFullScreenWindowToTheLastPixel) {
    m_desktop.openWindow(TestDesktop::whole, red, true);
    ASSERT_TRUE(comesToShow({0, 0}, red));
    const auto panel = showStopScreen();
    EXPECT_THAT(m_desktop.panels(), ElementsAre(TestDesktop::whole));
    const QImage picture = m_desktop.look();
    for (const QPoint corner : {QPoint(0, 0), QPoint(1279, 0), QPoint(0, 799), QPoint(1279, 799)})
        EXPECT_EQ(picture.pixel(corner) & RGB_MASK, blue & RGB_MASK);
    panel->orderOut();
    EXPECT_TRUE(comesToShow({0, 0}, red));
}

TEST_F(LinuxScreensTest, StopScreenTakesTheClicksButNotTheKeyboard) {
    const xcb_window_t window = m_desktop.openWindow({100, 100, 400, 300}, red);
    const auto panel = showStopScreen();
    m_desktop.click({300, 250});
    EXPECT_EQ(m_desktop.takeClicks(), 0);
    EXPECT_EQ(m_desktop.focus(), window);
    m_desktop.pressKey();
    EXPECT_EQ(m_desktop.takeKeys(), 1);
    panel->orderOut();
    EXPECT_EQ(m_desktop.focus(), window);
    m_desktop.click({300, 250});
    EXPECT_EQ(m_desktop.takeClicks(), 1);
}

TEST_F(LinuxScreensTest, PanelThatIgnoresTheMouseLetsClicksThrough) {
    m_desktop.openWindow({100, 100, 400, 300}, red);
    const auto panel = showStopScreen();
    panel->setIgnoresMouseEvents(true);
    m_desktop.click({300, 250});
    EXPECT_EQ(m_desktop.takeClicks(), 1);
}

TEST_F(LinuxScreensTest, PanelComesBackAboveWhatIsPutOverIt) {
    const auto panel = showStopScreen();
    m_desktop.openMenu({900, 600, 300, 150}, red);
    EXPECT_TRUE(comesToShow(farFromText, blue));
    m_desktop.openWindow({900, 600, 300, 150}, green);
    EXPECT_TRUE(comesToShow(farFromText, blue));
}

TEST_F(LinuxScreensTest, PanelIsBackInFrontWithinHalfASecond) {
    std::array<qint64, 3> milliseconds{};
    for (qint64& each : milliseconds) {
        const auto panel = showStopScreen();
        m_desktop.openMenu({900, 600, 300, 150}, red);
        QElapsedTimer waiting;
        waiting.start();
        EXPECT_TRUE(comesToShow(farFromText, blue));
        each = waiting.elapsed();
        panel->orderOut();
    }
    // One of them may be late on a busy machine.
    std::sort(milliseconds.begin(), milliseconds.end());
    EXPECT_LT(milliseconds[1], 500);
}

TEST_F(LinuxScreensTest, PanelThatIsCoveredAgainAndAgainIsRaisedTwiceAndThenLeft) {
    auto panel = showStopScreen();
    const xcb_window_t locker = m_desktop.openMenu({900, 600, 300, 150}, red);
    QElapsedTimer time;
    time.start();
    EXPECT_TRUE(comesToShow(farFromText, blue));
    m_desktop.raise(locker);
    EXPECT_TRUE(comesToShow(farFromText, blue));
    EXPECT_GE(time.elapsed(), 80);
    m_desktop.raise(locker);
    waitFor(400ms);
    EXPECT_TRUE(isNear(m_desktop.look(farFromText), red));
    // The next panel is raised twice again.
    panel->orderOut();
    panel = showStopScreen();
    EXPECT_TRUE(isNear(m_desktop.look(farFromText), blue));
    m_desktop.raise(locker);
    EXPECT_TRUE(comesToShow(farFromText, blue));
}

TEST_F(LinuxScreensTest, PanelOfAHigherLevelStaysInFront) {
    const auto high = m_screens.createPanel({.width = 300, .height = 100}, 128, 2, false);
    const auto low = m_screens.createPanel({.width = 400, .height = 100}, 128, 2, false);
    high->setLevel(1001);
    low->setLevel(1000);
    high->orderFrontRegardless();
    low->orderFrontRegardless();
    EXPECT_TRUE(comesToStack({{0, 0, 400, 100}, {0, 0, 300, 100}}));
    low->setLevel(1002);
    EXPECT_TRUE(comesToStack({{0, 0, 300, 100}, {0, 0, 400, 100}}));
}

TEST_F(LinuxScreensTest, PanelShowsANewViewWhileItIsUp) {
    const auto panel = m_screens.createPanel({.width = 1280, .height = 800}, 128, 2, false);
    panel->setBackgroundColor({.red = 0, .green = 200.0 / 255, .blue = 0, .alpha = 1});
    panel->orderFrontRegardless();
    EXPECT_TRUE(comesToShow(farFromText, green));
    panel->setBackgroundColor({.red = 200.0 / 255, .green = 0, .blue = 0, .alpha = 1});
    EXPECT_TRUE(comesToShow(farFromText, red));
    panel->setContentView(std::make_shared<BSODView>(m_stop));
    EXPECT_TRUE(comesToShow(farFromText, blue));
    panel->setFrame({.x = 0, .y = 0, .width = 400, .height = 300}, true);
    EXPECT_TRUE(comesToCover({0, 0, 400, 300}));
}

TEST_F(LinuxScreensTest, PanelDeclaresThatItNeverTakesTheKeyboard) {
    const auto panel = showStopScreen();
    // The input flag is present, its value is 0.
    EXPECT_THAT(m_desktop.panelProperty("WM_HINTS"),
                ElementsAre(1U, 0U, 0U, 0U, 0U, 0U, 0U, 0U, 0U));
    EXPECT_THAT(m_desktop.panelProperty("_NET_WM_WINDOW_TYPE"),
                ElementsAre(m_desktop.atom("_NET_WM_WINDOW_TYPE_NOTIFICATION")));
}

TEST_F(LinuxScreensTest, PanelAsksToDisappearWithoutAnAnimation) {
    const auto panel = showStopScreen();
    EXPECT_THAT(m_desktop.panelProperty("_KDE_NET_WM_SKIP_CLOSE_ANIMATION"), ElementsAre(1U));
}

TEST_F(LinuxScreensTest, PointerOverThePanelIsTheArrow) {
    const auto panel = showStopScreen();
    EXPECT_TRUE(m_desktop.panelHasPointer());
}

TEST_F(LinuxScreensTest, PanelComesBackAboveWhatIsPutOverItUnderACompositor) {
    const auto compositor = m_desktop.startCompositor();
    const auto panel = showStopScreen();
    ASSERT_TRUE(comesToShow(farFromText, blue));
    m_desktop.openMenu({900, 600, 300, 150}, red);
    ASSERT_TRUE(comesToShow({1000, 700}, blue));
    waitFor(200ms);
    EXPECT_TRUE(isNear(m_desktop.look(farFromText), blue));
}

TEST_F(LinuxScreensTest, PanelsGoWithTheService) {
    auto screens = std::make_unique<LinuxScreens>();
    const auto panel =
        showOverlay(*screens, *screens->mainScreen(),
                    {.opaque = true, .background = BSODView::background, .ignoresMouseEvents = {}},
                    std::make_shared<BSODView>(m_stop));
    EXPECT_EQ(m_desktop.panels().size(), 1U);
    screens.reset();
    EXPECT_TRUE(waitUntil([&] { return m_desktop.panels().empty(); }));
    panel->orderFrontRegardless();
    panel->orderOut();
    EXPECT_THAT(m_desktop.panels(), IsEmpty());
}

TEST_F(LinuxScreensTest, PanelsLeakNoMemory) {
    const auto showAndClear = [this] {
        const auto panel = m_screens.createPanel({.width = 1280, .height = 800}, 128, 2, false);
        panel->setContentView(std::make_shared<BSODView>(m_stop));
        panel->orderFrontRegardless();
        panel->orderOut();
    };
    showAndClear();
    const double before = megabytes();
    for (int panel = 0; panel < 20; ++panel)
        showAndClear();
    // The pixels of one are 4 MB.
    EXPECT_LT(megabytes() - before, 20);
}

TEST_F(LinuxScreensTest, KillingTheProgramRemovesItsPanels) {
    ChildProcess program({QUORVANE_OVERLAY_PROBE, "stop"});
    EXPECT_EQ(program.line(), "frame 0 0 1280 800");
    ASSERT_TRUE(comesToShow(farFromText, blue));
    program.end();
    EXPECT_TRUE(waitUntil([&] { return m_desktop.panels().empty(); }));
    EXPECT_FALSE(isNear(m_desktop.look(farFromText), blue));
}

TEST(LinuxScreensElsewhere, WithoutAnXServerThereIsNoScreenAndPanelsAreNotShown) {
    const EnvironmentVariable display("DISPLAY", ":no-such-display");
    const EnvironmentVariable platform("QT_QPA_PLATFORM", "offscreen");
    const ApplicationOf<QGuiApplication> application;
    LinuxScreens screens;
    EXPECT_EQ(screens.mainScreen(), nullptr);
    EXPECT_EQ(screens.obstacle(), "X11 or Xwayland needed — enable it in your desktop's settings");
    const auto panel = screens.createPanel({.width = 100, .height = 100}, 128, 2, false);
    ASSERT_TRUE(panel);
    panel->setContentView(std::make_shared<FreezeView>());
    panel->orderFrontRegardless();
    panel->orderOut();
}

TEST_F(LinuxScreensTest, NothingIsInTheWayOfPanels) {
    EXPECT_EQ(m_screens.obstacle(), "");
}

TEST_F(LinuxScreensTest, PanelsAreNotShownWhileAScreenSaverCoversTheScreen) {
    auto panel = showStopScreen();
    ASSERT_THAT(m_desktop.panels(), ElementsAre(TestDesktop::whole));
    m_desktop.setScreenSaverStatus("LOCK");
    EXPECT_TRUE(waitUntil([&] { return m_desktop.panels().empty(); }));
    m_stop->progress = 0.5;
    panel->orderOut();
    ASSERT_TRUE(m_screens.mainScreen()) << "a locked screen is a screen";
    panel = showStopScreen();
    EXPECT_THAT(m_desktop.panels(), IsEmpty());
    m_desktop.setScreenSaverStatus({});
    waitFor(100ms);
    EXPECT_THAT(m_desktop.panels(), IsEmpty()) << "it does not come back";
    panel->orderOut();
    panel = showStopScreen();
    EXPECT_THAT(m_desktop.panels(), ElementsAre(TestDesktop::whole));
}

TEST(LinuxScreensElsewhere, PanelsAreShownWhateverQtDrawsItsWindowsWith) {
    TestDesktop desktop;
    ChildProcess program({"env", "QT_QPA_PLATFORM=offscreen", QUORVANE_OVERLAY_PROBE, "stop"});
    EXPECT_EQ(program.line(), "frame 0 0 1280 800");
    EXPECT_TRUE(waitUntil([&] { return isNear(desktop.look(farFromText), blue); }));
}

TEST(LinuxScreensElsewhere, WhereQtDrawsElsewhereTheScaleIsThatOfTheXResources) {
    TestDesktop desktop;
    ASSERT_EQ(
        ChildProcess::run({"sh", "-c", "printf 'Xft.hinting: 1\\nXft.dpi: 192\\n' | xrdb -nocpp"}),
        0);
    ChildProcess program({"env", "QT_QPA_PLATFORM=offscreen", QUORVANE_OVERLAY_PROBE, "stop"});
    EXPECT_EQ(program.line(), "frame 0 0 640 400");
    EXPECT_TRUE(waitUntil([&] { return desktop.panels() == std::vector{TestDesktop::whole}; }));
}

} // namespace quorvane
