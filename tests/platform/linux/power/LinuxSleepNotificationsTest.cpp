#include <gmock/gmock.h>
#include <memory>

#include "tests/platform/linux/power/LinuxSleepNotificationsFixture.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(LinuxSleepNotificationsTest, ClosingAndOpeningTheLidIsOneSleepAndOneWake) {
    FakeUPower upower(address());
    Listener listener(m_workspace);
    settle(upower);
    upower.setLidIsClosed(true);
    upower.setLidIsClosed(true);
    upower.setLidIsClosed(false);
    upower.setLidIsClosed(false);
    upower.setLidIsClosed(true);
    EXPECT_THAT(listener.heard(3), ElementsAre("sleep", "wake", "sleep"));
    EXPECT_TRUE(listener.wasOnMainThreadOnly());
}

TEST_F(LinuxSleepNotificationsTest, SleepOfTheMachineIsOneSleepAndOneWake) {
    FakeUPower upower(address());
    const FakeLogind logind(address());
    Listener listener(m_workspace);
    settle(upower);
    logind.prepareForSleep(true);
    logind.prepareForSleep(true);
    logind.prepareForSleep(false);
    logind.prepareForSleep(false);
    logind.prepareForSleep(true);
    EXPECT_THAT(listener.heard(3), ElementsAre("sleep", "wake", "sleep"));
}

TEST_F(LinuxSleepNotificationsTest, ALidThatSendsTheMachineToSleepIsOneSleepAndOneWake) {
    FakeUPower upower(address());
    const FakeLogind logind(address());
    Listener listener(m_workspace);
    settle(upower);
    upower.setLidIsClosed(true);
    logind.prepareForSleep(true);
    logind.prepareForSleep(false);
    upower.setLidIsClosed(false);
    logind.prepareForSleep(true);
    upower.setLidIsClosed(true);
    upower.setLidIsClosed(false);
    logind.prepareForSleep(false);
    EXPECT_THAT(listener.heard(4), ElementsAre("sleep", "wake", "sleep", "wake"));
    EXPECT_EQ(listener.heardInAll().size(), 4U);
}

TEST_F(LinuxSleepNotificationsTest, OpeningALidThatWasClosedAtTheStartIsAWake) {
    FakeUPower upower(address(), true);
    Listener listener(m_workspace);
    settle(upower);
    EXPECT_THAT(listener.heardInAll(), IsEmpty());
    upower.setLidIsClosed(false);
    EXPECT_THAT(listener.heard(1), ElementsAre("wake"));
}

TEST_F(LinuxSleepNotificationsTest, AnInvalidatedPropertyIsReadAgain) {
    FakeUPower upower(address());
    Listener listener(m_workspace);
    settle(upower);
    upower.invalidateLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
}

TEST_F(LinuxSleepNotificationsTest, AMachineWithoutALidIsNotPutToSleepByOne) {
    FakeUPower upower(address(), false, false);
    const FakeLogind logind(address());
    Listener listener(m_workspace);
    settle(upower);
    upower.setLidIsClosed(true);
    upower.setLidIsClosed(false);
    logind.prepareForSleep(true);
    logind.prepareForSleep(false);
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "wake"));
    EXPECT_EQ(listener.heardInAll().size(), 2U);
}

TEST_F(LinuxSleepNotificationsTest, WithoutUPowerTheMachinesSleepIsStillHeard) {
    const FakeLogind logind(address());
    Listener listener(m_workspace);
    // The workspace does not report when it begins to listen, so the signal is repeated.
    const bool heard = waitUntil([&] {
        logind.prepareForSleep(true);
        logind.prepareForSleep(false);
        return listener.heard(0).size() >= 2;
    });
    ASSERT_TRUE(heard);
    EXPECT_EQ(listener.heard(0).at(0), "sleep");
    EXPECT_EQ(listener.heard(0).at(1), "wake");
}

TEST_F(LinuxSleepNotificationsTest, UPowerThatStartsLaterIsListenedTo) {
    Listener listener(m_workspace);
    EXPECT_THAT(listener.heardInAll(), IsEmpty());
    FakeUPower upower(address());
    settle(upower);
    upower.setLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
}

TEST_F(LinuxSleepNotificationsTest, AChangeMissedWhileUPowerWasAwayIsReportedWhenItIsBack) {
    auto first = std::make_unique<FakeUPower>(address());
    Listener listener(m_workspace);
    settle(*first);
    first->setLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    first.reset();
    FakeUPower second(address(), false);
    settle(second);
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "wake"));
    second.setLidIsClosed(true);
    EXPECT_THAT(listener.heard(3), ElementsAre("sleep", "wake", "sleep"));
}

TEST_F(LinuxSleepNotificationsTest, UPowerThatComesBackToTheSameLidIsNoEvent) {
    auto first = std::make_unique<FakeUPower>(address());
    Listener listener(m_workspace);
    settle(*first);
    first->setLidIsClosed(true);
    EXPECT_EQ(listener.heard(1).size(), 1U);
    first.reset();
    FakeUPower second(address(), true);
    settle(second);
    EXPECT_THAT(listener.heardInAll(), ElementsAre("sleep"));
}

TEST_F(LinuxSleepNotificationsTest, AServiceThatDiesEndsTheSleep) {
    FakeUPower upower(address());
    auto logind = std::make_unique<FakeLogind>(address());
    Listener listener(m_workspace);
    settle(upower);
    logind->prepareForSleep(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    logind.reset();
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "wake"));
}

TEST_F(LinuxSleepNotificationsTest, SignalsOfOtherServicesAreIgnored) {
    FakeUPower upower(address());
    FakeUPower otherUPower(address(), false, true, QStringLiteral("com.example.Stranger"));
    const FakeLogind otherLogind(address(), QStringLiteral("com.example.OtherStranger"));
    Listener listener(m_workspace);
    settle(upower);
    otherLogind.prepareForSleep(true);
    upower.setLidIsClosed(true);
    otherUPower.setLidIsClosed(false);
    upower.setLidIsClosed(true);
    upower.setLidIsClosed(false);
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "wake"));
    EXPECT_EQ(listener.heardInAll().size(), 2U);
}

} // namespace

} // namespace quorvane
