#include "tests/app/screens/ScreensFixture.h"

namespace quorvane {
namespace {

// Measured beside and below the glowing elements, where nothing else is drawn.
class Glow : public ScreensTest {
protected:
    Glow() { withoutParticles(); }

    // The average lightness of a line `distance` points below the element.
    double light(const std::string& name, double distance) {
        const QRectF place = placeOf(name);
        const QImage picture = picture1x();
        double sum = 0;
        const int y = static_cast<int>(place.bottom() + distance);
        for (int x = static_cast<int>(place.left()); x < static_cast<int>(place.right()); ++x)
            sum += picture.pixelColor(x, y).lightness();
        return sum / place.width();
    }

    void glowFor(double seconds) {
        m_machine.runLoop.advance(seconds);
        settle();
    }
};

TEST_F(Glow, GrowsAndShrinksAroundTheWarningSign) {
    launchChecked();
    const double dark = light("⚠️", 1);
    glowFor(0.75);
    const double half = light("⚠️", 1);
    glowFor(0.75);
    const double full = light("⚠️", 1);
    glowFor(1.5);
    const double again = light("⚠️", 1);
    EXPECT_GT(half, dark + 1);
    EXPECT_GT(full, half + 1);
    EXPECT_NEAR(again, dark, 0.5);
}

TEST_F(Glow, IsYellowAroundTheSignAndCyanAroundMillions) {
    launchChecked();
    glowFor(1.5);
    const QRectF sign = placeOf("⚠️");
    const QColor below = colorAt(qRound(sign.center().x()), qRound(sign.bottom()) + 1);
    EXPECT_GT(below.red(), below.blue());
    const QRectF millions = placeOf("MILLIONS");
    const QColor beside = colorAt(qRound(millions.left()) - 3, qRound(millions.center().y()));
    EXPECT_GT(beside.blue(), beside.red() + 20);
    EXPECT_GT(beside.green(), beside.red() + 10);
}

TEST_F(Glow, IsRedAroundTheControlPanelsTitle) {
    launchIntoControlPanel();
    const QRectF title = placeOf("SIMULATION ACTIVE");
    const auto beside = [&] {
        return colorAt(qRound(title.left()) - 3, qRound(title.center().y()));
    };
    const int before = beside().red();
    glowFor(1.5);
    EXPECT_GT(beside().red(), before + 20);
    EXPECT_LT(beside().green(), 40);
}

TEST_F(Glow, ReachesAsFarAsItsRadius) {
    launchChecked();
    const QRectF place = placeOf("MILLIONS");
    const auto beside = [&](int distance) {
        return colorAt(qRound(place.left()) - distance, qRound(place.center().y())).blue();
    };
    const int dark = beside(8);
    glowFor(1.5);
    EXPECT_GT(beside(8), dark + 12);
    EXPECT_LE(beside(20), dark + 3);
}

TEST_F(Glow, ReachesNoFurtherThanItsRadius) {
    launchChecked();
    const double dark = light("⚠️", 32);
    glowFor(1.5);
    EXPECT_NEAR(light("⚠️", 32), dark, 0.5);
}

TEST_F(Glow, StaysFullWithReducedMotion) {
    m_desktop.motionReduced = true;
    launchChecked();
    const double resting = light("⚠️", 1);
    glowFor(1.5);
    EXPECT_EQ(light("⚠️", 1), resting);
    m_desktop.motionReduced = false;
    glowFor(1.5);
    EXPECT_LT(light("⚠️", 1), resting - 2);
}

} // namespace
} // namespace quorvane
