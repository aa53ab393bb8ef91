#include "tests/contract/LinuxScreensFixture.h"

#include <sstream>

#include <gmock/gmock.h>

namespace quorvane {

namespace {

using testing::ElementsAre;

} // namespace

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

} // namespace quorvane
