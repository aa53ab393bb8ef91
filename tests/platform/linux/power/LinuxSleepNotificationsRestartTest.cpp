// Buses that come late, or go and come back.

#include <gmock/gmock.h>
#include <memory>

#include "tests/platform/linux/power/LinuxSleepNotificationsFixture.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The services go with the bus, as their connections do.
class LinuxSleepNotificationsRestartTest : public LinuxSleepNotificationsTest {
protected:
    void startServices(bool lidIsClosed) {
        m_upower = std::make_unique<FakeUPower>(address(), lidIsClosed);
        m_logind = std::make_unique<FakeLogind>(address());
    }

    void stopBus() {
        m_bus.stop();
        waitFor(quiet);
        m_upower.reset();
        m_logind.reset();
    }

    /// With services, and once the workspace has asked for the lid.
    void restartBus(bool lidIsClosed) {
        m_bus.restart();
        startServices(lidIsClosed);
        settle(*m_upower);
    }

    std::unique_ptr<FakeUPower> m_upower;
    std::unique_ptr<FakeLogind> m_logind;
};

const std::vector<Listener::Mark> machineAndScreens{
    {WorkspaceNotification::screensDidWake, "screens"},
    {WorkspaceNotification::screensDidSleep, "sleep"},
    {WorkspaceNotification::didWake, "machine"}};

TEST_F(LinuxSleepNotificationsRestartTest, ASystemBusThatStartsLaterIsJoined) {
    m_bus.stop();
    Listener listener(m_workspace, machineAndScreens);
    EXPECT_THAT(listener.heardInAll(), IsEmpty());
    restartBus(false);
    m_upower->setLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    m_logind->prepareForSleep(false);
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "machine"));
}

TEST_F(LinuxSleepNotificationsRestartTest, ASystemBusThatRestartsIsJoinedAgain) {
    startServices(false);
    Listener listener(m_workspace, machineAndScreens);
    settle(*m_upower);
    for (int round = 0; round < 2; ++round) {
        stopBus();
        restartBus(false);
    }
    m_logind->prepareForSleep(true);
    m_logind->prepareForSleep(false);
    m_upower->setLidIsClosed(true);
    EXPECT_THAT(listener.heard(4), ElementsAre("sleep", "machine", "screens", "sleep"));
}

TEST_F(LinuxSleepNotificationsRestartTest, ALidOpenedWhileTheBusWasAwayWakesTheScreens) {
    startServices(false);
    Listener listener(m_workspace);
    settle(*m_upower);
    m_upower->setLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    stopBus();
    EXPECT_THAT(listener.heardInAll(), ElementsAre("sleep"));
    restartBus(false);
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "wake"));
    m_upower->setLidIsClosed(true);
    EXPECT_THAT(listener.heard(3), ElementsAre("sleep", "wake", "sleep"));
}

TEST_F(LinuxSleepNotificationsRestartTest, ALidClosedWhileTheBusWasAwayPutsTheScreensToSleep) {
    startServices(false);
    Listener listener(m_workspace);
    settle(*m_upower);
    stopBus();
    restartBus(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
}

TEST_F(LinuxSleepNotificationsRestartTest, ALidOfWhichNothingIsKnownAnyMoreCountsAsOpen) {
    startServices(false);
    Listener listener(m_workspace);
    settle(*m_upower);
    m_upower->setLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    stopBus();
    m_bus.restart();
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "wake"));
}

TEST_F(LinuxSleepNotificationsRestartTest, ABusThatGoesBeforeTheMachineWakesLeavesTheScreensAwake) {
    startServices(false);
    Listener listener(m_workspace, machineAndScreens);
    settle(*m_upower);
    m_logind->prepareForSleep(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    stopBus();
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "screens"));
    restartBus(false);
    m_logind->prepareForSleep(true);
    EXPECT_THAT(listener.heard(3), ElementsAre("sleep", "screens", "sleep"));
}

TEST_F(LinuxSleepNotificationsRestartTest, ASessionBusThatRestartsIsJoinedAgain) {
    auto mutter = std::make_unique<FakeMutter>(m_session.address());
    Listener listener(m_workspace);
    settle(*mutter);
    mutter->setPowerSaveMode(3);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    m_session.stop();
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "wake"));
    mutter.reset();
    m_session.restart();
    FakeMutter next(m_session.address());
    settle(next);
    next.setPowerSaveMode(3);
    EXPECT_THAT(listener.heard(3), ElementsAre("sleep", "wake", "sleep"));
}

} // namespace

} // namespace quorvane
