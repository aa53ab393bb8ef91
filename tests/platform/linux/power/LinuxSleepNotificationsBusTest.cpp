#include <chrono>
#include <ctime>
#include <gmock/gmock.h>
#include <memory>
#include <string>

#include "tests/platform/linux/power/LinuxSleepNotificationsFixture.h"
#include "tests/support/Environment.h"
#include "tests/support/HungBus.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Enough for a busy machine; less than anything that waits for a bus to answer takes.
constexpr std::chrono::milliseconds longestWait = 100ms;

TEST_F(LinuxSleepNotificationsTest, TheBusIsConnectedOnlyWhileThereAreObservers) {
    const FakeLogind witness(address());
    const auto connections = [this] {
        auto bus = QDBusConnection::connectToBus(QString::fromStdString(address()), "census");
        const auto names = bus.call(QDBusMessage::createMethodCall(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ListNames"));
        QDBusConnection::disconnectFromBus("census");
        return names.arguments().value(0).toStringList().filter(QStringLiteral(":")).size();
    };
    const auto before = connections();
    {
        const Listener listener(m_workspace);
        EXPECT_TRUE(waitUntil([&] { return connections() == before + 1; }));
    }
    EXPECT_TRUE(waitUntil([&] { return connections() == before; }));
}

TEST_F(LinuxSleepNotificationsTest, ANewObserverAfterTheLastOneStartsOver) {
    FakeUPower upower(address());
    {
        Listener listener(m_workspace);
        settle(upower);
        upower.setLidIsClosed(true);
        EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    }
    Listener listener(m_workspace);
    settle(upower, 2);
    EXPECT_THAT(listener.heardInAll(), IsEmpty());
    upower.setLidIsClosed(false);
    EXPECT_THAT(listener.heard(1), ElementsAre("wake"));
}

TEST_F(LinuxSleepNotificationsTest, ALidThatMovedWhileNoOneObservedIsNoEvent) {
    FakeUPower upower(address());
    {
        Listener listener(m_workspace);
        settle(upower);
        upower.setLidIsClosed(true);
        EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    }
    upower.setLidIsClosed(false);
    Listener listener(m_workspace);
    settle(upower, 2);
    upower.setLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
}

TEST_F(LinuxSleepNotificationsTest, UPowerIsNotUsedOnceOnlyTheMachineIsObserved) {
    FakeUPower upower(address());
    const FakeLogind logind(address());
    {
        const Listener screens(m_workspace);
        settle(upower);
    }
    Listener machine(m_workspace, {{WorkspaceNotification::didWake, "machine"}});
    ASSERT_TRUE(waitUntil([&] {
        logind.prepareForSleep(false);
        return !machine.heard(0).empty();
    }));
    waitFor(quiet);
    EXPECT_EQ(upower.reads(), 1);
}

TEST_F(LinuxSleepNotificationsTest, TheLastObserverMayLeaveInsideItsBlock) {
    FakeUPower upower(address());
    int heard = 0;
    NotificationCenter::Token token = 0;
    token = m_workspace.addObserver(WorkspaceNotification::screensDidSleep, [&] {
        ++heard;
        m_workspace.removeObserver(token);
    });
    settle(upower);
    upower.setLidIsClosed(true);
    upower.setLidIsClosed(false);
    upower.setLidIsClosed(true);
    waitFor(quiet);
    EXPECT_EQ(heard, 1);
}

TEST_F(LinuxSleepNotificationsTest, ObserversThatLeaveWhileTheBusConnectsLeaveNothingBehind) {
    for (int round = 0; round < 20; ++round)
        const Listener passing(m_workspace);
    FakeUPower upower(address());
    Listener listener(m_workspace);
    settle(upower);
    upower.setLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    EXPECT_THAT(listener.heardInAll(), ElementsAre("sleep"));
}

TEST_F(LinuxSleepNotificationsTest, DestroyingTheWorkspaceWhileItConnectsIsHarmless) {
    {
        LinuxSleepNotifications passing(m_bus.address(), m_session.address());
        passing.addObserver(WorkspaceNotification::screensDidSleep, [] {});
    }
    waitFor(quiet);
}

TEST_F(LinuxSleepNotificationsTest, ABusThatGoesAwayIsNoEvent) {
    auto upower = std::make_unique<FakeUPower>(address());
    Listener listener(m_workspace);
    settle(*upower);
    m_bus.stop();
    EXPECT_THAT(listener.heardInAll(), IsEmpty());
}

TEST_F(LinuxSleepNotificationsTest, WithoutABusThereAreNoEventsAndNoBusyRetry) {
    LinuxSleepNotifications workspace("unix:path=/nonexistent/bus", m_session.address());
    Listener listener(workspace);
    waitFor(quiet);
    const std::clock_t before = std::clock();
    EXPECT_THAT(listener.heardInAll(), IsEmpty());
    // Less than half of the time that passed; a busy retry takes all of it.
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC * quiet.count() / 1000 / 2);
}

TEST_F(LinuxSleepNotificationsTest, TheEnvironmentNamesTheBuses) {
    const EnvironmentVariable systemBus("DBUS_SYSTEM_BUS_ADDRESS", address());
    const EnvironmentVariable sessionBus("DBUS_SESSION_BUS_ADDRESS", m_session.address());
    FakeUPower upower(address());
    FakeMutter mutter(m_session.address());
    LinuxSleepNotifications workspace;
    Listener listener(workspace);
    settle(upower);
    settle(mutter);
    upower.setLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    upower.setLidIsClosed(false);
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "wake"));
    mutter.setPowerSaveMode(3);
    EXPECT_THAT(listener.heard(3), ElementsAre("sleep", "wake", "sleep"));
}

/// Observes and leaves again; neither may wait for the bus.
void expectNothingBlocks(const std::string& system, const std::string& session) {
    using Clock = std::chrono::steady_clock;
    auto workspace = std::make_unique<LinuxSleepNotifications>(system, session);
    const auto observing = Clock::now();
    auto listener = std::make_unique<Listener>(*workspace);
    EXPECT_LT(Clock::now() - observing, longestWait);
    EXPECT_THAT(listener->heardInAll(), IsEmpty());
    const auto leaving = Clock::now();
    listener.reset();
    workspace.reset();
    EXPECT_LT(Clock::now() - leaving, longestWait);
}

TEST_F(LinuxSleepNotificationsTest, ASystemBusThatNeverAnswersBlocksNothing) {
    const HungBus hung;
    expectNothingBlocks(hung.address(), m_session.address());
}

TEST_F(LinuxSleepNotificationsTest, ASessionBusThatNeverAnswersBlocksNothing) {
    const HungBus hung;
    expectNothingBlocks(m_bus.address(), hung.address());
}

TEST_F(LinuxSleepNotificationsTest, BusesThatFreezeBlockNothingAndGoOnAfterwards) {
    FakeUPower upower(address());
    Listener listener(m_workspace);
    settle(upower);
    m_bus.freeze();
    m_session.freeze();
    expectNothingBlocks(address(), m_session.address());
    m_bus.thaw();
    upower.setLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
}

} // namespace

} // namespace quorvane
