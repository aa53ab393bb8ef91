#include "tests/screens/ScreensFixture.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

std::vector<std::pair<std::string, bool>> announced;

void listen(QAccessibleEvent* event) {
    if (event->type() != QAccessible::StateChanged)
        return;
    const auto* change = static_cast<QAccessibleStateChangeEvent*>(event);
    QAccessibleInterface* element = event->accessibleInterface();
    if (element && change->changedStates().checked)
        announced.emplace_back(element->text(QAccessible::Name).toStdString(),
                               element->state().checked);
}

// What a screen reader is told.
class Accessibility : public ScreensTest {
protected:
    Accessibility() {
        m_effects.keyboard = [this] { return m_keyboard; };
        m_withStartup = true;
        announced.clear();
        QAccessible::installUpdateHandler(listen);
        QAccessible::setActive(true);
    }

    ~Accessibility() override { QAccessible::installUpdateHandler(nullptr); }

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

TEST_F(Accessibility, ChangesThatAnEffectMakesByItselfAreAnnounced) {
    launchIntoControlPanel();
    announced.clear();
    m_keyboard->start();
    m_keyboard->stop();
    m_startup.startupSoundEnabled() = false;
    EXPECT_THAT(announced, ElementsAre(Pair("Keyboard", true), Pair("Keyboard", false),
                                       Pair("Startup", false)));
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
