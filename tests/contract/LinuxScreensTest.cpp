#include <QProcess>
#include <cmath>
#include <memory>
#include <sstream>
#include <string>

#include <gmock/gmock.h>

#include "effects/crash/BSODView.h"
#include "effects/crash/FreezeView.h"
#include "effects/crash/OverlayRecipe.h"
#include "platform/linux/LinuxScreens.h"
#include "tests/support/TestDesktop.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr QRgb blue = qRgb(0, 120, 212);
constexpr QRgb red = qRgb(200, 0, 0);
constexpr QRgb green = qRgb(0, 200, 0);
constexpr QRgb white = qRgb(255, 255, 255);
// A quarter of white over the blue.
constexpr QRgb faint = qRgb(64, 154, 223);
constexpr QPoint farFromText(1000, 700);

bool isNear(QRgb one, QRgb other) {
    constexpr int tolerance = 3;
    return std::abs(qRed(one) - qRed(other)) <= tolerance &&
           std::abs(qGreen(one) - qGreen(other)) <= tolerance &&
           std::abs(qBlue(one) - qBlue(other)) <= tolerance;
}

QRgb veiled(QRgb color) {
    const auto veil = [](int value) { return qRound(value * 0.45 + 255 * 0.55); };
    return qRgb(veil(qRed(color)), veil(qGreen(color)), veil(qBlue(color)));
}

/// The rectangle around all that is not blue in a part of a picture.
QRect drawnIn(const QImage& picture, const QRect& part) {
    QRect drawn;
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x)
            if (!isNear(picture.pixel(x, y), blue))
                drawn |= QRect(x, y, 1, 1);
    return drawn;
}

class LinuxScreensTest : public testing::Test {
protected:
    explicit LinuxScreensTest(const std::vector<std::string>& serverOptions = {})
        : m_desktop(serverOptions) {
        m_stop->errorMessage = "SYSTEM_THREAD_EXCEPTION_NOT_HANDLED";
        m_stop->errorCode = "0xC000021A";
    }

    std::shared_ptr<OverlayPanel> showStopScreen() {
        return show({.opaque = true, .background = BSODView::background, .ignoresMouseEvents = {}},
                    std::make_shared<BSODView>(m_stop));
    }

    std::shared_ptr<OverlayPanel> showFreeze() {
        return show({.opaque = false,
                     .background = {.red = 0, .green = 0, .blue = 0, .alpha = 0},
                     .ignoresMouseEvents = false},
                    std::make_shared<FreezeView>());
    }

    std::shared_ptr<OverlayPanel> show(const OverlayAppearance& appearance,
                                       const std::shared_ptr<const OverlayView>& view) {
        const auto screen = m_screens.mainScreen();
        EXPECT_TRUE(screen);
        auto panel = showOverlay(m_screens, *screen, appearance, view);
        TestDesktop::work(50);
        return panel;
    }

    bool comesToShow(QPoint place, QRgb color) {
        return TestDesktop::waitFor([&] { return isNear(m_desktop.look(place), color); });
    }

    static void xrandr(const QStringList& arguments) {
        ASSERT_EQ(QProcess::execute("xrandr", arguments), 0);
    }

    bool comesToCover(const QRect& place) {
        return TestDesktop::waitFor([&] { return m_desktop.panels() == std::vector{place}; });
    }

    static void useSmallMode() {
        xrandr({"--newmode", "small", "50", "1024", "1048", "1152", "1296", "600", "603", "613",
                "624"});
        xrandr({"--addmode", "screen", "small"});
        xrandr({"--output", "screen", "--mode", "small"});
    }

    static void splitScreen() {
        xrandr({"--setmonitor", "left", "640/170x800/210+0+0", "screen"});
        xrandr({"--setmonitor", "right", "640/170x800/210+640+0", "none"});
    }

    TestDesktop m_desktop;
    std::shared_ptr<StopScreen> m_stop = std::make_shared<StopScreen>();
    LinuxScreens m_screens;
};

class PoorServerTest : public LinuxScreensTest {
protected:
    PoorServerTest() : LinuxScreensTest({"-extension", "MIT-SHM", "-extension", "RANDR"}) {}
};

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

TEST_F(LinuxScreensTest, ringIsFilledFromTheTopClockwise) {
    m_stop->progress = 0.5;
    const auto panel = showStopScreen();
    const QImage picture = m_desktop.look();
    // The ring is the first thing from the left below the texts, and its widest row its middle.
    const QRect leftEdge = drawnIn(picture, {97, 395, 5, 200});
    const int middle = leftEdge.center().y();
    EXPECT_TRUE(isNear(picture.pixel(170, middle), white));
    EXPECT_TRUE(isNear(picture.pixel(100, middle), faint));
    const QRect ring = drawnIn(picture, {90, middle - 60, 100, 120});
    EXPECT_NEAR(ring.width(), 73, 1);
    EXPECT_NEAR(ring.height(), 73, 1);
    EXPECT_NEAR(ring.left(), 98.5, 1);
    EXPECT_TRUE(isNear(picture.pixel(135 + 4, ring.top() + 1), white));
    EXPECT_TRUE(isNear(picture.pixel(135 - 4, ring.top() + 1), faint));
    EXPECT_TRUE(isNear(picture.pixel(135 + 4, ring.bottom() - 1), white));
    EXPECT_TRUE(isNear(picture.pixel(135 - 4, ring.bottom() - 1), faint));
}

