#include <optional>

#include <gmock/gmock.h>

#include "platform/linux/keyboard/reader/Keyboard.h"
#include "tests/support/KeyboardPipe.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class KeyboardTest : public testing::Test {
protected:
    TemporaryFolder m_folder;
    KeyboardPipe m_pipe{m_folder.path() / "event0"};
    std::unique_ptr<Keyboard> m_keyboard = Keyboard::open(m_pipe.node());
};

TEST_F(KeyboardTest, ANodeThatIsNotThereIsNoKeyboard) {
    EXPECT_FALSE(Keyboard::open(m_folder.path() / "event1"));
}

TEST_F(KeyboardTest, WithoutEventsThereAreNoPressesAndNothingWaits) {
    EXPECT_EQ(m_keyboard->read(), 0U);
    EXPECT_FALSE(m_keyboard->isGone());
}

TEST_F(KeyboardTest, AllPressesInOneReadAreCounted) {
    for (const int key : {KEY_A, KEY_B, KEY_LEFTSHIFT, KEY_C})
        m_pipe.send(key, 1);
    EXPECT_EQ(m_keyboard->read(), 3U);
    EXPECT_EQ(m_keyboard->read(), 0U);
}

TEST_F(KeyboardTest, MoreEventsThanOneReadTakesAreAllCounted) {
    for (int i = 0; i < 300; ++i) {
        m_pipe.send(KEY_A, 1);
        m_pipe.send(KEY_A, 0);
    }
    std::size_t presses = 0;
    while (const std::size_t some = m_keyboard->read().value_or(0)) {
        EXPECT_LE(some, 16U) << "one read takes 64 events at most";
        presses += some;
    }
    EXPECT_EQ(presses, 300U);
}

TEST_F(KeyboardTest, AKeyboardThatIsUnpluggedIsGoneAfterItsLastEvents) {
    m_pipe.send(KEY_A, 1);
    m_pipe.unplug();
    EXPECT_TRUE(m_keyboard->isGone());
    EXPECT_EQ(m_keyboard->read(), 1U);
    EXPECT_EQ(m_keyboard->read(), std::nullopt);
}

TEST_F(KeyboardTest, ANodeThatSendsPartOfAnEventIsNoKeyboard) {
    const input_event event = KeyboardPipe::make(EV_KEY, KEY_A, 1);
    m_pipe.sendBytes({reinterpret_cast<const char*>(&event), 11});
    EXPECT_EQ(m_keyboard->read(), std::nullopt);
}

TEST_F(KeyboardTest, AKeyThatIsDownWhenItIsOpenedDoesNotCount) {
    m_keyboard = Keyboard::open(m_pipe.node(), [](int) -> std::optional<KeySet> {
        KeySet keys;
        keys.set(KEY_A, true);
        return keys;
    });
    m_pipe.send(KEY_A, 1);
    m_pipe.send(KEY_B, 1);
    EXPECT_EQ(m_keyboard->read(), 1U);
}

TEST_F(KeyboardTest, WhatIsNoInputDeviceTellsOfNoKeys) {
    EXPECT_EQ(Keyboard::keysThatAreDown(m_keyboard->descriptor()), std::nullopt);
}

} // namespace

} // namespace quorvane
