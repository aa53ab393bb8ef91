#include "tests/platform/linux/overlays/LinuxScreensFixture.h"
#include "tests/support/Waiting.h"

#include <QFont>
#include <QFontMetricsF>
#include <QTimer>
#include <algorithm>
#include <array>

#include <gmock/gmock.h>

namespace quorvane {

namespace {

constexpr int spokes = 12;

/// How much darker than white each spoke of the spinner is, from the top clockwise.
std::array<int, spokes> spokesIn(const QImage& picture, QPointF center) {
    std::array<int, spokes> darkness{};
    for (std::size_t i = 0; i < spokes; ++i) {
        const double angle = 2 * M_PI * static_cast<double>(i) / spokes;
        darkness.at(i) =
            255 - qRed(picture.pixel(static_cast<int>(center.x() + 33 * std::sin(angle)),
                                     static_cast<int>(center.y() - 33 * std::cos(angle))));
    }
    return darkness;
}

/// The rectangle around all pixels in which two pictures differ.
QRect differenceOf(const QImage& one, const QImage& other) {
    QRect different;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            if (one.pixel(x, y) != other.pixel(x, y))
                different |= QRect(x, y, 1, 1);
    return different;
}

int darkestOf(const std::array<int, spokes>& darkness) {
    return static_cast<int>(std::max_element(darkness.begin(), darkness.end()) - darkness.begin());
}

} // namespace

/// A freeze over a white window.
class FreezeOverWhiteTest : public LinuxScreensTest {
protected:
    FreezeOverWhiteTest() {
        m_desktop.openWindow(TestDesktop::whole, white, true);
        EXPECT_TRUE(comesToShow(farFromText, white));
        QFont font("Inter");
        font.setPixelSize(22);
        font.setWeight(QFont::Medium);
        const QFontMetricsF metrics(font);
        m_letters = metrics.tightBoundingRect("(Not Responding)");
        const double top = (800 - (32 + 20 + 20 + metrics.height())) / 2;
        m_center = {640, top + 16};
        m_baseline = top + 32 + 20 + 20 + metrics.ascent();
    }

    /// Watches two turns and returns how many steps the spinner is ahead of a timer that fires
    /// every twelfth of a second.
    int stepsTooManyInTwoTurns() {
        const QImage start = m_desktop.look();
        const int atStart = darkestOf(spokesIn(start, m_center));
        QTimer twelfths;
        int due = 0;
        QObject::connect(&twelfths, &QTimer::timeout, [&due] { ++due; });
        int steps = 0;
        for (int before = atStart; steps < 2 * spokes;) {
            if (!waitUntil(
                    [&] { return darkestOf(spokesIn(m_desktop.look(), m_center)) != before; }))
                return spokes;
            const QImage now = m_desktop.look();
            const int next = darkestOf(spokesIn(now, m_center));
            const int step = (next - before + spokes) % spokes;
            EXPECT_LE(step, spokes / 2) << "not clockwise";
            // The count begins with the first step.
            if (twelfths.isActive())
                steps += step;
            else
                twelfths.start(83);
            before = next;
            const QRect moved = differenceOf(now, start);
            EXPECT_EQ(moved.isEmpty(), next == atStart);
            const QRect around = QRectF(m_center.x() - 48, m_center.y() - 48, 96, 96).toRect();
            EXPECT_EQ(moved & around, moved);
        }
        return steps - due;
    }

