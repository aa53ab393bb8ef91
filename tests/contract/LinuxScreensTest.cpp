#include "tests/contract/LinuxScreensFixture.h"

#include <array>

#include <gmock/gmock.h>

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

} // namespace

TEST_F(LinuxScreensTest, stopScreenCoversAFullScreenWindowToTheLastPixel) {
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

TEST_F(LinuxScreensTest, keyboardStaysWhereItIsAndClicksGoNowhere) {
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

TEST_F(LinuxScreensTest, freezeTakesTheClicksToo) {
    m_desktop.openWindow({100, 100, 400, 300}, red);
    const auto panel = showFreeze();
    m_desktop.click({300, 250});
    EXPECT_EQ(m_desktop.takeClicks(), 0);
}

TEST_F(LinuxScreensTest, panelThatIgnoresTheMouseLetsClicksThrough) {
    m_desktop.openWindow({100, 100, 400, 300}, red);
    const auto panel = showStopScreen();
    panel->setIgnoresMouseEvents(true);
    m_desktop.click({300, 250});
    EXPECT_EQ(m_desktop.takeClicks(), 1);
}

TEST_F(LinuxScreensTest, mainScreenIsTheOneWithTheKeyboard) {
    splitScreen();
    const xcb_window_t left = m_desktop.openWindow({50, 100, 300, 300}, red);
    m_desktop.openWindow({800, 100, 300, 300}, green);
    EXPECT_EQ(m_screens.mainScreen()->frame(), (Rect{.x = 640, .width = 640, .height = 800}));
    m_desktop.activate(left);
    EXPECT_EQ(m_screens.mainScreen()->frame(), (Rect{.width = 640, .height = 800}));
    const auto panel = showStopScreen();
    EXPECT_THAT(m_desktop.panels(), ElementsAre(QRect(0, 0, 640, 800)));
}

TEST_F(LinuxScreensTest, panelGoesToTheMainScreenWhenItsOwnIsUnplugged) {
    splitScreen();
    m_desktop.openWindow({800, 100, 300, 300}, green);
    const auto panel = showStopScreen();
    ASSERT_THAT(m_desktop.panels(), ElementsAre(QRect(640, 0, 640, 800)));
    xrandr({"--delmonitor", "right"});
    EXPECT_TRUE(comesToCover({0, 0, 640, 800}));
    EXPECT_TRUE(comesToShow({639, 799}, blue));
}

TEST_F(LinuxScreensTest, panelKeepsCoveringAScreenThatIsResized) {
    const auto panel = showStopScreen();
    useSmallMode();
    EXPECT_TRUE(comesToCover({0, 0, 1024, 600}));
    m_stop->progress = 0.5;
    xrandr({"--output", "screen", "--mode", "1280x800"});
    EXPECT_TRUE(comesToCover(TestDesktop::whole));
    EXPECT_TRUE(comesToShow({1279, 799}, blue));
}

TEST_F(LinuxScreensTest, freezeKeepsItsStillWhenTheScreenIsResized) {
    m_desktop.openWindow(TestDesktop::whole, red, true);
    ASSERT_TRUE(comesToShow(farFromText, red));
    const auto panel = showFreeze();
    useSmallMode();
    EXPECT_TRUE(comesToCover({0, 0, 1024, 600}));
    EXPECT_TRUE(comesToShow({900, 500}, veiled(red)));
}

TEST_F(LinuxScreensTest, withoutAnyScreenThereIsNoMainOneAndThePanelGoes) {
    const auto panel = showStopScreen();
    // It complains that nothing is left.
    QProcess::execute("xrandr", {"--output", "screen", "--off"});
    EXPECT_TRUE(TestDesktop::waitFor([&] { return m_desktop.panels().empty(); }));
    EXPECT_EQ(m_screens.mainScreen(), nullptr);
    m_stop->progress = 0.5;
    panel->orderOut();
}

TEST_F(LinuxScreensTest, panelComesBackAboveWhatIsPutOverIt) {
    const auto panel = showStopScreen();
    m_desktop.openMenu({900, 600, 300, 150}, red);
    EXPECT_TRUE(comesToShow(farFromText, blue));
    m_desktop.openWindow({900, 600, 300, 150}, green);
    EXPECT_TRUE(comesToShow(farFromText, blue));
}

TEST_F(LinuxScreensTest, panelComesBackAboveWhatIsPutOverItUnderACompositor) {
    const auto compositor = m_desktop.startCompositor();
    const auto panel = showStopScreen();
    ASSERT_TRUE(comesToShow(farFromText, blue));
    m_desktop.openMenu({900, 600, 300, 150}, red);
    ASSERT_TRUE(comesToShow({1000, 700}, blue));
    TestDesktop::work(200);
    EXPECT_TRUE(isNear(m_desktop.look(farFromText), blue));
}

TEST_F(LinuxScreensTest, panelsGoWithTheService) {
    auto screens = std::make_unique<LinuxScreens>();
    const auto panel =
        showOverlay(*screens, *screens->mainScreen(),
                    {.opaque = true, .background = BSODView::background, .ignoresMouseEvents = {}},
                    std::make_shared<BSODView>(m_stop));
    EXPECT_EQ(m_desktop.panels().size(), 1U);
    screens.reset();
    EXPECT_TRUE(TestDesktop::waitFor([&] { return m_desktop.panels().empty(); }));
    panel->orderFrontRegardless();
    panel->orderOut();
    EXPECT_THAT(m_desktop.panels(), IsEmpty());
}

TEST_F(LinuxScreensTest, nothingIsLeftOfAProgramThatIsKilled) {
    TestProgram program({QUORVANE_OVERLAY_PROBE, "stop"});
    EXPECT_EQ(program.line(), "frame 0 0 1280 800");
    ASSERT_TRUE(comesToShow(farFromText, blue));
    program.end();
    EXPECT_TRUE(TestDesktop::waitFor([&] { return m_desktop.panels().empty(); }));
    EXPECT_FALSE(isNear(m_desktop.look(farFromText), blue));
}

TEST(LinuxScreensElsewhere, withoutX11ThereIsNoScreenAndPanelsShowNowhere) {
    std::array<std::string, 3> words{"test", "-platform", "offscreen"};
    std::array<char*, 3> arguments{words[0].data(), words[1].data(), words[2].data()};
    int count = arguments.size();
    const QGuiApplication application(count, arguments.data());
    LinuxScreens screens;
    EXPECT_EQ(screens.mainScreen(), nullptr);
    const auto panel = screens.createPanel({.width = 100, .height = 100}, 128, 2, false);
    ASSERT_TRUE(panel);
    panel->setContentView(std::make_shared<FreezeView>());
    panel->orderFrontRegardless();
    panel->orderOut();
}

} // namespace quorvane
