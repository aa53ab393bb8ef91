#include <QThread>
#include <chrono>
#include <ctime>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

#include "platform/linux/LinuxWorkspace.h"
#include "tests/support/Environment.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/QtApplication.h"
#include "tests/support/SleepServices.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Long enough for a message that is not to come to have come.
constexpr int quietMilliseconds = 300;

/// Hears a workspace's screens go to sleep and wake.
class Listener {
public:
    explicit Listener(NotificationCenter& center) : m_center(center) {
        m_tokens = {observe(WorkspaceNotification::screensDidWake, "wake"),
                    observe(WorkspaceNotification::screensDidSleep, "sleep")};
    }

    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    ~Listener() {
        for (const auto token : m_tokens)
            m_center.removeObserver(token);
    }

    /// Everything heard, once as much as `count` is.
    const std::vector<std::string>& heard(std::size_t count) {
        QtApplication::runUntil([&] { return m_heard.size() >= count; });
        return m_heard;
    }

    /// Everything heard when nothing more comes.
    const std::vector<std::string>& heardInAll() {
        QtApplication::runFor(quietMilliseconds);
        return m_heard;
    }

    [[nodiscard]] bool wasOnMainThreadOnly() const { return m_onMainThread; }

private:
    NotificationCenter::Token observe(std::string_view name, const std::string& mark) {
        return m_center.addObserver(name, [this, mark] {
            m_heard.push_back(mark);
            m_onMainThread = m_onMainThread && QThread::currentThread() == m_mainThread;
        });
    }

    NotificationCenter& m_center;
    std::vector<NotificationCenter::Token> m_tokens;
    std::vector<std::string> m_heard;
    QThread* m_mainThread = QThread::currentThread();
    bool m_onMainThread = true;
};

class LinuxWorkspaceTest : public testing::Test {
protected:
    std::string address() const { return m_bus.address(); }

    /// Waits until the workspace has taken in how the lid stands.
    static void settle(const StandInUPower& upower, int reads = 1) {
        ASSERT_TRUE(QtApplication::runUntil([&] { return upower.reads() >= reads; }));
    }

    QtApplication m_application;
    PrivateBus m_bus;
    LinuxWorkspace m_workspace{m_bus.address()};
};

TEST_F(LinuxWorkspaceTest, ClosingAndOpeningTheLidIsOneSleepAndOneWake) {
    StandInUPower upower(address());
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

TEST_F(LinuxWorkspaceTest, SleepOfTheMachineIsOneSleepAndOneWake) {
    StandInUPower upower(address());
    const StandInLogind logind(address());
    Listener listener(m_workspace);
    settle(upower);
    logind.prepareForSleep(true);
    logind.prepareForSleep(true);
    logind.prepareForSleep(false);
    logind.prepareForSleep(false);
    logind.prepareForSleep(true);
    EXPECT_THAT(listener.heard(3), ElementsAre("sleep", "wake", "sleep"));
}

TEST_F(LinuxWorkspaceTest, ALidThatSendsTheMachineToSleepIsOneSleepAndOneWake) {
    StandInUPower upower(address());
    const StandInLogind logind(address());
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

TEST_F(LinuxWorkspaceTest, ALidFoundClosedIsNoEventAndItsOpeningIs) {
    StandInUPower upower(address(), true);
    Listener listener(m_workspace);
    settle(upower);
    EXPECT_THAT(listener.heardInAll(), IsEmpty());
    upower.setLidIsClosed(false);
    EXPECT_THAT(listener.heard(1), ElementsAre("wake"));
}

TEST_F(LinuxWorkspaceTest, APropertyThatIsOnlyCalledOutdatedIsReadAgain) {
    StandInUPower upower(address());
    Listener listener(m_workspace);
    settle(upower);
    upower.invalidateLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
}

TEST_F(LinuxWorkspaceTest, AMachineWithoutALidIsNotPutToSleepByOne) {
    StandInUPower upower(address(), false, false);
    const StandInLogind logind(address());
    Listener listener(m_workspace);
    settle(upower);
    upower.setLidIsClosed(true);
    logind.prepareForSleep(true);
    upower.setLidIsClosed(false);
    logind.prepareForSleep(false);
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "wake"));
    EXPECT_EQ(listener.heardInAll().size(), 2U);
}

TEST_F(LinuxWorkspaceTest, WithoutUPowerTheMachinesSleepIsStillHeard) {
    const StandInLogind logind(address());
    Listener listener(m_workspace);
    // Nothing tells when the workspace has begun to listen, so it is told until it hears.
    const bool heard = QtApplication::runUntil([&] {
        logind.prepareForSleep(true);
        logind.prepareForSleep(false);
        return listener.heard(0).size() >= 2;
    });
    ASSERT_TRUE(heard);
    EXPECT_EQ(listener.heard(0).at(0), "sleep");
    EXPECT_EQ(listener.heard(0).at(1), "wake");
}

TEST_F(LinuxWorkspaceTest, UPowerThatStartsLaterIsListenedTo) {
    Listener listener(m_workspace);
    EXPECT_THAT(listener.heardInAll(), IsEmpty());
    StandInUPower upower(address());
    settle(upower);
    upower.setLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
}

TEST_F(LinuxWorkspaceTest, AChangeMissedWhileUPowerWasAwayIsReportedWhenItIsBack) {
    auto first = std::make_unique<StandInUPower>(address());
    Listener listener(m_workspace);
    settle(*first);
    first->setLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    first.reset();
    StandInUPower second(address(), false);
    settle(second);
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "wake"));
    second.setLidIsClosed(true);
    EXPECT_THAT(listener.heard(3), ElementsAre("sleep", "wake", "sleep"));
}

