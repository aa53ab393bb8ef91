#include "tests/screens/ScreensFixture.h"

namespace quorvane {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class WarningScreen : public ScreensTest {};

TEST_F(WarningScreen, IsWhatLaterLaunchesShow) {
    launchChecked();
    EXPECT_THAT(texts(), ElementsAre("⚠️", "CAUTION", "YOU ARE ABOUT TO SEE WHAT", "MILLIONS",
                                     "OF WINDOWS USERS EXPERIENCE", "EVERY SINGLE DAY."));
    EXPECT_THAT(buttons(), ElementsAre("MAKE ME SUFFER 😭"));
}

TEST_F(WarningScreen, LeadsToTheControlPanelByMouse) {
    launchChecked();
    click("MAKE ME SUFFER 😭");
    settle();
    EXPECT_TRUE(m_content->sufferingMode());
    EXPECT_THAT(texts(), Contains("SIMULATION ACTIVE"));
    EXPECT_THAT(texts(), Not(Contains("CAUTION")));
}

TEST_F(WarningScreen, FadesIntoTheControlPanelWhenLeftByItsButton) {
    launchChecked();
    press("MAKE ME SUFFER 😭");
    animate(80);
    const auto onTheWay = texts();
    EXPECT_THAT(onTheWay, Contains("CAUTION"));
    EXPECT_THAT(onTheWay, Contains("SIMULATION ACTIVE"));
}

TEST_F(WarningScreen, GivesWayAtOnceToANotification) {
    launchChecked();
    m_machine.defaultCenter.post(ContentView::autoStartSimulation);
    QCoreApplication::processEvents();
    EXPECT_THAT(texts(), Contains("SIMULATION ACTIVE"));
    EXPECT_THAT(texts(), Not(Contains("CAUTION")));
}

TEST_F(WarningScreen, CannotBePressedTwiceOnTheWayOut) {
    launchChecked();
    QAccessibleInterface* button = element("MAKE ME SUFFER 😭");
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    animate(50);
    m_content->leaveSufferingMode();
    m_content->enterSufferingMode();
    const bool before = m_content->sufferingMode();
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(m_content->sufferingMode(), before);
    settle();
}

TEST_F(WarningScreen, StandsOnTheNightGradient) {
    launchChecked();
    EXPECT_EQ(colorAt(5, 0), QColor::fromRgb(13, 13, 38));
    EXPECT_EQ(colorAt(5, 390), QColor::fromRgb(20, 20, 51));
    EXPECT_EQ(colorAt(5, 779), QColor::fromRgb(13, 13, 31));
}

TEST_F(WarningScreen, HasARedButton) {
    launchChecked();
    const QRect button = element("MAKE ME SUFFER 😭")->rect();
    const QPoint inside = m_window->window().mapFromGlobal(button.topLeft()) + QPoint(40, 8);
    const QColor color = colorAt(inside.x(), inside.y());
    EXPECT_GT(color.red(), 220);
    EXPECT_LT(color.green(), 90);
    EXPECT_LT(color.blue(), 90);
    EXPECT_EQ(button.width(), 490);
}

} // namespace
} // namespace quorvane
