#include <gmock/gmock.h>
#include <memory>

#include "tests/platform/linux/power/LinuxSleepNotificationsFixture.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A desktop whose compositor tells whether the displays are on.
class LinuxSleepNotificationsDisplayTest : public LinuxSleepNotificationsTest {
protected:
    std::string sessionAddress() const { return m_session.address(); }
};

TEST_F(LinuxSleepNotificationsDisplayTest, DisplaysThatGoOffAndOnAreOneSleepAndOneWake) {
    FakeMutter mutter(sessionAddress());
    Listener listener(m_workspace);
    settle(mutter);
    mutter.setPowerSaveMode(3);
    mutter.setPowerSaveMode(3);
    mutter.setPowerSaveMode(0);
    mutter.setPowerSaveMode(0);
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "wake"));
    EXPECT_EQ(listener.heardInAll().size(), 2U);
    EXPECT_TRUE(listener.wasOnMainThreadOnly());
}

TEST_F(LinuxSleepNotificationsDisplayTest, EveryModeThatSavesPowerIsASleep) {
    FakeMutter mutter(sessionAddress());
    Listener listener(m_workspace);
    settle(mutter);
    mutter.setPowerSaveMode(1);
    mutter.setPowerSaveMode(2);
    mutter.setPowerSaveMode(-1);
    mutter.setPowerSaveMode(2);
    EXPECT_THAT(listener.heard(3), ElementsAre("sleep", "wake", "sleep"));
}

TEST_F(LinuxSleepNotificationsDisplayTest, DisplaysThatWereOffAtTheStartOnlyWake) {
    FakeMutter mutter(sessionAddress(), 3);
    Listener listener(m_workspace);
    settle(mutter);
    EXPECT_THAT(listener.heardInAll(), IsEmpty());
    mutter.setPowerSaveMode(0);
    EXPECT_THAT(listener.heard(1), ElementsAre("wake"));
}

TEST_F(LinuxSleepNotificationsDisplayTest, DisplaysLidAndMachineAreOneSleepAndOneWake) {
    FakeMutter mutter(sessionAddress());
    FakeUPower upower(address());
    const FakeLogind logind(address());
    Listener listener(m_workspace, {{WorkspaceNotification::didWake, "machine"},
                                    {WorkspaceNotification::screensDidWake, "screens"},
                                    {WorkspaceNotification::screensDidSleep, "sleep"}});
    settle(mutter);
    settle(upower);
    mutter.setPowerSaveMode(3);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    upower.setLidIsClosed(true);
    logind.prepareForSleep(true);
    upower.setLidIsClosed(false);
    logind.prepareForSleep(false);
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "machine"));
    EXPECT_EQ(listener.heardInAll().size(), 2U) << "the displays are still off";
    mutter.setPowerSaveMode(0);
    EXPECT_THAT(listener.heard(3), ElementsAre("sleep", "machine", "screens"));
}

TEST_F(LinuxSleepNotificationsDisplayTest, OtherPropertiesAreNoEvent) {
    FakeMutter mutter(sessionAddress());
    Listener listener(m_workspace);
    settle(mutter);
    mutter.setPowerSaveMode(3);
    mutter.sendOtherChange();
    EXPECT_THAT(listener.heardInAll(), ElementsAre("sleep"));
}

TEST_F(LinuxSleepNotificationsDisplayTest, ACompositorThatEndsWakesTheScreens) {
    auto mutter = std::make_unique<FakeMutter>(sessionAddress());
    Listener listener(m_workspace);
    settle(*mutter);
    mutter->setPowerSaveMode(3);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    mutter.reset();
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "wake"));
    FakeMutter next(sessionAddress());
    settle(next);
    next.setPowerSaveMode(3);
    EXPECT_THAT(listener.heard(3), ElementsAre("sleep", "wake", "sleep"));
}

TEST_F(LinuxSleepNotificationsDisplayTest, ACompositorThatStartsLaterCounts) {
    Listener listener(m_workspace);
    waitFor(quiet);
    FakeMutter mutter(sessionAddress());
    settle(mutter);
    mutter.setPowerSaveMode(3);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
}

TEST_F(LinuxSleepNotificationsDisplayTest, TheDisplaysAreNotReadUntilTheScreensAreObserved) {
    FakeMutter mutter(sessionAddress());
    const Listener machine(m_workspace, {{WorkspaceNotification::didWake, "machine"}});
    waitFor(quiet);
    EXPECT_EQ(mutter.reads(), 0);
    Listener screens(m_workspace);
    settle(mutter);
    mutter.setPowerSaveMode(3);
    EXPECT_THAT(screens.heard(1), ElementsAre("sleep"));
}

TEST_F(LinuxSleepNotificationsDisplayTest, ANewObserverAfterTheLastOneReadsTheDisplaysAgain) {
    FakeMutter mutter(sessionAddress());
    {
        Listener listener(m_workspace);
        settle(mutter);
        mutter.setPowerSaveMode(3);
        EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    }
    mutter.setPowerSaveMode(0);
    waitFor(quiet);
    Listener listener(m_workspace);
    settle(mutter, 2);
    mutter.setPowerSaveMode(3);
    EXPECT_THAT(listener.heardInAll(), ElementsAre("sleep"));
}

TEST_F(LinuxSleepNotificationsDisplayTest, TheLastObserverMayLeaveAsTheDisplaysGoOff) {
    FakeMutter mutter(sessionAddress());
    int heard = 0;
    NotificationCenter::Token token = 0;
    token = m_workspace.addObserver(WorkspaceNotification::screensDidSleep, [&] {
        ++heard;
        m_workspace.removeObserver(token);
    });
    settle(mutter);
    mutter.setPowerSaveMode(3);
    mutter.setPowerSaveMode(0);
    mutter.setPowerSaveMode(3);
    waitFor(quiet);
    EXPECT_EQ(heard, 1);
}

TEST_F(LinuxSleepNotificationsDisplayTest, TheDisplaysCountWithoutASystemBus) {
    LinuxSleepNotifications workspace("unix:path=/nonexistent/bus", sessionAddress());
    FakeMutter mutter(sessionAddress());
    Listener listener(workspace);
    settle(mutter);
    mutter.setPowerSaveMode(3);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
}

TEST_F(LinuxSleepNotificationsDisplayTest, TheLidCountsWithoutASessionBus) {
    LinuxSleepNotifications workspace(address(), "unix:path=/nonexistent/bus");
    FakeUPower upower(address());
    Listener listener(workspace);
    settle(upower);
    upower.setLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
}

} // namespace

} // namespace quorvane
