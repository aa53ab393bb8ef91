#include "tests/app/screens/ScreensFixture.h"

#include <QTest>

#include <algorithm>
#include <cstdlib>

#include "base/UniformDraw.h"

namespace quorvane {
namespace {

using testing::SizeIs;

// Whether all pixels that differ between two pictures are within `boxes`.
bool differsOnlyWithin(const QImage& a, const QImage& b, const std::vector<QRectF>& boxes) {
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (a.pixel(x, y) != b.pixel(x, y) &&
                std::none_of(boxes.begin(), boxes.end(),
                             [&](const QRectF& box) { return box.contains(x, y); }))
                return false;
    return true;
}

class Particles : public ScreensTest {
protected:
    std::vector<QRectF> boxes() {
        std::vector<QRectF> result;
        for (const FloatingEmoji& particle : m_content->floatingEmojis()) {
            const double side = particle.size * 1.5 + 2;
            result.emplace_back(particle.x - side / 2, particle.y - side / 2, side, side);
        }
        return result;
    }
};

TEST_F(Particles, AreDrawnWhereTheControllerHasThem) {
    launchChecked();
    ASSERT_THAT(m_content->floatingEmojis(), SizeIs(12));
    const QImage before = picture1x();
    std::vector<QRectF> places = boxes();
    m_machine.runLoop.advance(0.05);
    settle();
    const QImage after = picture1x();
    const auto now = boxes();
    places.insert(places.end(), now.begin(), now.end());
    const QRectF sign = placeOf("⚠️").adjusted(-30, -30, 30, 30);
    const QRectF millions = placeOf("MILLIONS").adjusted(-25, -25, 25, 25);
    places.push_back(sign);
    places.push_back(millions);
    EXPECT_NE(before, after);
    EXPECT_NE(places.front(), now.front());
    EXPECT_TRUE(differsOnlyWithin(before, after, places));
}

TEST_F(Particles, AreAsFaintAsTheirOpacity) {
    scriptParticle({.x = 60, .y = 100, .size = 60, .opacity = 0.2});
    launchChecked();
    // The face is yellow there: 0.2 of it over the night.
    const QColor face = colorAt(60, 84);
    EXPECT_NEAR(face.red(), 60, 3);
    EXPECT_NEAR(face.green(), 52, 3);
    EXPECT_NEAR(face.blue(), 42, 3);
}

TEST_F(Particles, AreAsLargeAsTheirSize) {
    scriptParticle({.x = 100, .y = 100, .size = 60, .opacity = 0.2});
    launchChecked();
    const QImage picture = picture1x();
    const auto isSeen = [&](int x, int y) {
        return picture.pixelColor(x, y).red() > picture.pixelColor(5, y).red() + 8;
    };
    int left = 550;
    int right = 0;
    int top = 780;
    int bottom = 0;
    for (int y = 20; y < 180; ++y)
        for (int x = 20; x < 180; ++x)
            if (isSeen(x, y)) {
                left = std::min(left, x);
                right = std::max(right, x);
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
    EXPECT_NEAR(right - left + 1, 56, 2);
    EXPECT_NEAR(bottom - top + 1, 54, 2);
    EXPECT_NEAR((left + right) / 2.0, 100, 1);
    EXPECT_NEAR((top + bottom) / 2.0, 103, 2);
}

// The scripted speed is the lowest, 15 points a second upward, and the drift the largest, 30 to the
// left.
TEST_F(Particles, MoveWithTheController) {
    scriptParticle({.x = 100, .y = 300, .size = 50, .opacity = 0.2});
    launchChecked();
    const QImage before = picture1x();
    m_machine.runLoop.advance(1);
    draw();
    const QImage after = picture1x();
    int largest = 0;
    for (int y = 260; y < 340; ++y)
        for (int x = 60; x < 140; ++x) {
            const QColor was = before.pixelColor(x, y);
            const QColor is = after.pixelColor(x - 30, y - 15);
            largest =
                std::max({largest, std::abs(was.red() - is.red()),
                          std::abs(was.green() - is.green()), std::abs(was.blue() - is.blue())});
        }
    EXPECT_LE(largest, 2);
    EXPECT_GT(after.pixelColor(70, 272).red(), 40);
    EXPECT_LT(after.pixelColor(118, 300).red(), 30) << "it has left its place";
}

TEST_F(Particles, ReenterAtTheBottomWithTheirNewOpacity) {
    scriptParticle({.x = 200, .y = -79.5, .size = 60, .opacity = 0.2});
    // The draws for its new place, drift, speed and opacity.
    m_machine.random.script({uniformDrawBound / 2, uniformDrawBound / 2, 0, 0});
    launchChecked();
    EXPECT_LT(colorAt(250, 690).red(), 25);
    m_machine.runLoop.advance(0.05);
    draw();
    ASSERT_EQ(m_content->floatingEmojis().front().y, 700);
    EXPECT_NEAR(colorAt(250, 684).red(), 33, 3);
}

TEST_F(Particles, LieBehindTheContentAndTakeNoClicks) {
    withoutParticles();
    launchChecked();
    const QRectF button = placeOf(enter);
    const QPoint corner(qRound(button.left()) + 30, qRound(button.center().y()));
    const QColor without = colorAt(corner.x(), corner.y());
    m_window.reset();
    m_content.reset();

    scriptParticle({.x = 60, .y = button.center().y(), .size = 60, .opacity = 0.2});
    launchChecked();
    EXPECT_EQ(colorAt(corner.x(), corner.y()), without);
    QTest::mouseClick(&m_window->window(), Qt::LeftButton, {}, corner);
    EXPECT_TRUE(m_content->sufferingMode());
    settle();
}

TEST_F(Particles, GoOnFromTheWarningToTheControlPanel) {
    scriptParticle({.x = 30, .y = 300, .size = 50, .opacity = 0.2});
    launchChecked();
    const QColor face = colorAt(30, 290);
    EXPECT_GT(face.red(), 40);
    press(enter);
    settle();
    EXPECT_EQ(colorAt(30, 290), face);
}

TEST_F(Particles, AreNotOnTheHardwareCheck) {
    launch();
    const QImage before = picture1x();
    m_machine.runLoop.advance(1);
    settle();
    EXPECT_EQ(before, picture1x());
}

TEST_F(Particles, StandStillWithReducedMotion) {
    m_desktop.motionReduced = true;
    launchChecked();
    const QImage before = picture1x();
    const int frames = m_frames;
    m_machine.runLoop.advance(2);
    settle();
    EXPECT_EQ(m_frames, frames);
    EXPECT_EQ(before, picture1x());
}

TEST_F(Particles, AreHiddenFromScreenReaders) {
    launchChecked();
    EXPECT_THAT(texts(), testing::Not(testing::Contains("😭")));
}

} // namespace
} // namespace quorvane
