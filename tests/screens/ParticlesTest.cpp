#include "tests/screens/ScreensFixture.h"

#include <QTest>

#include <algorithm>

namespace quorvane {
namespace {

using testing::SizeIs;

constexpr auto enter = "MAKE ME SUFFER 😭";

// The pixels that differ between two pictures, as their bounding boxes' centres would have it: all
// of them within `boxes`.
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

TEST_F(Particles, StandWhereTheControllerHasThem) {
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
    EXPECT_TRUE(differsOnlyWithin(before, after, places));
}

TEST_F(Particles, AreAsFaintAsTheirOpacity) {
    scriptParticle({.x = 60, .y = 100, .size = 60, .opacity = 0.2});
    launchChecked();
    // The face is yellow there: 0.2 of it over the night.
    const QColor face = colorAt(60, 84);
    const QColor night = colorAt(5, 84);
    EXPECT_NEAR(face.red(), night.red() + 0.2 * (255 - night.red()), 14);
    EXPECT_LT(face.blue(), face.red());
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
    EXPECT_GT(colorAt(30, 290).red(), 40);
    press(enter);
    settle();
    EXPECT_GT(colorAt(30, 290).red(), 40);
}

TEST_F(Particles, AreNotOnTheHardwareCheck) {
    launch();
    const QImage before = picture1x();
    m_machine.runLoop.advance(1);
    settle();
    EXPECT_EQ(before, picture1x());
}

TEST_F(Particles, StandStillForThoseWhoAskForLessMotion) {
    m_desktop.motionReduced = true;
    launchChecked();
    const QImage before = picture1x();
    const int frames = m_frames;
    m_machine.runLoop.advance(2);
    settle();
    EXPECT_EQ(m_frames, frames);
    EXPECT_EQ(before, picture1x());
}

TEST_F(Particles, AreNothingToAReader) {
    launchChecked();
    EXPECT_THAT(texts(), testing::Not(testing::Contains("😭")));
}

} // namespace
} // namespace quorvane
