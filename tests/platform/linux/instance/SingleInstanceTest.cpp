#include <sys/socket.h>
#include <sys/un.h>

#include <chrono>
#include <vector>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <QWindow>

#include <gmock/gmock.h>

#include "platform/linux/common/FileDescriptor.h"
#include "tests/platform/linux/instance/InstanceFixture.h"
#include "tests/support/HungBus.h"
#include "tests/support/QtApplication.h"

namespace quorvane {

namespace {

using Clock = std::chrono::steady_clock;

class SingleInstanceTest : public InstanceTest {
protected:
    /// Makes an instance in at most a second.
    static std::unique_ptr<SingleInstance> make(Kind kind) {
        const auto begun = Clock::now();
        auto instance = std::make_unique<SingleInstance>(kind);
        EXPECT_LT(Clock::now() - begun, 1s);
        return instance;
    }

    void expectThatTheBusIsLeft(Kind kind) {
        const auto instance = make(kind);
        EXPECT_FALSE(instance->isSecond());
        EXPECT_EQ(instance->message(), "the session bus does not answer, and is not used");
        EXPECT_EQ(qgetenv("DBUS_SESSION_BUS_ADDRESS"), "disabled:");
    }
};

TEST_F(SingleInstanceTest, ABusThatNeverAnswersIsNotUsed) {
    const HungBus hung;
    useBus(hung.address());
    expectThatTheBusIsLeft(Kind::Single);
}

TEST_F(SingleInstanceTest, ABusThatNeverAnswersIsNotUsedOnASimulatedMachineEither) {
    const HungBus hung;
    useBus(hung.address());
    expectThatTheBusIsLeft(Kind::Simulated);
}

TEST_F(SingleInstanceTest, ABusThatAcceptsNoMoreConnectionsIsNotUsed) {
    const HungBus hung;
    useBus(hung.address());
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    hung.address().substr(sizeof "unix:path=" - 1).copy(&name.sun_path[0], sizeof name.sun_path);
    std::vector<FileDescriptor> others;
    do {
        others.emplace_back(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): how sockets are named.
    } while (connect(others.back().get(), reinterpret_cast<const sockaddr*>(&name), sizeof name) ==
             0);
    expectThatTheBusIsLeft(Kind::Single);
}

TEST_F(SingleInstanceTest, WithoutABusItRuns) {
    const std::string nowhere = "unix:path=" + (m_runtime.path() / "no-bus").string();
    useBus(nowhere);
    const auto instance = make(Kind::Single);
    EXPECT_FALSE(instance->isSecond());
    EXPECT_EQ(instance->message(), "");
    EXPECT_EQ(qgetenv("DBUS_SESSION_BUS_ADDRESS").toStdString(), nowhere);
}

TEST_F(SingleInstanceTest, TheBusInTheRuntimeFolderIsFoundWithoutAnAddress) {
    const auto first = startFirst();
    std::filesystem::create_symlink(m_bus.address().substr(sizeof "unix:path=" - 1),
                                    m_runtime.path() / "bus");
    useBus(std::nullopt);
    // The first one does not serve, which is told of its name, not of its lock.
    EXPECT_EQ(make(Kind::Single)->message(),
              "already running, but it has not answered yet; 'quorvane --stop' ends it");
}

TEST_F(SingleInstanceTest, AFirstOneThatFoundNoBusIsFoundByItsLock) {
    const auto first =
        startFirst([] { qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/no-bus"); });
    const auto second = make(Kind::Single);
    EXPECT_TRUE(second->isSecond());
    EXPECT_EQ(second->message(), "already running");
}

TEST_F(SingleInstanceTest, OneThatEndsWhileItIsAskedMakesRoom) {
    auto first = startFirst();
    const ChildProcess end([&first] {
        waitFor(200ms);
        first->send(SIGKILL);
        return 0;
    });
    EXPECT_FALSE(make(Kind::Single)->isSecond());
}

TEST_F(SingleInstanceTest, ASimulatedOneCountsAsNeither) {
    const auto simulated = make(Kind::Simulated);
    const auto first = make(Kind::Single);
    EXPECT_FALSE(first->isSecond());
    EXPECT_FALSE(make(Kind::Simulated)->isSecond());
}

class ServedInstanceTest : public SingleInstanceTest {
protected:
    ServedInstanceTest() {
        m_window.showMinimized();
        m_instance.serve(m_window, [this] { ++m_stops; });
    }

    ~ServedInstanceTest() override { QDBusConnection::disconnectFromBus("caller"); }

    /// The error's name that a call of it leads to; empty if none.
    QString call(const QString& member, const QVariantList& arguments) {
        auto bus = QDBusConnection::connectToBus(QString::fromStdString(m_bus.address()), "caller");
        auto message =
            QDBusMessage::createMethodCall("org.quorvane.Quorvane", "/org/quorvane/Quorvane",
                                           "org.freedesktop.Application", member);
        message.setArguments(arguments);
        const QDBusPendingReply<> reply = bus.asyncCall(message);
        EXPECT_TRUE(waitUntil([&] { return reply.isFinished(); }));
        return reply.error().name();
    }

    [[nodiscard]] bool isMinimized() const {
        return (m_window.windowStates() & Qt::WindowMinimized) != 0;
    }

    EnvironmentVariable m_platform{"QT_QPA_PLATFORM", "offscreen"};
    EnvironmentVariable m_token{"XDG_ACTIVATION_TOKEN", std::nullopt};
    ApplicationOf<QGuiApplication> m_application;
    SingleInstance m_instance{Kind::Single};
    QWindow m_window;
    int m_stops = 0;
};

const QVariantMap nothing;

TEST_F(ServedInstanceTest, ActivateRestoresTheWindow) {
    ASSERT_TRUE(isMinimized());
    EXPECT_EQ(call("Activate", {QVariantMap{{"activation-token", "t"}, {"other", 3}}}), "");
    EXPECT_FALSE(isMinimized());
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), "t");
}

TEST_F(ServedInstanceTest, OpenDoesWhatActivateDoes) {
    EXPECT_EQ(call("Open", {QStringList{"file:///a"}, QVariantMap{{"activation-token", "t"}}}), "");
    EXPECT_FALSE(isMinimized());
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), "t");
}

