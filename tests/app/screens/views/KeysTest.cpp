#include "tests/app/screens/ScreensFixture.h"

namespace quorvane {
namespace {

constexpr std::array pressingKeys{Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter};

// What keys do to the focused control.
class Keys : public ScreensTest {
protected:
    Keys() {
        m_effects.keyboard = [this] { return m_keyboard; };
    }
};

TEST_F(Keys, ToggleASwitch) {
    launchIntoControlPanel();
    focus("Keyboard");
    for (const Qt::Key key : pressingKeys) {
        type(key);
        EXPECT_TRUE(isOn("Keyboard")) << key;
        type(key);
        EXPECT_FALSE(isOn("Keyboard")) << key;
    }
}

TEST_F(Keys, ToggleASwitchOnceHoweverLongTheyAreHeld) {
    launchIntoControlPanel();
    focus("Keyboard");
    for (const Qt::Key key : pressingKeys) {
        type(key);
        repeat(key);
        repeat(key);
        EXPECT_TRUE(isOn("Keyboard")) << key;
        type(key);
    }
    EXPECT_EQ(m_keyboard->starts, 3);
    EXPECT_EQ(m_keyboard->stops, 3);
}

TEST_F(Keys, PressAButton) {
    launchIntoControlPanel();
    focus("About Keyboard");
    for (const Qt::Key key : pressingKeys) {
        type(key);
        EXPECT_TRUE(m_content->showInfo()) << key;
        settle();
        EXPECT_EQ(focused(), "OK");
        type(key);
        EXPECT_FALSE(m_content->showInfo()) << key;
        settle();
        EXPECT_EQ(focused(), "About Keyboard");
    }
}

TEST_F(Keys, DoNothingWhenRepeated) {
    launchIntoControlPanel();
    focus("About Keyboard");
    for (const Qt::Key key : pressingKeys) {
        repeat(key);
        EXPECT_FALSE(m_content->showInfo()) << key;
    }
    type(Qt::Key_Return);
    settle();
    // The popup would be gone before it is seen.
    for (const Qt::Key key : pressingKeys) {
        repeat(key);
        EXPECT_TRUE(m_content->showInfo()) << key;
    }
}

TEST_F(Keys, OfOtherKindsDoNothing) {
    launchIntoControlPanel();
    for (const char* control : {"Keyboard", "About Keyboard", stop}) {
        focus(control);
        for (const Qt::Key key : {Qt::Key_A, Qt::Key_Escape, Qt::Key_Down})
            type(key);
    }
    EXPECT_EQ(m_keyboard->starts, 0);
    EXPECT_FALSE(m_content->showInfo());
    EXPECT_TRUE(m_content->sufferingMode());
}

} // namespace
} // namespace quorvane