TEST_F(LinuxScreensTest, textsHangFromTheTopLeftWithinTheirPadding) {
    const auto panel = showStopScreen();
    const QImage picture = m_desktop.look();
    const QRect all = drawnIn(picture, TestDesktop::whole);
    EXPECT_GE(all.left(), 98);
    EXPECT_GE(all.top(), 80);
    EXPECT_LE(all.right(), 802);
    EXPECT_LT(all.bottom(), 560);
    const QRect face = drawnIn(picture, {100, 80, 300, 145});
    EXPECT_NEAR(face.left(), 108, 8);
    EXPECT_GT(face.height(), 90);
    const QRect sentence = drawnIn(picture, {100, 240, 1100, 80});
    EXPECT_NEAR(sentence.left(), 100, 2);
    EXPECT_GT(sentence.width(), 600);
}

TEST_F(LinuxScreensTest, whatChangesIsDrawnAsIfItHadBeenSoFromTheStart) {
    m_stop->progress = 0.999;
    auto panel = showStopScreen();
    m_stop->progress = 0.08;
    TestDesktop::work(50);
    const QImage changed = m_desktop.look();
    panel->orderOut();
    panel = showStopScreen();
    EXPECT_EQ(changed, m_desktop.look());
    m_stop->progress = 1.0;
    TestDesktop::work(50);
    EXPECT_NE(changed, m_desktop.look());
}

TEST_F(LinuxScreensTest, freezeWithoutACompositorShowsAStillUnderTheVeil) {
    const xcb_window_t window = m_desktop.openWindow(TestDesktop::whole, red, true);
    ASSERT_TRUE(comesToShow(farFromText, red));
    const auto panel = showFreeze();
    EXPECT_TRUE(isNear(m_desktop.look(farFromText), veiled(red)));
    m_desktop.recolor(window, green);
    TestDesktop::work(100);
    EXPECT_TRUE(isNear(m_desktop.look(farFromText), veiled(red)));
    panel->orderOut();
    EXPECT_TRUE(comesToShow(farFromText, green));
}

TEST_F(LinuxScreensTest, freezeUnderACompositorShowsTheDesktopAsItGoesOn) {
    const auto compositor = m_desktop.startCompositor();
    const xcb_window_t window = m_desktop.openWindow(TestDesktop::whole, red, true);
    ASSERT_TRUE(comesToShow(farFromText, red));
    const auto panel = showFreeze();
    EXPECT_TRUE(comesToShow(farFromText, veiled(red)));
    m_desktop.recolor(window, green);
    EXPECT_TRUE(comesToShow(farFromText, veiled(green)));
}

TEST_F(LinuxScreensTest, spinnerTurnsAndTheRestOfTheFreezeStandsStill) {
    m_desktop.openWindow(TestDesktop::whole, red, true);
    ASSERT_TRUE(comesToShow(farFromText, red));
    const auto panel = showFreeze();
    const QImage before = m_desktop.look();
    QRect moved;
    ASSERT_TRUE(TestDesktop::waitFor([&] {
        const QImage now = m_desktop.look();
        for (int y = 0; y < now.height(); ++y)
            for (int x = 0; x < now.width(); ++x)
                if (now.pixel(x, y) != before.pixel(x, y))
                    moved |= QRect(x, y, 1, 1);
        return !moved.isEmpty();
    }));
    EXPECT_TRUE(QRect(640 - 48, 300, 96, 120).contains(moved)) << moved.x() << ' ' << moved.y();
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

TEST_F(LinuxScreensTest, pointsAreAsManyPixelsAsTheScaleFactorSays) {
    for (const double scale : {1.5, 2.0}) {
        TestProgram program({"env", "QT_SCALE_FACTOR=" + std::to_string(scale),
                             QUORVANE_OVERLAY_PROBE, "stop", "0"});
        std::istringstream frame(program.line());
        std::string word;
        Rect rect;
        frame >> word >> rect.x >> rect.y >> rect.width >> rect.height;
        EXPECT_NEAR(rect.width, 1280 / scale, 0.01);
        EXPECT_NEAR(rect.height, 800 / scale, 0.01);
        EXPECT_TRUE(comesToShow({1279, 799}, blue));
        EXPECT_THAT(m_desktop.panels(), ElementsAre(TestDesktop::whole));
        const QImage picture = m_desktop.look();
        const QRect all = drawnIn(picture, TestDesktop::whole);
        EXPECT_GE(all.left(), std::floor(98.5 * scale));
        EXPECT_LE(all.left(), 102 * scale);
        EXPECT_GE(all.top(), 80 * scale);
        // The face's mouth is as high as it is at scale 1, times the scale.
        const QRect mouth =
            drawnIn(picture, QRectF(140 * scale, 80 * scale, 60 * scale, 150 * scale).toRect());
        EXPECT_NEAR(mouth.height(), 110 * scale, 2 * scale);
    }
}

TEST_F(PoorServerTest, stopScreenIsSentWhereNoMemoryIsShared) {
    const auto panel = showStopScreen();
    EXPECT_THAT(m_desktop.panels(), ElementsAre(TestDesktop::whole));
    EXPECT_TRUE(comesToShow({1279, 799}, blue));
    const QRect before = drawnIn(m_desktop.look(), {98, 395, 74, 200});
    EXPECT_NEAR(before.height(), 73, 1);
    EXPECT_FALSE(isNear(m_desktop.look({170, before.center().y()}), white));
    m_stop->progress = 0.5;
    EXPECT_TRUE(comesToShow({170, before.center().y()}, white));
}

TEST_F(PoorServerTest, freezeShowsAStillThatWasSent) {
    m_desktop.openWindow(TestDesktop::whole, red, true);
    ASSERT_TRUE(comesToShow(farFromText, red));
    const auto panel = showFreeze();
    EXPECT_TRUE(comesToShow(farFromText, veiled(red)));
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
