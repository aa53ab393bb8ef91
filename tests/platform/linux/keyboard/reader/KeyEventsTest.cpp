#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/keyboard/reader/KeyEvents.h"
#include "tests/support/KeyboardPipe.h"

namespace quorvane {

namespace {

class KeyEventsTest : public testing::Test {
protected:
    /// How many keys have gone down with a key's event and the report that ends it.
    std::size_t send(int key, int value) {
        return sendEvent(EV_KEY, key, value) + sendEvent(EV_SYN, SYN_REPORT, 0);
    }

    std::size_t sendEvent(int type, int code, int value) {
        if (!m_events)
            m_events.emplace([this] { return m_device; });
        return m_events->handle(KeyboardPipe::make(type, code, value));
    }

    void holdOnTheDevice(const std::vector<std::size_t>& keys) {
        m_device.emplace();
        for (const std::size_t key : keys)
            m_device->set(key, true);
    }

    /// What the device answers to the next question.
    std::optional<KeySet> m_device;
    std::optional<KeyEvents> m_events;
};

TEST_F(KeyEventsTest, EachKeyThatGoesDownCountsOnce) {
    EXPECT_EQ(send(KEY_A, 1), 1U);
    EXPECT_EQ(send(KEY_B, 1), 1U);
    EXPECT_EQ(send(KEY_A, 0), 0U);
    EXPECT_EQ(send(KEY_B, 2), 0U);
    EXPECT_EQ(send(KEY_A, 1), 1U);
}

TEST_F(KeyEventsTest, AKeyThatIsDownAlreadyDoesNotCount) {
    EXPECT_EQ(send(KEY_A, 1), 1U);
    EXPECT_EQ(send(KEY_A, 1), 0U);
    EXPECT_EQ(send(KEY_A, 0), 0U);
    EXPECT_EQ(send(KEY_A, 1), 1U);
}

TEST_F(KeyEventsTest, ARepeatDoesNotCountEvenOfAKeyThatWasNotDown) {
    EXPECT_EQ(send(KEY_A, 2), 0U);
    EXPECT_EQ(send(KEY_A, 1), 0U);
}

TEST_F(KeyEventsTest, NoModifierAndNoLockCounts) {
    for (const int key : {KEY_LEFTSHIFT, KEY_RIGHTSHIFT, KEY_LEFTCTRL, KEY_RIGHTCTRL, KEY_LEFTALT,
                          KEY_RIGHTALT, KEY_LEFTMETA, KEY_RIGHTMETA, KEY_CAPSLOCK, KEY_NUMLOCK,
                          KEY_SCROLLLOCK, KEY_FN, KEY_FN_RIGHT_SHIFT})
        EXPECT_EQ(send(key, 1) + send(key, 2) + send(key, 0), 0U) << "key " << key;
}

TEST_F(KeyEventsTest, ButtonsAreNoKeys) {
    for (const int button : {BTN_LEFT, BTN_TOUCH, BTN_SOUTH, BTN_DPAD_UP, BTN_TRIGGER_HAPPY1})
        EXPECT_EQ(send(button, 1), 0U) << "button " << button;
    for (const int key : {KEY_ESC, KEY_MICMUTE, KEY_OK, KEY_ALS_TOGGLE, KEY_MACRO1})
        EXPECT_EQ(send(key, 1), 1U) << "key " << key;
}

TEST_F(KeyEventsTest, EventsOtherThanKeysDoNotCount) {
    EXPECT_EQ(sendEvent(EV_MSC, MSC_SCAN, 30), 0U);
    EXPECT_EQ(sendEvent(EV_LED, LED_CAPSL, 1), 0U);
    EXPECT_EQ(sendEvent(EV_REL, REL_X, 1), 0U);
    EXPECT_EQ(sendEvent(EV_SYN, SYN_REPORT, 0), 0U);
}

TEST_F(KeyEventsTest, CodesThatNoKeyHasChangeNothing) {
    EXPECT_EQ(send(KEY_ESC, 0), 0U);
    EXPECT_EQ(sendEvent(EV_KEY, KEY_CNT, 1), 0U);
    EXPECT_EQ(sendEvent(EV_KEY, KEY_A, 1), 1U);
    EXPECT_EQ(sendEvent(EV_KEY, 65535, 1), 0U);
    EXPECT_EQ(sendEvent(EV_KEY, KEY_B, 1), 1U);
}

TEST_F(KeyEventsTest, TheDeviceIsAskedOnceAfterLostEvents) {
    EXPECT_EQ(send(KEY_A, 1), 1U);
    // The rest of the broken report is ignored.
    EXPECT_EQ(sendEvent(EV_SYN, SYN_DROPPED, 0), 0U);
    EXPECT_EQ(sendEvent(EV_KEY, KEY_C, 1), 0U);
    // Meanwhile A went up and B went down.
    holdOnTheDevice({KEY_B});
    EXPECT_EQ(sendEvent(EV_SYN, SYN_REPORT, 0), 1U);
    holdOnTheDevice({KEY_D, KEY_E});
    EXPECT_EQ(send(KEY_B, 2), 0U);
    EXPECT_EQ(send(KEY_B, 1), 0U) << "B is known to be down";
    EXPECT_EQ(send(KEY_A, 1), 1U) << "A is known to be up";
    EXPECT_EQ(send(KEY_C, 1), 1U);
}

TEST_F(KeyEventsTest, AKeyHeldThroughoutAGapDoesNotCount) {
    EXPECT_EQ(send(KEY_A, 1), 1U);
    holdOnTheDevice({KEY_A});
    EXPECT_EQ(sendEvent(EV_SYN, SYN_DROPPED, 0), 0U);
    EXPECT_EQ(send(KEY_A, 2), 0U);
}

TEST_F(KeyEventsTest, AModifierThatGoesDownInAGapDoesNotCount) {
    EXPECT_EQ(send(KEY_A, 1), 1U);
    holdOnTheDevice({KEY_A, KEY_LEFTSHIFT, BTN_LEFT});
    EXPECT_EQ(sendEvent(EV_SYN, SYN_DROPPED, 0) + sendEvent(EV_SYN, SYN_REPORT, 0), 0U);
}

TEST_F(KeyEventsTest, AGapWithNoKeyDownBeforeOrAfterCountsOnce) {
    holdOnTheDevice({});
    EXPECT_EQ(sendEvent(EV_SYN, SYN_DROPPED, 0), 0U);
    EXPECT_EQ(send(KEY_A, 0), 1U);
    EXPECT_EQ(send(KEY_A, 1), 1U);
}

TEST_F(KeyEventsTest, AGapAfterWhichTheDeviceDoesNotAnswerDoesNotCount) {
    EXPECT_EQ(sendEvent(EV_SYN, SYN_DROPPED, 0) + sendEvent(EV_SYN, SYN_REPORT, 0), 0U);
    EXPECT_EQ(send(KEY_A, 1), 1U);
}

TEST_F(KeyEventsTest, AKeyThatWasDownBeforeDoesNotCount) {
    holdOnTheDevice({KEY_A});
    EXPECT_EQ(send(KEY_A, 1), 0U);
    EXPECT_EQ(sendEvent(EV_SYN, SYN_DROPPED, 0) + sendEvent(EV_SYN, SYN_REPORT, 0), 0U);
    EXPECT_EQ(send(KEY_A, 1), 0U);
}

TEST_F(KeyEventsTest, NoKeyStaysInTheMemoryOfASet) {
    alignas(KeySet) std::array<unsigned char, sizeof(KeySet)> memory{};
    auto* keys = new (memory.data()) KeySet;
    keys->set(KEY_A, true);
    ASSERT_NE(std::count(memory.begin(), memory.end(), 0), std::ptrdiff_t{sizeof(KeySet)});
    keys->~KeySet();
    EXPECT_EQ(std::count(memory.begin(), memory.end(), 0), std::ptrdiff_t{sizeof(KeySet)});
}

} // namespace

} // namespace quorvane
