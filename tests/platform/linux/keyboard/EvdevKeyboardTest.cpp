#include <optional>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/keyboard/EvdevKeyboard.h"
#include "tests/support/KeyboardPipe.h"
#include "tests/support/QtApplication.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Heard = std::pair<TapEventType, std::int64_t>;

// The result of the next query. Global, because the query has no context argument.
std::optional<EvdevKeyboard::Keys> keysByTheDevice;

std::optional<EvdevKeyboard::Keys> answer(int /*descriptor*/) {
    return keysByTheDevice;
}

class EvdevKeyboardTest : public testing::Test {
protected:
    EvdevKeyboardTest() { keysByTheDevice.reset(); }

    void openKeyboard() {
        m_keyboard = EvdevKeyboard::open(
            m_pipe.node(),
            [this](const TapEvent& event) {
                m_heard.emplace_back(event.type, event.keyboardAutorepeat);
            },
            &answer);
        ASSERT_TRUE(m_keyboard);
        m_keyboard->setReading(true);
    }

    std::vector<Heard> heard() {
        QCoreApplication::processEvents();
        return std::exchange(m_heard, {});
    }

    static void holdOnTheDevice(const std::vector<std::size_t>& keys) {
        keysByTheDevice.emplace();
        for (const std::size_t key : keys)
            keysByTheDevice->set(key);
    }

    QtApplication m_application;
    TemporaryFolder m_folder;
    KeyboardPipe m_pipe{m_folder.path() / "event0"};
    std::vector<Heard> m_heard;
    std::unique_ptr<EvdevKeyboard> m_keyboard;
};

constexpr Heard keyDown{TapEventType::KeyDown, 0};
constexpr Heard repeatedKeyDown{TapEventType::KeyDown, 1};
constexpr Heard keyUp{TapEventType::KeyUp, 0};
constexpr Heard flagsChanged{TapEventType::FlagsChanged, 0};

TEST_F(EvdevKeyboardTest, ANodeThatIsNotThereIsNoKeyboard) {
    EXPECT_FALSE(EvdevKeyboard::open(m_folder.path() / "event1", [](const TapEvent&) {}));
}

TEST_F(EvdevKeyboardTest, SeveralKeysAtOnceEachGoDownAndUp) {
    openKeyboard();
    m_pipe.send(KEY_A, 1);
    m_pipe.send(KEY_B, 1);
    m_pipe.send(KEY_A, 0);
    m_pipe.send(KEY_B, 2);
    m_pipe.send(KEY_A, 1);
    EXPECT_THAT(heard(), ElementsAre(keyDown, keyDown, keyUp, repeatedKeyDown, keyDown));
}

TEST_F(EvdevKeyboardTest, EveryModifierAndLockOnlyChangesFlags) {
    openKeyboard();
    for (const int key :
         {KEY_LEFTSHIFT, KEY_RIGHTSHIFT, KEY_LEFTCTRL, KEY_RIGHTCTRL, KEY_LEFTALT, KEY_RIGHTALT,
          KEY_LEFTMETA, KEY_RIGHTMETA, KEY_CAPSLOCK, KEY_NUMLOCK, KEY_SCROLLLOCK, KEY_FN}) {
        m_pipe.send(key, 1);
        m_pipe.send(key, 2);
        m_pipe.send(key, 0);
        EXPECT_THAT(heard(), ElementsAre(flagsChanged, flagsChanged)) << "key " << key;
    }
}

TEST_F(EvdevKeyboardTest, ButtonsAreNoKeys) {
    openKeyboard();
    for (const int button : {BTN_LEFT, BTN_TOUCH, BTN_SOUTH, BTN_DPAD_UP, BTN_TRIGGER_HAPPY1})
        m_pipe.send(button, 1);
    EXPECT_THAT(heard(), IsEmpty());
    for (const int key : {KEY_ESC, KEY_MICMUTE, KEY_OK, KEY_ALS_TOGGLE, KEY_MACRO1})
        m_pipe.send(key, 1);
    EXPECT_THAT(heard(), ElementsAre(keyDown, keyDown, keyDown, keyDown, keyDown));
}

TEST_F(EvdevKeyboardTest, EventsOtherThanKeysAreNotHeard) {
    openKeyboard();
    m_pipe.sendEvent(EV_MSC, MSC_SCAN, 30);
    m_pipe.sendEvent(EV_LED, LED_CAPSL, 1);
    m_pipe.sendEvent(EV_REL, REL_X, 1);
    m_pipe.sendEvent(EV_KEY, KEY_CNT, 1);
    m_pipe.sendEvent(EV_SYN, SYN_REPORT, 0);
    EXPECT_THAT(heard(), IsEmpty());
}

