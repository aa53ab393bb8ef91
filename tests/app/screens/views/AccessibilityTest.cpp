#include "tests/app/screens/ScreensFixture.h"

#include <map>

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr auto switchHelp = "Explains what the switch does";
constexpr auto stopHelp = "Switches everything off and goes back to the warning";

// What a screen reader finds.
class Accessibility : public ScreensTest {
protected:
    Accessibility() {
        m_effects.keyboard = [this] { return m_keyboard; };
    }

    // Each button's description by its name. Checks that each can be focused and pressed.
    std::map<std::string, std::string> buttonHelp() {
        std::map<std::string, std::string> result;
        for (const auto& name : buttons()) {
            QAccessibleInterface* button = element(name);
            if (!button)
                continue;
            EXPECT_TRUE(button->state().focusable) << name;
            EXPECT_THAT(button->actionInterface()->actionNames(),
                        testing::Contains(QAccessibleActionInterface::pressAction()))
                << name;
            result[name] = button->text(QAccessible::Description).toStdString();
        }
        return result;
    }
};

TEST_F(Accessibility, EveryButtonHasADescription) {
    launch();
    EXPECT_THAT(buttonHelp(), ElementsAre(Pair(check, "Looks at what this machine has")));
    runCheck();
    EXPECT_THAT(buttonHelp(), ElementsAre(Pair("CONTINUE", "Goes on, whatever was found")));
    press("CONTINUE");
    settle();
    EXPECT_THAT(buttonHelp(), ElementsAre(Pair(enter, "Opens the control panel")));
    press(enter);
    settle();
    EXPECT_THAT(buttonHelp(), ElementsAre(Pair("About Build quality", switchHelp),
                                          Pair("About Keyboard", switchHelp),
                                          Pair("About Startup", switchHelp), Pair(stop, stopHelp)));
    openInfo("Keyboard");
    EXPECT_THAT(buttonHelp(), testing::Contains(Pair("OK", "Closes the explanation")));
}

TEST_F(Accessibility, ASwitchIsCheckableAndHasItsState) {
    launchIntoControlPanel();
    ASSERT_THAT(switches(), ElementsAre("Build quality", "Keyboard", "Startup"));
    for (const auto& name : switches()) {
        const auto state = element(name)->state();
        EXPECT_TRUE(state.checkable) << name;
        EXPECT_TRUE(state.focusable) << name;
        EXPECT_EQ(state.checked, name == "Startup") << name;
    }
}

TEST_F(Accessibility, SymbolsAreHiddenFromScreenReaders) {
    launchIntoControlPanel();
    EXPECT_THAT(names(QAccessible::Graphic), IsEmpty());
}

TEST_F(Accessibility, AHintIsTheSwitchsDescription) {
    m_keyboard->canStart = false;
    m_keyboard->whatKeepsItFromBeingNoticed =
        "Accessibility permission needed — enable in System Settings";
    launchIntoControlPanel();
    EXPECT_EQ(element("Keyboard")->text(QAccessible::Description), "");
    toggle("Keyboard");
    EXPECT_EQ(element("Keyboard")->text(QAccessible::Description),
              "Accessibility permission needed — enable in System Settings");
    m_keyboard->canStart = true;
    m_keyboard->whatKeepsItFromBeingNoticed = "";
    toggle("Keyboard");
    EXPECT_EQ(element("Keyboard")->text(QAccessible::Description), "");
}

TEST_F(Accessibility, ThePopupIsAnAlertWithItsTitle) {
    launchIntoControlPanel();
    EXPECT_THAT(names(QAccessible::AlertMessage), IsEmpty());
    press("About Startup");
    EXPECT_THAT(names(QAccessible::AlertMessage), ElementsAre("Boot Experience"));
    press("OK");
    EXPECT_THAT(names(QAccessible::AlertMessage), IsEmpty());
}

TEST_F(Accessibility, TheScanIsAProgressBar) {
    m_desktop.motionReduced = true;
    launch();
    EXPECT_THAT(names(QAccessible::ProgressBar), IsEmpty());
    press(check);
    EXPECT_THAT(names(QAccessible::ProgressBar), ElementsAre("Scanning"));
    m_machine.runLoop.advance(1.5);
    EXPECT_THAT(names(QAccessible::ProgressBar), IsEmpty());
}

} // namespace
} // namespace quorvane