TEST_F(LinuxWorkspaceTest, UPowerThatComesBackToTheSameLidIsNoEvent) {
    auto first = std::make_unique<StandInUPower>(address());
    Listener listener(m_workspace);
    settle(*first);
    first->setLidIsClosed(true);
    EXPECT_EQ(listener.heard(1).size(), 1U);
    first.reset();
    StandInUPower second(address(), true);
    settle(second);
    EXPECT_THAT(listener.heardInAll(), ElementsAre("sleep"));
}

TEST_F(LinuxWorkspaceTest, ASleepWhoseServiceDiesIsOver) {
    StandInUPower upower(address());
    auto logind = std::make_unique<StandInLogind>(address());
    Listener listener(m_workspace);
    settle(upower);
    logind->prepareForSleep(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    logind.reset();
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "wake"));
}

TEST_F(LinuxWorkspaceTest, SignalsOfStrangersAreNotBelieved) {
    StandInUPower upower(address());
    StandInUPower stranger(address(), false, true, QStringLiteral("com.example.Stranger"));
    const StandInLogind otherStranger(address(), QStringLiteral("com.example.OtherStranger"));
    Listener listener(m_workspace);
    settle(upower);
    stranger.setLidIsClosed(true);
    otherStranger.prepareForSleep(true);
    upower.setLidIsClosed(true);
    upower.setLidIsClosed(false);
    EXPECT_THAT(listener.heard(2), ElementsAre("sleep", "wake"));
}

TEST_F(LinuxWorkspaceTest, TheBusIsJoinedOnlyWhileSomebodyObserves) {
    const StandInLogind witness(address());
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
        EXPECT_TRUE(QtApplication::runUntil([&] { return connections() == before + 1; }));
    }
    EXPECT_TRUE(QtApplication::runUntil([&] { return connections() == before; }));
}

TEST_F(LinuxWorkspaceTest, ANewObserverAfterTheLastOneStartsAfresh) {
    StandInUPower upower(address());
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

TEST_F(LinuxWorkspaceTest, TheLastObserverMayLeaveInsideItsBlock) {
    StandInUPower upower(address());
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
    QtApplication::runFor(quietMilliseconds);
    EXPECT_EQ(heard, 1);
}

TEST_F(LinuxWorkspaceTest, ObserversThatComeAndGoWhileTheBusIsBeingJoinedLeaveNothingBehind) {
    for (int round = 0; round < 20; ++round)
        const Listener passing(m_workspace);
    StandInUPower upower(address());
    Listener listener(m_workspace);
    settle(upower);
    upower.setLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
    EXPECT_THAT(listener.heardInAll(), ElementsAre("sleep"));
}

TEST_F(LinuxWorkspaceTest, AWorkspaceThatGoesWhileTheBusIsBeingJoinedIsMissedByNobody) {
    {
        LinuxWorkspace passing(m_bus.address());
        passing.addObserver(WorkspaceNotification::screensDidSleep, [] {});
    }
    QtApplication::runFor(quietMilliseconds);
}

TEST_F(LinuxWorkspaceTest, ABusThatGoesAwayIsSurvivedInSilence) {
    auto upower = std::make_unique<StandInUPower>(address());
    Listener listener(m_workspace);
    settle(*upower);
    m_bus.stop();
    EXPECT_THAT(listener.heardInAll(), IsEmpty());
}

TEST_F(LinuxWorkspaceTest, WithoutABusThereAreNoEventsAndNothingIsTriedOverAndOver) {
    LinuxWorkspace workspace("unix:path=/nonexistent/bus");
    Listener listener(workspace);
    QtApplication::runFor(quietMilliseconds);
    const std::clock_t before = std::clock();
    EXPECT_THAT(listener.heardInAll(), IsEmpty());
    // Less than half of the time that passed; a busy retry takes all of it.
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC * quietMilliseconds / 1000 / 2);
}

TEST_F(LinuxWorkspaceTest, TheSystemBusIsWhereTheEnvironmentSaysThatItIs) {
    const EnvironmentVariable systemBus("DBUS_SYSTEM_BUS_ADDRESS", address());
    StandInUPower upower(address());
    LinuxWorkspace workspace;
    Listener listener(workspace);
    settle(upower);
    upower.setLidIsClosed(true);
    EXPECT_THAT(listener.heard(1), ElementsAre("sleep"));
}

/// Takes connections and never says a word.
class HungBus {
public:
    HungBus() {
        sockaddr_un name{};
        name.sun_family = AF_UNIX;
        path().copy(&name.sun_path[0], sizeof name.sun_path - 1);
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): how sockets are named.
        EXPECT_EQ(bind(m_socket, reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
        EXPECT_EQ(listen(m_socket, 8), 0);
    }

    HungBus(const HungBus&) = delete;
    HungBus& operator=(const HungBus&) = delete;

    ~HungBus() { close(m_socket); }

    [[nodiscard]] std::string path() const { return (m_folder.path() / "bus").string(); }

private:
    TemporaryFolder m_folder;
    int m_socket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

TEST_F(LinuxWorkspaceTest, ABusThatNeverAnswersHoldsNothingUp) {
    using Clock = std::chrono::steady_clock;
    auto hung = std::make_unique<HungBus>();
    const auto start = Clock::now();
    {
        LinuxWorkspace workspace("unix:path=" + hung->path());
        Listener listener(workspace);
        EXPECT_THAT(listener.heardInAll(), IsEmpty());
    }
    // Waiting for the answer would take 25 s.
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
    hung.reset();
    QtApplication::runFor(quietMilliseconds);
}

} // namespace

} // namespace quorvane