    // Of the letters, from the start of the baseline.
    QRectF m_letters;
    double m_baseline = 0;
    QPointF m_center;
};

TEST_F(LinuxScreensTest, FreezeWithoutACompositorShowsAScreenshotUnderTheVeil) {
    const xcb_window_t window = m_desktop.openWindow(TestDesktop::whole, red, true);
    ASSERT_TRUE(comesToShow(farFromText, red));
    const auto panel = showFreeze();
    EXPECT_TRUE(isNear(m_desktop.look(farFromText), veiled(red)));
    m_desktop.recolor(window, green);
    waitFor(100ms);
    EXPECT_TRUE(isNear(m_desktop.look(farFromText), veiled(red)));
    panel->orderOut();
    EXPECT_TRUE(comesToShow(farFromText, green));
}

TEST_F(LinuxScreensTest, FreezeUnderACompositorShowsTheLiveDesktop) {
    const auto compositor = m_desktop.startCompositor();
    const xcb_window_t window = m_desktop.openWindow(TestDesktop::whole, red, true);
    ASSERT_TRUE(comesToShow(farFromText, red));
    const auto panel = showFreeze();
    EXPECT_TRUE(comesToShow(farFromText, veiled(red)));
    m_desktop.recolor(window, green);
    EXPECT_TRUE(comesToShow(farFromText, veiled(green)));
}

TEST_F(LinuxScreensTest, VeilIsWhiteAt55Percent) {
    m_desktop.openWindow(TestDesktop::whole, qRgb(0, 0, 0), true);
    const auto expectVeil = [this] {
        const auto panel = showFreeze();
        waitFor(100ms);
        const QRgb pixel = m_desktop.look(farFromText);
        for (const int channel : {qRed(pixel), qGreen(pixel), qBlue(pixel)})
            EXPECT_NEAR(channel, 140, 1);
        panel->orderOut();
    };
    expectVeil();
    const auto compositor = m_desktop.startCompositor();
    expectVeil();
}

TEST_F(FreezeOverWhiteTest, TextIsGreyAndBelowTheSpinner) {
    const auto panel = showFreeze();
    const QImage picture = m_desktop.look();
    const QRect text = drawnIn(picture, {0, static_cast<int>(m_center.y()) + 50, 1280, 200}, white);
    EXPECT_NEAR(text.left() + text.width() / 2.0, 640, 1.5);
    EXPECT_NEAR(text.width(), m_letters.width(), 2);
    EXPECT_NEAR(text.height(), m_letters.height(), 1.5);
    EXPECT_NEAR(text.top(), m_baseline + m_letters.top(), 1.5);
    // A pixel that a letter covers completely is the text's grey at 80% over white.
    const QRgb darkest = strongestIn(picture, text, white);
    EXPECT_TRUE(isNear(darkest, qRgb(165, 165, 169)))
        << qRed(darkest) << ' ' << qGreen(darkest) << ' ' << qBlue(darkest);
}

TEST_F(FreezeOverWhiteTest, SpinnerIsThreeTimesItsSizeWithSpokesThatFadeBehindTheFirst) {
    const auto panel = showFreeze();
    const QImage picture = m_desktop.look();
    const QRect drawn = drawnIn(picture, {0, 0, 1280, static_cast<int>(m_center.y()) + 50}, white);
    EXPECT_NEAR(drawn.width(), 93, 2);
    EXPECT_NEAR(drawn.height(), 93, 2);
    EXPECT_NEAR(drawn.left() + drawn.width() / 2.0, m_center.x(), 1);
    EXPECT_NEAR(drawn.top() + drawn.height() / 2.0, m_center.y(), 1);
    const auto darkness = spokesIn(picture, m_center);
    const int first = darkestOf(darkness);
    const QRgb pixel =
        picture.pixel(static_cast<int>(m_center.x() + 33 * std::sin(2 * M_PI * first / spokes)),
                      static_cast<int>(m_center.y() - 33 * std::cos(2 * M_PI * first / spokes)));
    EXPECT_TRUE(isNear(pixel, qRgb(142, 142, 147))) << qRed(pixel) << ' ' << qBlue(pixel);
    int before = darkness.at(static_cast<std::size_t>(first)) + 1;
    for (int behind = 0; behind < spokes; ++behind) {
        const int here = darkness.at(static_cast<std::size_t>(first - behind + spokes) % spokes);
        EXPECT_LT(here, before) << behind;
        EXPECT_GE(here, 14) << behind << ": can hardly be seen";
        // The two faintest look the same.
        before = behind < spokes - 2 ? here : here + 1;
    }
}

TEST_F(FreezeOverWhiteTest, SpinnerTurnsClockwiseOnceASecondAndTheRestStandsStill) {
    const auto panel = showFreeze();
    // On a busy machine one timer may be later than the other; a wrong speed never fits.
    int off = spokes;
    for (int attempt = 0; attempt < 5 && off > 2; ++attempt)
        off = std::abs(stepsTooManyInTwoTurns());
    EXPECT_LE(off, 2);
}

TEST_F(LinuxScreensTest, FreezeOnAnotherMonitorShowsItsDesktop) {
    splitScreen();
    m_desktop.openMenu({0, 0, 640, 800}, green);
    m_desktop.openWindow({660, 100, 600, 650}, red);
    ASSERT_TRUE(comesToShow(farFromText, red));
    const auto panel = showFreeze();
    EXPECT_THAT(m_desktop.panels(), testing::ElementsAre(QRect(640, 0, 640, 800)));
    EXPECT_TRUE(comesToShow(farFromText, veiled(red)));
    EXPECT_TRUE(isNear(m_desktop.look({639, 700}), green));
}

TEST_F(LinuxScreensTest, FreezeKeepsTheCompositorBlending) {
    const auto compositor = m_desktop.startCompositor();
    const auto panel = showFreeze();
    EXPECT_THAT(m_desktop.panelProperty("_NET_WM_BYPASS_COMPOSITOR"), testing::ElementsAre(2U));
}

TEST_F(PlainServerTest, FreezeIsShown) {
    m_desktop.openWindow(TestDesktop::whole, red, true);
    ASSERT_TRUE(comesToShow(farFromText, red));
    const auto panel = showFreeze();
    EXPECT_TRUE(comesToShow(farFromText, veiled(red)));
}

TEST_F(LinuxScreensTest, FreezeTakesTheClicksToo) {
    m_desktop.openWindow({100, 100, 400, 300}, red);
    const auto panel = showFreeze();
    m_desktop.click({300, 250});
    EXPECT_EQ(m_desktop.takeClicks(), 0);
}

TEST_F(LinuxScreensTest, FreezeKeepsItsScreenshotWhenTheScreenIsResized) {
    m_desktop.openWindow(TestDesktop::whole, red, true);
    ASSERT_TRUE(comesToShow(farFromText, red));
    const auto panel = showFreeze();
    useSmallMode();
    EXPECT_TRUE(comesToCover({0, 0, 1024, 600}));
    EXPECT_TRUE(comesToShow({900, 500}, veiled(red)));
}

} // namespace quorvane