TEST_F(ServedInstanceTest, TheActionStopStops) {
    EXPECT_EQ(call("ActivateAction", {"stop", QVariantList{}, nothing}), "");
    EXPECT_EQ(m_stops, 1);
    EXPECT_TRUE(isMinimized());
}

TEST_F(ServedInstanceTest, WhatItDoesNotOfferIsAnError) {
    const QString invalid = "org.freedesktop.DBus.Error.InvalidArgs";
    EXPECT_EQ(call("ActivateAction", {"", QVariantList{}, nothing}), invalid);
    EXPECT_EQ(call("ActivateAction", {"start", QVariantList{}, nothing}), invalid);
    EXPECT_EQ(call("ActivateAction", {3}), invalid);
    EXPECT_EQ(call("Activate", {}), invalid);
    EXPECT_EQ(call("Activate", {"text"}), invalid);
    EXPECT_EQ(call("Open", {nothing}), invalid);
    EXPECT_NE(call("Close", {}), "");
    EXPECT_EQ(m_stops, 0);
    EXPECT_TRUE(isMinimized());
}

TEST_F(ServedInstanceTest, AfterTheEndOfTheBusASecondStartFindsTheLock) {
    testing::internal::CaptureStderr();
    m_bus.stop();
    waitFor(100ms);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    const PrivateBus next;
    useBus(next.address());
    ChildProcess second([] { return SingleInstance(Kind::Single).isSecond() ? 0 : 1; });
    EXPECT_EQ(second.wait(), 0);
}

} // namespace

} // namespace quorvane
