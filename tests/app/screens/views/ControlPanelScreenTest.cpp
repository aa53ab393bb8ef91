#include "tests/app/screens/ScreensFixture.h"

namespace quorvane {
namespace {

using testing::Contains;
using testing::ElementsAre;

class ControlPanelScreen : public ScreensTest {
protected:
    ControlPanelScreen() {
        m_effects.keyboard = [this] { return m_keyboard; };
        m_effects.fan = [this] { return m_fan; };
    }
};

TEST_F(ControlPanelScreen, ShowsItsTexts) {
    launchIntoControlPanel();
    EXPECT_THAT(texts(),
                ElementsAre("💀", "SIMULATION ACTIVE", "WINDOWS MODE: ENABLED", "🎉 Congratulations!",
                            "Your MacBook is now officially a Windows laptop."));
}

TEST_F(ControlPanelScreen, HasARowForEachEffectThatExists) {
    launchIntoControlPanel();
    EXPECT_THAT(switches(), ElementsAre("Build quality", "Keyboard", "Thermals", "Startup"));
    EXPECT_THAT(buttons(), ElementsAre("About Build quality", "About Keyboard", "About Thermals",
                                       "About Startup", stop));
}

TEST_F(ControlPanelScreen, HasTheFirstAndTheLastRowWhereThereIsNoOtherEffect) {
    m_effects = {};
    launchIntoControlPanel();
    EXPECT_THAT(switches(), ElementsAre("Build quality", "Startup"));
}

TEST_F(ControlPanelScreen, StartsWithOnlyTheStartupExperienceOn) {
    launchIntoControlPanel();
    EXPECT_FALSE(isOn("Build quality"));
    EXPECT_FALSE(isOn("Keyboard"));
    EXPECT_FALSE(isOn("Thermals"));
    EXPECT_TRUE(isOn("Startup"));
}

TEST_F(ControlPanelScreen, SwitchesAreToggledThroughTheAccessibilityInterface) {
    launchIntoControlPanel();
    toggle("Build quality");
    EXPECT_TRUE(isOn("Build quality"));
    EXPECT_TRUE(m_content->audioEnabled());
    press("Build quality");
    EXPECT_FALSE(isOn("Build quality"));
    EXPECT_FALSE(m_content->audioEnabled());
    toggle("Startup");
    EXPECT_FALSE(m_startup.startupSoundEnabled());
}

TEST_F(ControlPanelScreen, SwitchesAreToggledByMouseAndSpace) {
    launchIntoControlPanel();
    click("Keyboard");
    EXPECT_TRUE(isOn("Keyboard"));
    EXPECT_EQ(m_keyboard->starts, 1);
    focus("Keyboard");
    type(Qt::Key_Space);
    EXPECT_FALSE(isOn("Keyboard"));
    EXPECT_EQ(m_keyboard->stops, 1);
}

TEST_F(ControlPanelScreen, SwitchesFollowTheirEffects) {
    launchIntoControlPanel();
    m_fan->start();
    EXPECT_TRUE(isOn("Thermals"));
    m_fan->stop();
    EXPECT_FALSE(isOn("Thermals"));
}

TEST_F(ControlPanelScreen, EachSwitchIsThatOfItsOwnEffect) {
    const auto bsod = std::make_shared<FakeEffect>();
    const auto freeze = std::make_shared<FakeEffect>();
    m_effects.bsod = [&] { return bsod; };
    m_effects.freeze = [&] { return freeze; };
    launchIntoControlPanel();
    EXPECT_THAT(switches(), ElementsAre("Build quality", "Keyboard", "Thermals", "Stability",
                                        "Performance", "Startup"));
    const auto on = [&] {
        return std::vector{m_content->audioEnabled().get(), m_keyboard->isActive().get(),
                           m_fan->isActive().get(),         bsod->isActive().get(),
                           freeze->isActive().get(),        m_startup.startupSoundEnabled().get()};
    };
    toggle("Startup");
    EXPECT_THAT(on(), ElementsAre(false, false, false, false, false, false));
    toggle("Performance");
    EXPECT_THAT(on(), ElementsAre(false, false, false, false, true, false));
    toggle("Stability");
    EXPECT_THAT(on(), ElementsAre(false, false, false, true, true, false));
    toggle("Thermals");
    EXPECT_THAT(on(), ElementsAre(false, false, true, true, true, false));
    toggle("Keyboard");
    EXPECT_THAT(on(), ElementsAre(false, true, true, true, true, false));
    toggle("Build quality");
    EXPECT_THAT(on(), ElementsAre(true, true, true, true, true, false));
}

TEST_F(ControlPanelScreen, ASwitchStaysOffWhenItsEffectCannotStart) {
    m_keyboard->canStart = false;
    launchIntoControlPanel();
    toggle("Keyboard");
    EXPECT_EQ(m_keyboard->starts, 1);
    EXPECT_FALSE(isOn("Keyboard"));
    toggle("Keyboard");
    EXPECT_EQ(m_keyboard->starts, 2);
}

TEST_F(ControlPanelScreen, TheStopButtonSwitchesEverythingOffAndGoesBack) {
    launchIntoControlPanel();
    toggle("Build quality");
    toggle("Keyboard");
    toggle("Thermals");
    press(stop);
    settle();
    EXPECT_THAT(texts(), Contains("CAUTION"));
    press(enter);
    settle();
    for (const char* name : {"Build quality", "Keyboard", "Thermals", "Startup"})
        EXPECT_FALSE(isOn(name)) << name;
}

TEST_F(ControlPanelScreen, TabGoesFromRowToRowAndToTheStopButtonAndAround) {
    launchIntoControlPanel();
    std::vector<std::string> visited;
    for (int i = 0; i < 10; ++i) {
        type(Qt::Key_Tab);
        visited.push_back(focused());
    }
    EXPECT_THAT(visited, ElementsAre("About Build quality", "Build quality", "About Keyboard",
                                     "Keyboard", "About Thermals", "Thermals", "About Startup",
                                     "Startup", stop, "About Build quality"));
    type(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focused(), stop);
}

TEST_F(ControlPanelScreen, ShowsTheKeyboardFocus) {
    launchIntoControlPanel();
    const QRect place = element(stop)->rect();
    const QPoint above =
        m_window->window().mapFromGlobal(place.topLeft()) + QPoint(place.width() / 2, -3);
    const QColor before = colorAt(above.x(), above.y());
    type(Qt::Key_Backtab, Qt::ShiftModifier);
    settle();
    ASSERT_EQ(focused(), stop);
    EXPECT_GT(colorAt(above.x(), above.y()).lightness(), before.lightness() + 100);
}

} // namespace
} // namespace quorvane
