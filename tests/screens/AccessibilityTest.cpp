#include "tests/screens/ScreensFixture.h"

namespace quorvane {
namespace {

using testing::IsEmpty;
using testing::Not;

// What a screen reader is told.
class Accessibility : public ScreensTest {
protected:
    Accessibility() {
        m_effects.keyboard = [this] { return m_keyboard; };
        m_withStartup = true;
    }

    void expectDescribed() {
        for (const auto& name : buttons()) {
            QAccessibleInterface* button = element(name);
            ASSERT_TRUE(button) << name;
            EXPECT_THAT(button->text(QAccessible::Description).toStdString(), Not(IsEmpty()))
                << name;
            EXPECT_TRUE(button->state().focusable) << name;
            EXPECT_THAT(button->actionInterface()->actionNames(),
                        testing::Contains(QAccessibleActionInterface::pressAction()))
                << name;
        }
    }
};

TEST_F(Accessibility, EveryButtonTellsWhatItDoes) {
    launch();
    expectDescribed();
    press("CHECK HARDWARE 🔍");
    m_machine.runLoop.advance(1.5);
    expectDescribed();
    press("CONTINUE");
    settle();
    expectDescribed();
    press("MAKE ME SUFFER 😭");
    settle();
    expectDescribed();
    press("About Keyboard");
    settle();
    expectDescribed();
}

TEST_F(Accessibility, ASwitchIsCheckableAndTellsItsState) {
    launchIntoControlPanel();
    for (const auto& name : switches()) {
        const auto state = element(name)->state();
        EXPECT_TRUE(state.checkable) << name;
        EXPECT_TRUE(state.focusable) << name;
        EXPECT_EQ(state.checked, name == "Startup") << name;
    }
}

TEST_F(Accessibility, AHintIsTheSwitchsDescription) {
    m_keyboard->canStart = false;
    launchIntoControlPanel();
    EXPECT_EQ(element("Keyboard")->text(QAccessible::Description), "");
    toggle("Keyboard");
    EXPECT_EQ(element("Keyboard")->text(QAccessible::Description),
              "Accessibility permission needed — enable in System Settings");
    m_keyboard->canStart = true;
    toggle("Keyboard");
    EXPECT_EQ(element("Keyboard")->text(QAccessible::Description), "");
}

} // namespace
} // namespace quorvane
