#include <gmock/gmock.h>
#include <memory>
#include <vector>

#include "tests/platform/linux/power/LinuxSleepNotificationsFixture.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;

using LinuxSleepNotificationsWakeTest = LinuxSleepNotificationsTest;

const std::vector<Listener::Mark> machineOnly{{WorkspaceNotification::didWake, "machine"}};
const std::vector<Listener::Mark> machineAndScreens{
    {WorkspaceNotification::screensDidWake, "screens"},
    {WorkspaceNotification::screensDidSleep, "sleep"},
    {WorkspaceNotification::didWake, "machine"}};

TEST_F(LinuxSleepNotificationsWakeTest, EachWakeOfTheMachineIsPostedOnceBeforeThatOfTheScreens) {
    FakeUPower upower(address());
    const FakeLogind logind(address());
    Listener listener(m_workspace, machineAndScreens);
    settle(upower);
    logind.prepareForSleep(true);
    logind.prepareForSleep(false);
    logind.prepareForSleep(true);
    logind.prepareForSleep(false);
    EXPECT_THAT(listener.heard(6),
                ElementsAre("sleep", "machine", "screens", "sleep", "machine", "screens"));
    EXPECT_TRUE(listener.wasOnMainThreadOnly());
}

TEST_F(LinuxSleepNotificationsWakeTest, AMachineThatWakesUnderAClosedLidWakesWithoutItsScreens) {
    FakeUPower upower(address());
    const FakeLogind logind(address());
    Listener listener(m_workspace, machineAndScreens);
    settle(upower);
    upower.setLidIsClosed(true);
    logind.prepareForSleep(true);
    logind.prepareForSleep(false);
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "machine"));
    upower.setLidIsClosed(false);
    EXPECT_THAT(listener.heard(3), ElementsAre("sleep", "machine", "screens"));
}

TEST_F(LinuxSleepNotificationsWakeTest, OpeningTheLidDoesNotWakeTheMachine) {
    FakeUPower upower(address());
    Listener listener(m_workspace, machineAndScreens);
    settle(upower);
    upower.setLidIsClosed(true);
    upower.setLidIsClosed(false);
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "screens"));
    EXPECT_EQ(listener.heardInAll().size(), 2U);
}

TEST_F(LinuxSleepNotificationsWakeTest, AServiceThatDiesWhileTheMachineSleepsWakesOnlyTheScreens) {
    FakeUPower upower(address());
    auto logind = std::make_unique<FakeLogind>(address());
    Listener listener(m_workspace, machineAndScreens);
    settle(upower);
    logind->prepareForSleep(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    logind.reset();
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "screens"));
    EXPECT_EQ(listener.heardInAll().size(), 2U);
}

TEST_F(LinuxSleepNotificationsWakeTest, AWakeSignalOfAnotherServiceIsIgnored) {
    FakeUPower upower(address());
    const FakeLogind logind(address());
    const FakeLogind otherLogind(address(), QStringLiteral("com.example.Stranger"));
    Listener listener(m_workspace, machineAndScreens);
    settle(upower);
    otherLogind.prepareForSleep(false);
    logind.prepareForSleep(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
}

TEST_F(LinuxSleepNotificationsWakeTest, UPowerIsNotUsedUntilTheScreensAreObserved) {
    FakeUPower upower(address());
    const FakeLogind logind(address());
    Listener machine(m_workspace, machineOnly);
    ASSERT_TRUE(waitUntil([&] {
        logind.prepareForSleep(false);
        return !machine.heard(0).empty();
    }));
    waitFor(quiet);
    EXPECT_EQ(upower.reads(), 0);
    Listener screens(m_workspace);
    settle(upower);
    upower.setLidIsClosed(true);
    EXPECT_THAT(screens.heard(1), ElementsAre("sleep"));
}

TEST_F(LinuxSleepNotificationsWakeTest, TheLastObserverMayLeaveAsTheMachineWakes) {
    FakeUPower upower(address());
    const FakeLogind logind(address());
    int heard = 0;
    NotificationCenter::Token machine = 0;
    NotificationCenter::Token screens = 0;
    machine = m_workspace.addObserver(WorkspaceNotification::didWake, [&] {
        ++heard;
        m_workspace.removeObserver(machine);
        m_workspace.removeObserver(screens);
    });
    screens = m_workspace.addObserver(WorkspaceNotification::screensDidWake, [&] { ++heard; });
    settle(upower);
    logind.prepareForSleep(true);
    logind.prepareForSleep(false);
    logind.prepareForSleep(false);
    EXPECT_TRUE(waitUntil([&] { return heard > 0; }));
    waitFor(quiet);
    EXPECT_EQ(heard, 1);
}

} // namespace

} // namespace quorvane
