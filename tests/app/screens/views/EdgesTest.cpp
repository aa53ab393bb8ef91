#include "tests/app/screens/views/LayoutFixture.h"

#include <QTest>

#include <utility>

namespace quorvane {
namespace {

const QColor red("#ff3b30");

// Lines one or two points wide and the edges of controls, which are exact where a point is a whole
// number of pixels.
class Edges : public LayoutTest {};

TEST_F(Edges, AFocusRingLeavesAGapAroundItsButton) {
    launchChecked();
    const QRectF button = placeOf(enter);
    const auto above = [&](double distance) {
        return at({button.center().x(), button.top() - distance});
    };
    const QColor night = above(5);
    expectNear(above(3), night, 1);
    type(Qt::Key_Tab);
    draw();
    const QColor ring = over(night, Qt::white, 0.8);
    expectNear(above(1), night, 2);
    expectNear(above(3), ring, 6);
    expectNear(above(4), ring, 6);
    expectNear(above(5), night, 2);
}

TEST_F(Edges, TheControlsOfARowHaveFocusRings) {
    launchIntoControlPanel();
    // The rings end 3 points outside the switch and 5 points outside the info button.
    for (const auto& [control, distance] : {std::pair("Thermals", 3), {"About Thermals", 5}}) {
        const QRectF place = placeOf(control);
        const auto beside = [&](int points) {
            return at({place.left() - points, place.center().y()});
        };
        const QColor night = beside(distance + 1);
        expectNear(beside(distance - 1), night, 1);
        focus(control);
        draw();
        expectNear(beside(distance - 1), over(night, Qt::white, 0.8), 20);
        expectNear(beside(distance + 1), night, 2);
    }
}

TEST_F(Edges, TheInfoPopupHasABorderAndRoundCorners) {
    launchIntoControlPanel();
    openInfo("Build quality");
    const QColor ground("#23233a");
    EXPECT_NEAR(at({105, 480}).red(), 44, 4) << "its border";
    // With a corner radius of 18, points nearer than 5.3 to both edges are outside.
    const QPointF corner(105, placeOfText("Build Quality").top() - 24);
    EXPECT_LT(at(corner + QPointF(3, 3)).blue(), 50);
    expectNear(at(corner + QPointF(8, 8)), ground, 1);
    // The button's corner radius is 10; the popup is seen between the button and its focus ring.
    EXPECT_LT(at(placeOf("OK").topLeft() + QPointF(3, 1)).blue(), 120);
}

TEST_F(Edges, ASwitchThatIsOffLightsUpUnderTheMouse) {
    launchIntoControlPanel();
    const QPointF corner = placeOf("Thermals").topLeft();
    const QColor night = at(corner - QPointF(5, -13));
    const QColor capsule = over(night, QColor("#8e8e93"), 0.4);
    expectNear(at(corner + QPointF(21, 1)), capsule, 5);
    expectNear(at(corner + QPointF(30, 13)), over(capsule, Qt::white, 0.1), 5);
    QTest::mouseMove(&m_window->window(), placeOf("Thermals").center().toPoint());
    settle();
    expectNear(at(corner + QPointF(30, 13)), over(capsule, Qt::white, 0.2), 5);
    // With a corner radius of 13, points nearer than 3.8 to both edges are outside.
    expectNear(at(corner + QPointF(2, 2)), night, 8);
    expectNear(at(corner + QPointF(4, 4)), capsule, 8);
}

TEST_F(Edges, AnInfoButtonLightsUpUnderTheMouseAndWhenPressed) {
    launchIntoControlPanel();
    const QRectF place = placeOf("About Thermals");
    const QColor night = at(place.center() - QPointF(0, 12));
    const QColor lit = over(night, Qt::white, 0.5);
    EXPECT_GT(countOf(lit, place, 25), 15);
    EXPECT_NEAR(brightestIn(place), lit.lightness(), 8);
    expectNear(at(place.topLeft() + QPointF(6, 8)), lit, 25);
    expectNear(at(place.topLeft() + QPointF(9, 8)), night, 25);
    QTest::mouseMove(&m_window->window(), place.center().toPoint());
    settle();
    EXPECT_NEAR(brightestIn(place), over(night, Qt::white, 0.75).lightness(), 8);
    QTest::mousePress(&m_window->window(), Qt::LeftButton, {}, place.center().toPoint());
    settle();
    EXPECT_NEAR(brightestIn(place), over(night, Qt::white, 0.9).lightness(), 8);
}

TEST_F(Edges, AKnobTurnsRedWhileItMoves) {
    launchIntoControlPanel();
    const QPointF corner = placeOf("Thermals").topLeft();
    expectNear(at(corner + QPointF(13, 13)), Qt::white);
    toggle("Thermals");
    animate(15);
    expectNear(at(corner + QPointF(12, 13)), Qt::white);
    animate(60);
    const QColor half = at(corner + QPointF(13, 23));
    settle();
    const QColor full = at(corner + QPointF(13, 23));
    EXPECT_LT(half.red(), full.red() - 40) << "it turns red little by little";
    expectNear(full, red);
    expectNear(at(corner + QPointF(13, 13)), red);
    expectNear(at(corner + QPointF(29, 13)), Qt::white);
}

TEST_F(Edges, APressedKnobIsWider) {
    launchIntoControlPanel();
    const QPointF corner = placeOf("Thermals").topLeft();
    const QPoint middle = placeOf("Thermals").center().toPoint();
    const int before = at(corner + QPointF(24, 13)).lightness();
    EXPECT_LT(before, 120);
    QTest::mousePress(&m_window->window(), Qt::LeftButton, {}, middle);
    settle();
    expectNear(at(corner + QPointF(24, 13)), QColor("#e6e6ea"));
    QTest::mouseRelease(&m_window->window(), Qt::LeftButton, {}, middle);
    settle();
    EXPECT_TRUE(isOn("Thermals"));
}

} // namespace
} // namespace quorvane