TEST_F(EvdevKeyboardTest, TheStateIsQueriedOnceAfterLostEvents) {
    openKeyboard();
    m_pipe.send(KEY_A, 1);
    EXPECT_THAT(heard(), ElementsAre(keyDown));
    // The rest of the broken report is ignored.
    m_pipe.sendEvent(EV_SYN, SYN_DROPPED, 0);
    m_pipe.sendEvent(EV_KEY, KEY_C, 1);
    EXPECT_THAT(heard(), IsEmpty());
    // Meanwhile A went up and B went down.
    holdOnTheDevice({KEY_B});
    m_pipe.sendEvent(EV_SYN, SYN_REPORT, 0);
    EXPECT_THAT(heard(), testing::UnorderedElementsAre(keyUp, keyDown));
    m_pipe.send(KEY_B, 2);
    m_pipe.send(KEY_C, 1);
    EXPECT_THAT(heard(), ElementsAre(repeatedKeyDown, keyDown));
}

TEST_F(EvdevKeyboardTest, AKeyHeldThroughoutAGapIsNoPress) {
    openKeyboard();
    m_pipe.send(KEY_A, 1);
    EXPECT_THAT(heard(), ElementsAre(keyDown));
    holdOnTheDevice({KEY_A});
    m_pipe.sendEvent(EV_SYN, SYN_DROPPED, 0);
    m_pipe.send(KEY_A, 2);
    EXPECT_THAT(heard(), IsEmpty());
}

TEST_F(EvdevKeyboardTest, AGapWithNoKeyDownBeforeOrAfterCountsAsOnePress) {
    openKeyboard();
    holdOnTheDevice({});
    m_pipe.sendEvent(EV_SYN, SYN_DROPPED, 0);
    m_pipe.send(KEY_A, 0);
    EXPECT_THAT(heard(), ElementsAre(keyDown, keyUp));
    m_pipe.send(KEY_A, 1);
    EXPECT_THAT(heard(), ElementsAre(keyDown));
}

TEST_F(EvdevKeyboardTest, AKeyThatWasDownBeforeIsNoPress) {
    holdOnTheDevice({KEY_A});
    openKeyboard();
    m_pipe.send(KEY_A, 2);
    EXPECT_THAT(heard(), ElementsAre(repeatedKeyDown));
    m_pipe.sendEvent(EV_SYN, SYN_DROPPED, 0);
    m_pipe.sendEvent(EV_SYN, SYN_REPORT, 0);
    EXPECT_THAT(heard(), IsEmpty());
}

TEST_F(EvdevKeyboardTest, AnEventReadInTwoHalvesIsHeard) {
    openKeyboard();
    const input_event event = KeyboardPipe::make(EV_KEY, KEY_A, 1);
    const std::string_view bytes(reinterpret_cast<const char*>(&event), sizeof event);
    m_pipe.sendBytes(bytes.substr(0, 11));
    EXPECT_THAT(heard(), IsEmpty());
    m_pipe.sendBytes(bytes.substr(11));
    EXPECT_THAT(heard(), ElementsAre(keyDown));
}

TEST_F(EvdevKeyboardTest, AKeyboardThatVanishesInMidEventIsClosed) {
    openKeyboard();
    m_pipe.send(KEY_A, 1);
    const input_event event = KeyboardPipe::make(EV_KEY, KEY_B, 1);
    m_pipe.sendBytes({reinterpret_cast<const char*>(&event), 7});
    m_pipe.unplug();
    EXPECT_THAT(heard(), ElementsAre(keyDown));
    EXPECT_FALSE(m_keyboard->isOpen());
    m_keyboard->setReading(false);
    m_keyboard->setReading(true);
    EXPECT_THAT(heard(), IsEmpty());
}

TEST_F(EvdevKeyboardTest, MoreEventsThanTheBufferHoldsAreAllHeard) {
    openKeyboard();
    for (int i = 0; i < 300; ++i) {
        m_pipe.send(KEY_A, 1);
        m_pipe.send(KEY_A, 0);
    }
    EXPECT_EQ(heard().size(), 600U);
}

} // namespace

} // namespace quorvane
