#include "tests/app/screens/ScreensFixture.h"

#include "app/screens/bridge/PressControl.h"

namespace quorvane {
namespace {

using testing::Contains;
using testing::IsSupersetOf;
using testing::Not;

class InfoPopup : public ScreensTest {
protected:
    InfoPopup() {
        m_effects.keyboard = [this] { return m_keyboard; };
        m_effects.fan = [this] { return m_fan; };
    }

    void open() {
        launchIntoControlPanel();
        press("About Build quality");
        settle();
    }

    void expectClosed() {
        settle();
        EXPECT_FALSE(m_content->showInfo());
        EXPECT_THAT(buttons(), Not(Contains("OK")));
    }
};

TEST_F(InfoPopup, ExplainsTheRow) {
    open();
    EXPECT_THAT(texts(),
                IsSupersetOf({"Build Quality",
                              "Premium hinge quality simulation. Experience the authentic build "
                              "quality of a real Windows laptop.\n\nTry moving your laptop lid to "
                              "feel the difference."}));
    EXPECT_THAT(buttons(), Contains("OK"));
}

TEST_F(InfoPopup, OfEachRowHasItsOwnTitle) {
    m_effects.bsod = [] { return std::make_shared<FakeEffect>(); };
    m_effects.freeze = [] { return std::make_shared<FakeEffect>(); };
    launchIntoControlPanel();
    const std::vector<std::pair<std::string, std::string>> rows{
        {"About Build quality", "Build Quality"},          {"About Keyboard", "Tactile Feedback"},
        {"About Thermals", "Thermal Performance"},         {"About Stability", "System Stability"},
        {"About Performance", "Multitasking Performance"}, {"About Startup", "Boot Experience"}};
    for (const auto& [button, title] : rows) {
        press(button);
        EXPECT_THAT(texts(), Contains(title));
        press("OK");
        EXPECT_THAT(texts(), Not(Contains(title)));
    }
}

TEST_F(InfoPopup, IsDismissedByItsButton) {
    open();
    press("OK");
    expectClosed();
}

TEST_F(InfoPopup, IsDismissedByMouse) {
    open();
    click("OK");
    expectClosed();
}

TEST_F(InfoPopup, IsDismissedByReturn) {
    open();
    type(Qt::Key_Return);
    expectClosed();
}

TEST_F(InfoPopup, IsDismissedByEscape) {
    open();
    type(Qt::Key_Escape);
    expectClosed();
}

TEST_F(InfoPopup, IsDismissedBySpace) {
    open();
    EXPECT_EQ(focused(), "OK");
    type(Qt::Key_Space);
    expectClosed();
}

TEST_F(InfoPopup, KeepsKeyboardAndMouseFromTheScreenBelow) {
    open();
    for (int i = 0; i < 3; ++i) {
        type(Qt::Key_Tab);
        EXPECT_EQ(focused(), "OK");
    }
    click("Build quality");
    EXPECT_FALSE(m_content->audioEnabled());
    click(stop);
    EXPECT_TRUE(m_content->sufferingMode());
    EXPECT_TRUE(m_content->showInfo());
    EXPECT_EQ(focused(), "OK");
}

TEST_F(InfoPopup, KeepsScreenReadersFromTheScreenBelow) {
    open();
    EXPECT_FALSE(pressControl(m_window->window(), "Build quality"));
    toggle("Build quality");
    EXPECT_FALSE(m_content->audioEnabled());
    press("Build quality");
    EXPECT_FALSE(m_content->audioEnabled());
    EXPECT_FALSE(pressControl(m_window->window(), stop));
    press(stop);
    EXPECT_TRUE(m_content->sufferingMode());
}

TEST_F(InfoPopup, ShowsTheLastInfoButtonPressedMeanwhileOnceDismissed) {
    open();
    press("About Keyboard");
    openInfo("Thermals");
    EXPECT_THAT(texts(), Contains("Build Quality"));
    EXPECT_THAT(texts(), Not(Contains("Tactile Feedback")));
    EXPECT_THAT(texts(), Not(Contains("Thermal Performance")));
    press("OK");
    settle();
    EXPECT_THAT(texts(), Contains("Thermal Performance"));
    EXPECT_THAT(texts(), Not(Contains("Build Quality")));
    EXPECT_EQ(focused(), "OK");
    press("OK");
    expectClosed();
}

TEST_F(InfoPopup, CanBeRaisedFromAnyScreen) {
    launchChecked();
    m_content->presentInfo(ToggleRowTexts::startup);
    settle();
    EXPECT_THAT(texts(), Contains("Boot Experience"));
    press("OK");
    expectClosed();
    EXPECT_THAT(texts(), Contains("CAUTION"));
}

TEST_F(InfoPopup, GivesTheKeyboardBackToTheInfoButton) {
    launchIntoControlPanel();
    type(Qt::Key_Tab);
    ASSERT_EQ(focused(), "About Build quality");
    type(Qt::Key_Space);
    settle();
    ASSERT_EQ(focused(), "OK");
    type(Qt::Key_Escape);
    expectClosed();
    EXPECT_EQ(focused(), "About Build quality");
}

TEST_F(InfoPopup, ShowsTheRowOfTheLastInfoButton) {
    open();
    press("OK");
    openInfo("Keyboard");
    EXPECT_THAT(texts(), IsSupersetOf({"Tactile Feedback",
                                       "Genuine keyboard feedback. Feel the premium tactile "
                                       "response of original Windows hardware.\n\nJust start "
                                       "typing anything."}));
}

} // namespace
} // namespace quorvane
