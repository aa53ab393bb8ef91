#include <QElapsedTimer>
#include <ctime>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "tests/platform/linux/overlays/SessionLockFixture.h"
#include "tests/support/HungBus.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using SessionLockBusTest = SessionLockTest;

constexpr auto noBus = "unix:path=/nonexistent/bus";

TEST_F(SessionLockBusTest, WithoutABusTheSessionIsNotLockedAndNothingIsRetried) {
    watch({.system = noBus, .session = noBus});
    waitFor(quiet);
    const std::clock_t before = std::clock();
    EXPECT_THAT(changesInAll(), IsEmpty());
    // Less than half of the time that passed; a busy retry takes all of it.
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC * quiet.count() / 1000 / 2);
}

TEST_F(SessionLockBusTest, WithoutASystemBusTheScreenSaverIsAsked) {
    const FakeScreenSaver screenSaver(m_session.address(), true);
    watch({.system = noBus, .session = m_session.address()});
    EXPECT_THAT(changes(1), ElementsAre(true));
}

TEST_F(SessionLockBusTest, WithoutASessionBusLogindIsAsked) {
    const FakeLogindSession logind(m_system.address(), true);
    watch({.system = m_system.address(), .session = noBus});
    EXPECT_THAT(changes(1), ElementsAre(true));
}

TEST_F(SessionLockBusTest, NoServiceIsStarted) {
    const TemporaryFolder services;
    const auto trace = services.path() / "started";
    for (const std::string name : {"org.freedesktop.login1", "org.gnome.ScreenSaver"})
        services.write(name + ".service", "[D-BUS Service]\nName=" + name +
                                              "\nExec=/usr/bin/touch " + trace.string() + "\n");
    const PrivateBus bus(services.path());
    watch({.system = bus.address(), .session = bus.address()});
    // Its answer comes after those of the others.
    const FakeScreenSaver screenSaver(bus.address(), false, "xfce");
    settle(screenSaver);
    waitFor(quiet);
    EXPECT_FALSE(std::filesystem::exists(trace));
}

TEST_F(SessionLockBusTest, BothBusesAreClosedAtItsEnd) {
    const FakeLogindSession logind(m_system.address());
    const FakeScreenSaver screenSaver(m_session.address());
    const auto connections = [](const PrivateBus& bus) {
        auto census =
            QDBusConnection::connectToBus(QString::fromStdString(bus.address()), "census");
        const auto names = census.call(QDBusMessage::createMethodCall(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ListNames"));
        QDBusConnection::disconnectFromBus("census");
        return names.arguments().value(0).toStringList().filter(QStringLiteral(":")).size();
    };
    const auto onSystem = connections(m_system);
    const auto onSession = connections(m_session);
    watch();
    settle(logind);
    settle(screenSaver);
    EXPECT_EQ(connections(m_system), onSystem + 1);
    EXPECT_EQ(connections(m_session), onSession + 1);
    m_lock.reset();
    EXPECT_TRUE(waitUntil([&] { return connections(m_system) == onSystem; }));
    EXPECT_TRUE(waitUntil([&] { return connections(m_session) == onSession; }));
}

TEST_F(SessionLockBusTest, ItMayEndWhileItConnectsAndAsksNothingThen) {
    const FakeLogindSession logind(m_system.address());
    for (int round = 0; round < 20; ++round) {
        watch();
        m_lock.reset();
    }
    waitFor(quiet);
    EXPECT_EQ(logind.questions(), 0);
}

/// Listens for 0.3 s to buses of which one or both never answer.
void expectNothingBlocks(const SessionLock::Addresses& addresses) {
    // Enough for a busy machine; less than anything that waits for a bus to answer takes.
    constexpr int longestWait = 100;
    QElapsedTimer time;
    time.start();
    auto lock = std::make_unique<SessionLock>([] { ADD_FAILURE(); }, addresses);
    EXPECT_LT(time.elapsed(), longestWait);
    waitFor(300ms);
    EXPECT_FALSE(lock->isLocked());
    time.start();
    lock.reset();
    EXPECT_LT(time.elapsed(), longestWait);
}

TEST_F(SessionLockBusTest, BusesThatNeverAnswerBlockNothing) {
    const HungBus system;
    const HungBus session;
    expectNothingBlocks({.system = system.address(), .session = session.address()});
}

TEST_F(SessionLockBusTest, ASystemBusThatNeverAnswersKeepsNoScreenSaverFromBeingAsked) {
    const HungBus system;
    expectNothingBlocks({.system = system.address(), .session = m_session.address()});
    const FakeScreenSaver screenSaver(m_session.address(), true);
    watch({.system = system.address(), .session = m_session.address()});
    EXPECT_THAT(changes(1), ElementsAre(true));
}

TEST_F(SessionLockBusTest, BusesThatAreFrozenBlockNothingAndAreAskedAfterwards) {
    const FakeScreenSaver screenSaver(m_session.address(), true);
    m_system.freeze();
    m_session.freeze();
    expectNothingBlocks({.system = m_system.address(), .session = m_session.address()});
    watch();
    EXPECT_THAT(changesInAll(), IsEmpty());
    m_session.thaw();
    EXPECT_THAT(changes(1), ElementsAre(true));
}

} // namespace

} // namespace quorvane
