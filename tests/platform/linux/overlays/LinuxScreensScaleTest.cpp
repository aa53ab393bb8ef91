// What both overlays look like at every scale factor: the screen has as many points at each.

#include <QColor>

#include <gmock/gmock.h>

#include "tests/platform/linux/overlays/LinuxScreensFixture.h"

namespace quorvane {

namespace {

// Over the blue.
constexpr QRgb white80 = qRgb(204, 228, 246);
constexpr QRgb white60 = qRgb(153, 201, 238);

void expectNear(QRgb color, QRgb expected) {
    EXPECT_TRUE(isNear(color, expected)) << QColor(color).name().toStdString() << " is not "
                                         << QColor(expected).name().toStdString();
}

} // namespace

class LinuxScreensScaleTest : public LinuxScreensTest, public testing::WithParamInterface<double> {
protected:
    LinuxScreensScaleTest() : LinuxScreensTest({"-screen", "0", serverScreen()}) {}

    /// A rectangle in points.
    static QRect pixels(double x, double y, double width, double height) {
        const double scale = GetParam();
        return QRectF(x * scale, y * scale, width * scale, height * scale).toRect();
    }

    /// What the screen shows when a program of its own shows an overlay at this scale factor.
    /// `last` is where the overlay draws its last thing.
    QImage lookOf(const std::string& overlay, const QRect& last,
                  const std::string& progress = "0") {
        const ChildProcess program({"env", "QT_SCALE_FACTOR=" + std::to_string(GetParam()),
                                    QUORVANE_OVERLAY_PROBE, overlay, progress});
        EXPECT_EQ(program.line(), "frame 0 0 1280 800");
        EXPECT_THAT(program.line(), testing::StartsWith("up after"));
        QImage picture;
        EXPECT_TRUE(waitUntil([&] {
            picture = m_desktop.look();
            return !drawnIn(picture, last, picture.pixel(last.topLeft())).isEmpty();
        }));
        return picture;
    }

    QImage lookOfStopScreen(const std::string& progress) {
        return lookOf("stop", pixels(190, 456, 200, 30), progress);
    }

    QImage lookOfFreezeOverRed() {
        m_desktop.openMenu(all(), red);
        EXPECT_TRUE(comesToShow(pixels(1000, 700, 1, 1).topLeft(), red));
        return lookOf("freeze", pixels(580, 312, 120, 104));
    }

    static QRect all() { return pixels(0, 0, 1280, 800); }

private:
    static std::string serverScreen() {
        return std::to_string(all().width()) + 'x' + std::to_string(all().height()) + "x24";
    }
};

TEST_P(LinuxScreensScaleTest, RingIsFilledAsFarAsTheProgress) {
    for (const auto& [progress, done] :
         {std::pair("0", 0U), std::pair("0.5", 20U), std::pair("1", 40U)})
        EXPECT_EQ(ringIn(lookOfStopScreen(progress), GetParam()),
                  std::string(done, '#') + std::string(40 - done, '.'));
}

TEST_P(LinuxScreensScaleTest, TextsOfTheStopScreenAreWhiteOr80Or60PercentOfIt) {
    const QImage picture = lookOfStopScreen("0.5");
    expectNear(picture.pixel(pixels(1000, 700, 1, 1).topLeft()), blue);
    const std::vector<QRect> texts = linesIn(picture, pixels(90, 60, 1190, 335));
    ASSERT_EQ(texts.size(), 5U);
    for (const std::size_t faceOrSentence : {0U, 1U, 2U})
        expectNear(strongestIn(picture, texts[faceOrSentence]), white);
    for (const std::size_t hint : {3U, 4U})
        expectNear(strongestIn(picture, texts[hint]), white80);
    const double scale = GetParam();
    QRectF inRing(0, 0, 50 * scale, 20 * scale);
    inRing.moveCenter(ringCenterIn(picture, scale));
    expectNear(strongestIn(picture, inRing.toRect()), white);
    const std::vector<QRect> beside = linesIn(picture, pixels(190, 395, 1090, 405));
    ASSERT_EQ(beside.size(), 2U);
    expectNear(strongestIn(picture, beside[0]), white80);
    expectNear(strongestIn(picture, beside[1]), white60);
}

TEST_P(LinuxScreensScaleTest, VeilIsWhiteAt55PercentToTheEdges) {
    const QImage picture = lookOfFreezeOverRed();
    const QRect drawn = drawnIn(picture, all(), qRgb(230, 140, 140));
    EXPECT_FALSE(drawn.isEmpty());
    EXPECT_TRUE(pixels(540, 310, 200, 150).contains(drawn))
        << drawn.left() << ' ' << drawn.top() << ' ' << drawn.right() << ' ' << drawn.bottom();
}

TEST_P(LinuxScreensScaleTest, SpinnerIsGreyAndThreeTimesItsSizeAboveTheMiddle) {
    const QImage picture = lookOfFreezeOverRed();
    const QRgb veil = picture.pixel(0, 0);
    const double scale = GetParam();
    const QRect spinner = drawnIn(picture, pixels(0, 0, 1280, 418), veil);
    EXPECT_NEAR(spinner.width(), 93 * scale, 2);
    EXPECT_NEAR(spinner.height(), 93 * scale, 2);
    EXPECT_NEAR(spinner.left() + spinner.width() / 2.0, 640 * scale, 1);
    // Half of the 99 points that spinner, text and their distance take, less half of the spinner's.
    EXPECT_NEAR(spinner.top() + spinner.height() / 2.0, (400 - 49.5 + 16) * scale, 1);
    expectNear(strongestIn(picture, spinner, veil), qRgb(142, 142, 147));
}

TEST_P(LinuxScreensScaleTest, TextOfTheFreezeIsGreyAt80PercentOverTheVeil) {
    const QImage picture = lookOfFreezeOverRed();
    const QRgb veil = picture.pixel(0, 0);
    const QRect text = drawnIn(picture, pixels(0, 418, 1280, 382), veil);
    EXPECT_NEAR(text.left() + text.width() / 2.0, 640 * GetParam(), 1.5 * GetParam());
    expectNear(strongestIn(picture, text, veil), qRgb(160, 142, 146));
}

INSTANTIATE_TEST_SUITE_P(Scales, LinuxScreensScaleTest, testing::Values(1.0, 1.5, 2.0));

} // namespace quorvane
