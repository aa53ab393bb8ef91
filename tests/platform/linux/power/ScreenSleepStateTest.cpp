#include <gtest/gtest.h>

#include "platform/linux/power/SleepSignals.h"

namespace quorvane {

namespace {

constexpr ScreenSleepState::Change noChange = std::nullopt;

class ScreenSleepStateTest : public testing::Test {
protected:
    ScreenSleepStateTest() { m_state.setLidClosed(false); }

    ScreenSleepState m_state;
};

TEST_F(ScreenSleepStateTest, ClosingAndOpeningTheLidAreOneChangeEach) {
    EXPECT_EQ(m_state.setLidClosed(true), true);
    EXPECT_EQ(m_state.setLidClosed(true), noChange);
    EXPECT_EQ(m_state.setLidClosed(false), false);
    EXPECT_EQ(m_state.setLidClosed(false), noChange);
}

TEST_F(ScreenSleepStateTest, GoingToSleepAndComingBackAreOneChangeEach) {
    EXPECT_EQ(m_state.setPreparingForSleep(true), true);
    EXPECT_EQ(m_state.setPreparingForSleep(true), noChange);
    EXPECT_EQ(m_state.setPreparingForSleep(false), false);
    EXPECT_EQ(m_state.setPreparingForSleep(false), noChange);
}

TEST_F(ScreenSleepStateTest, AClosedLidThatSendsTheMachineToSleepIsOneSleepAndOneWake) {
    EXPECT_EQ(m_state.setLidClosed(true), true);
    EXPECT_EQ(m_state.setPreparingForSleep(true), noChange);
    EXPECT_EQ(m_state.setPreparingForSleep(false), noChange);
    EXPECT_EQ(m_state.setLidClosed(false), false);
}

TEST_F(ScreenSleepStateTest, TheOrderInWhichTheTwoEndDoesNotMatter) {
    EXPECT_EQ(m_state.setPreparingForSleep(true), true);
    EXPECT_EQ(m_state.setLidClosed(true), noChange);
    EXPECT_EQ(m_state.setLidClosed(false), noChange);
    EXPECT_EQ(m_state.setPreparingForSleep(false), false);
}

TEST_F(ScreenSleepStateTest, SwitchingTheDisplaysOffAndOnAreOneChangeEach) {
    m_state.setDisplaysOff(false);
    EXPECT_EQ(m_state.setDisplaysOff(true), true);
    EXPECT_EQ(m_state.setDisplaysOff(true), noChange);
    EXPECT_EQ(m_state.setDisplaysOff(false), false);
    EXPECT_EQ(m_state.setDisplaysOff(false), noChange);
}

TEST_F(ScreenSleepStateTest, TheScreensWakeWhenTheLastOfTheThreeEnds) {
    m_state.setDisplaysOff(false);
    EXPECT_EQ(m_state.setDisplaysOff(true), true);
    EXPECT_EQ(m_state.setLidClosed(true), noChange);
    EXPECT_EQ(m_state.setPreparingForSleep(true), noChange);
    EXPECT_EQ(m_state.setPreparingForSleep(false), noChange);
    EXPECT_EQ(m_state.setLidClosed(false), noChange);
    EXPECT_EQ(m_state.setDisplaysOff(false), false);
}

TEST_F(ScreenSleepStateTest, DisplaysThatAreOnDoNotWakeTheScreensUnderAClosedLid) {
    m_state.setDisplaysOff(false);
    EXPECT_EQ(m_state.setLidClosed(true), true);
    EXPECT_EQ(m_state.setDisplaysOff(true), noChange);
    EXPECT_EQ(m_state.setDisplaysOff(false), noChange);
    EXPECT_EQ(m_state.setLidClosed(false), false);
}

TEST(ScreenSleepStateStartTest, SwitchingOnDisplaysThatWereOffAtTheStartIsAChange) {
    ScreenSleepState state;
    EXPECT_EQ(state.setDisplaysOff(true), noChange);
    EXPECT_EQ(state.setLidClosed(false), noChange);
    EXPECT_EQ(state.setDisplaysOff(false), false);
}

TEST(ScreenSleepStateStartTest, OpeningALidThatWasClosedAtTheStartIsAChange) {
    ScreenSleepState state;
    EXPECT_EQ(state.setLidClosed(true), noChange);
    EXPECT_EQ(state.setLidClosed(true), noChange);
    EXPECT_EQ(state.setPreparingForSleep(true), noChange);
    EXPECT_EQ(state.setPreparingForSleep(false), noChange);
    EXPECT_EQ(state.setLidClosed(false), false);
}

TEST_F(ScreenSleepStateTest, ALidThatIsForgottenCountsAsOpenAndItsNextStateIsNoChange) {
    EXPECT_EQ(m_state.forgetLid(), noChange);
    EXPECT_EQ(m_state.setLidClosed(true), noChange);
    EXPECT_EQ(m_state.forgetLid(), false);
    EXPECT_EQ(m_state.setLidClosed(true), noChange);
    EXPECT_EQ(m_state.setLidClosed(false), false);
}

TEST(ScreenSleepStateStartTest, SleepCountsWhenTheLidIsUnknown) {
    ScreenSleepState state;
    EXPECT_EQ(state.setPreparingForSleep(true), true);
    EXPECT_EQ(state.setPreparingForSleep(false), false);
}

} // namespace

} // namespace quorvane
