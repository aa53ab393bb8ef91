#include "tests/screens/LayoutFixture.h"

#include <QTest>

namespace quorvane {
namespace {

constexpr auto stop = "STOP, I'M SUFFERING 😭";

const QColor red("#ff3b30");

class Controls : public LayoutTest {};

TEST_F(Controls, CornersOfButtonsAreRound) {
    launchIntoControlPanel();
    const QRectF place = placeOf(stop);
    // A circle of radius 20 leaves out what is nearer than 5.86 to both edges.
    expectNear(at(place.topLeft() + QPointF(3, 3)), besideOf(stop));
    expectNear(at(place.topLeft() + QPointF(9, 9)), red);
    expectNear(at(place.bottomRight() - QPointF(4, 4)), besideOf(stop));
    expectNear(at(place.bottomRight() - QPointF(10, 10)), red);
}

TEST_F(Controls, ASwitchIsRedOnAGreyCapsule) {
    launchIntoControlPanel();
    const QRectF on = placeOf("Startup");
    const QColor night = at(on.topLeft() - QPointF(5, -13));
    expectNear(at(on.topLeft() + QPointF(21, 1)), over(night, QColor("#8e8e93"), 0.4));
    expectNear(at(on.topLeft() + QPointF(14, 13)), red);
    expectNear(at(on.topLeft() + QPointF(30, 13)), Qt::white);
    const QRectF off = placeOf("Thermals");
    expectNear(at(off.topLeft() + QPointF(13, 13)), Qt::white);
    EXPECT_LT(at(off.topLeft() + QPointF(30, 13)).red(), 100);
}

TEST_F(Controls, EveryRowHasItsSymbol) {
    launchIntoControlPanel();
    for (const auto& row : switches()) {
        const QRectF place(70, placeOf(row).top() + 4, 18, 18);
        const QColor night = at(place.topLeft() - QPointF(4, 0));
        int lit = 0;
        int brightest = 0;
        for (int y = 0; y < 18; ++y)
            for (int x = 0; x < 18; ++x) {
                const QColor color = at(place.topLeft() + QPointF(x, y));
                lit += color.lightness() > night.lightness() + 60 ? 1 : 0;
                brightest = std::max(brightest, color.lightness());
            }
        EXPECT_GT(lit, 25) << row;
        EXPECT_LT(lit, 200) << row;
        EXPECT_NEAR(brightest, over(night, Qt::white, 0.7).lightness(), 8) << row;
    }
}

TEST_F(Controls, ControlsShowThatTheMouseIsOnThemAndPresses) {
    launchIntoControlPanel();
    const auto hover = [this](const std::string& name) {
        QTest::mouseMove(&m_window->window(), placeOf(name).center().toPoint());
        settle();
    };
    hover("SIMULATION ACTIVE");
    const QColor switchBefore = at(placeOf("Startup").topLeft() + QPointF(14, 13));
    const QColor buttonBefore = fillOf(stop);
    hover("Startup");
    EXPECT_NE(at(placeOf("Startup").topLeft() + QPointF(14, 13)), switchBefore);
    hover(stop);
    const QColor hovered = fillOf(stop);
    EXPECT_NE(hovered, buttonBefore);
    QTest::mousePress(&m_window->window(), Qt::LeftButton, {}, placeOf(stop).center().toPoint());
    settle();
    EXPECT_LT(fillOf(stop).lightness(), hovered.lightness());
    QTest::mouseMove(&m_window->window(), {5, 5});
    QTest::mouseRelease(&m_window->window(), Qt::LeftButton, {}, {5, 5});
    settle();
    EXPECT_TRUE(m_content->sufferingMode()) << "let go elsewhere";
}

TEST_F(Controls, AnInfoButtonIsHitWellBesideItsSymbol) {
    launchIntoControlPanel();
    const QPointF middle = placeOf("About Thermals").center();
    for (const QPointF offset : {QPointF(12, 0), QPointF(-12, 10), QPointF(0, -13)}) {
        QTest::mouseClick(&m_window->window(), Qt::LeftButton, {}, (middle + offset).toPoint());
        ASSERT_TRUE(m_content->showInfo()) << offset.x() << ", " << offset.y();
        EXPECT_EQ(m_content->activeInfoLabel().get(), "Thermal Performance");
        m_content->dismissInfo();
        settle();
    }
}

TEST_F(Controls, AHintMakesRoomForItself) {
    m_keyboard->canStart = false;
    launchIntoControlPanel();
    toggle("Keyboard");
    settle();
    constexpr auto hint = "Accessibility permission needed — enable in System Settings";
    ASSERT_TRUE(text(hint));
    EXPECT_TRUE(text(hint)->isVisible());
    EXPECT_GT(text(hint)->mapToScene({0, 0}).y(), placeOf("Keyboard").top() + 18);
    EXPECT_LE(text(hint)->mapToScene({0, text(hint)->height()}).y(), placeOf("Thermals").top());
}

} // namespace
} // namespace quorvane
