#include "tests/app/screens/ScreensFixture.h"

#include "app/screens/bridge/PressControl.h"

namespace quorvane {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr auto enter = "MAKE ME SUFFER 😭";
constexpr auto stop = "STOP, I'M SUFFERING 😭";

class WarningScreen : public ScreensTest {
protected:
    static void expectNear(const QColor& seen, const QColor& wanted) {
        EXPECT_NEAR(seen.red(), wanted.red(), 1);
        EXPECT_NEAR(seen.green(), wanted.green(), 1);
        EXPECT_NEAR(seen.blue(), wanted.blue(), 1);
    }
};

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

// A tenth of a second on, the spring has gone 0.517 of its way.
TEST_F(WarningScreen, FadesIntoTheControlPanelWhenLeftByItsButton) {
    withoutParticles();
    launchChecked();
    press(enter);
    animate(100);
    const auto onTheWay = texts();
    EXPECT_THAT(onTheWay, Contains("CAUTION"));
    EXPECT_THAT(onTheWay, Contains("SIMULATION ACTIVE"));
    // 0.517 of the night over 0.483 of the same over black.
    expectNear(colorAt(5, 390), {15, 15, 38});
    // The stop button over that.
    expectNear(colorAt(100, 690), {136, 35, 38});
    settle();
    expectNear(colorAt(5, 390), {20, 20, 51});
    expectNear(colorAt(100, 690), {255, 59, 48});
}

TEST_F(WarningScreen, FadesInWhenTheHardwareCheckIsLeft) {
    withoutParticles();
    launch();
    press("CHECK HARDWARE 🔍");
    m_machine.runLoop.advance(1.5);
    press("CONTINUE");
    animate(100);
    EXPECT_THAT(texts(), Contains("CAUTION"));
    EXPECT_THAT(texts(), Contains("HARDWARE CHECK"));
    EXPECT_FALSE(pressControl(m_window->window(), "CONTINUE"));
    // 0.517 of the night over 0.483 of the blue.
    expectNear(colorAt(5, 390), {10, 27, 62});
    settle();
    EXPECT_THAT(texts(), Not(Contains("HARDWARE CHECK")));
}

TEST_F(WarningScreen, GivesWayAtOnceToANotification) {
    launchChecked();
    m_machine.defaultCenter.post(ContentView::autoStartSimulation);
    QCoreApplication::processEvents();
    EXPECT_THAT(texts(), Contains("SIMULATION ACTIVE"));
    EXPECT_THAT(texts(), Not(Contains("CAUTION")));
}

// A screen that fades out is still there to be seen, and lies over the one that fades in.
TEST_F(WarningScreen, CannotBePressedOnItsWayOut) {
    launchChecked();
    press(enter);
    animate(50);
    ASSERT_TRUE(element(enter));
    EXPECT_FALSE(pressControl(m_window->window(), enter));
    EXPECT_TRUE(pressControl(m_window->window(), stop)) << "the next screen can be used at once";
    EXPECT_FALSE(m_content->sufferingMode());
}

TEST_F(WarningScreen, CannotBeDisturbedByAControlPanelOnItsWayOut) {
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
