#include "tests/app/screens/ScreensFixture.h"

#include "app/screens/bridge/PressControl.h"

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
    EXPECT_THAT(buttons(), ElementsAre(enter));
}

TEST_F(WarningScreen, LeadsToTheControlPanelByMouse) {
    launchChecked();
    click(enter);
    settle();
    EXPECT_TRUE(m_content->sufferingMode());
    EXPECT_THAT(texts(), Contains("SIMULATION ACTIVE"));
    EXPECT_THAT(texts(), Not(Contains("CAUTION")));
}

// After a tenth of a second the spring is at 0.517.
TEST_F(WarningScreen, FadesIntoTheControlPanelWhenLeftByItsButton) {
    withoutParticles();
    launchChecked();
    press(enter);
    animate(100);
    const auto onTheWay = texts();
    EXPECT_THAT(onTheWay, Contains("CAUTION"));
    EXPECT_THAT(onTheWay, Contains("SIMULATION ACTIVE"));
    // 0.517 of the night over 0.483 of the same over black.
    expectNear(colorAt(5, 390), {15, 15, 38}, 1);
    // The stop button over that.
    expectNear(colorAt(100, 690), {136, 35, 38}, 1);
    settle();
    expectNear(colorAt(5, 390), {20, 20, 51}, 1);
    expectNear(colorAt(100, 690), {255, 59, 48}, 1);
}

TEST_F(WarningScreen, FadesInWhenTheHardwareCheckIsLeft) {
    withoutParticles();
    launch();
    runCheck();
    press("CONTINUE");
    animate(100);
    EXPECT_THAT(texts(), Contains("CAUTION"));
    EXPECT_THAT(texts(), Contains("HARDWARE CHECK"));
    EXPECT_FALSE(pressControl(m_window->window(), "CONTINUE"));
    // 0.517 of the night over 0.483 of the blue.
    expectNear(colorAt(5, 390), {10, 27, 62}, 1);
    settle();
    EXPECT_THAT(texts(), Not(Contains("HARDWARE CHECK")));
}

TEST_F(WarningScreen, IsLeftAtOnceOnANotification) {
    launchChecked();
    m_machine.defaultCenter.post(ContentView::autoStartSimulation);
    QCoreApplication::processEvents();
    EXPECT_THAT(texts(), Contains("SIMULATION ACTIVE"));
    EXPECT_THAT(texts(), Not(Contains("CAUTION")));
}

// A screen that fades out is still visible, on top of the one that fades in.
TEST_F(WarningScreen, CannotBePressedWhileItFadesOut) {
    launchChecked();
    press(enter);
    animate(50);
    ASSERT_TRUE(element(enter));
    EXPECT_FALSE(pressControl(m_window->window(), enter));
    EXPECT_TRUE(pressControl(m_window->window(), stop)) << "the next screen can be used at once";
    EXPECT_FALSE(m_content->sufferingMode());
}

TEST_F(WarningScreen, IsNotAffectedByAControlPanelThatFadesOut) {
    m_effects.keyboard = [this] { return m_keyboard; };
    launchIntoControlPanel();
    press(stop);
    animate(50);
    ASSERT_TRUE(element("Keyboard"));
    click("Keyboard");
    toggle("Keyboard");
    EXPECT_EQ(m_keyboard->starts, 0);
    EXPECT_FALSE(pressControl(m_window->window(), stop));
    EXPECT_TRUE(pressControl(m_window->window(), enter));
    EXPECT_TRUE(m_content->sufferingMode());
}

TEST_F(WarningScreen, HasTheNightGradient) {
    launchChecked();
    EXPECT_EQ(colorAt(5, 0), QColor::fromRgb(13, 13, 38));
    EXPECT_EQ(colorAt(5, 390), QColor::fromRgb(20, 20, 51));
    EXPECT_EQ(colorAt(5, 779), QColor::fromRgb(13, 13, 31));
}

TEST_F(WarningScreen, HasARedButton) {
    launchChecked();
    const QRect button = element(enter)->rect();
    const QPoint inside = m_window->window().mapFromGlobal(button.topLeft()) + QPoint(40, 8);
    const QColor color = colorAt(inside.x(), inside.y());
    EXPECT_GT(color.red(), 220);
    EXPECT_LT(color.green(), 90);
    EXPECT_LT(color.blue(), 90);
    EXPECT_EQ(button.width(), 490);
}

} // namespace
} // namespace quorvane
