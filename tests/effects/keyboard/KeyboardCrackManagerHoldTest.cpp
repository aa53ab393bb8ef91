#include "tests/effects/keyboard/KeyboardCrackManagerFixture.h"

namespace quorvane {
namespace {

class KeyboardCrackManagerHold : public KeyboardCrackManagerTest {
protected:
    KeyboardCrackManagerHold() { makeListening(); }

    /// Expects the hold to end after exactly `seconds`.
    void expectHoldToLast(double seconds) {
        machine.runLoop.advance(seconds - 0.001);
        EXPECT_EQ(machine.audio.holdCount(), 1U);
        machine.runLoop.advance(0.001);
        EXPECT_EQ(machine.audio.holdCount(), 0U);
    }
};

TEST_F(KeyboardCrackManagerHold, EndsAfterFifteenMinutesWithoutAKey) {
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U) << "nothing ticks";
    expectHoldToLast(900);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
    EXPECT_TRUE(manager->isActive());
}

TEST_F(KeyboardCrackManagerHold, IsProlongedByEveryKey) {
    for (int i = 0; i < 3; ++i) {
        machine.runLoop.advance(899);
        press();
    }
    machine.runLoop.advance(1);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U) << "one timer for all keys";
    expectHoldToLast(899);
}

TEST_F(KeyboardCrackManagerHold, IsProlongedByAKeyThatIsTooEarlyForACrack) {
    press();
    machine.runLoop.advance(0.1);
    press();
    EXPECT_EQ(cracks(), 1U);
    expectHoldToLast(900);
}

TEST_F(KeyboardCrackManagerHold, BeginsAgainWithTheKeyAfterAPause) {
    machine.runLoop.advance(7200);
    press();
    EXPECT_EQ(cracks(), 1U);
    expectHoldToLast(900);
}

TEST_F(KeyboardCrackManagerHold, EndsWithItsTimerWhenTheManagerStops) {
    machine.runLoop.advance(60);
    press();
    manager->stop();
    EXPECT_EQ(machine.audio.holdCount(), 0U);
    EXPECT_EQ(machine.runLoop.pendingCount(), 1U) << "the end of the crack";
    machine.runLoop.advance(1);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(KeyboardCrackManagerHold, IsNotBegunAgainByAKeyFromBeforeTheStop) {
    machine.runLoop.holdMainQueue(true);
    EXPECT_TRUE(machine.eventTaps.pressKey());
    manager->stop();
    machine.runLoop.holdMainQueue(false);
    machine.runLoop.runMainQueue();
    EXPECT_EQ(machine.audio.holdCount(), 0U);
    machine.runLoop.advance(1);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(KeyboardCrackManagerHold, LastsFifteenMinutesAgainAfterARestart) {
    machine.runLoop.advance(800);
    manager->stop();
    manager->start();
    expectHoldToLast(900);
}

} // namespace
} // namespace quorvane
