#pragma once

#include <QDBusVariant>
#include <QThread>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/overlays/SessionLock.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/QtApplication.h"
#include "tests/support/SleepServices.h"
#include "tests/support/Waiting.h"

namespace quorvane {

/// A fake service that knows whether the session is locked.
class FakeLocker : public QDBusVirtualObject {
public:
    ~FakeLocker() override { m_service.bus().unregisterObject(m_path); }

    /// Locks or unlocks the session and sends the signal that says so.
    void setLocked(bool locked) {
        m_locked = locked;
        announce(locked);
    }

    /// Sends the signal that says so, whatever is true.
    virtual void announce(bool locked) = 0;

    /// Whether questions get an answer.
    void setAnswers(bool answers) { m_answers = answers; }

    /// How often it has been asked.
    [[nodiscard]] int questions() const { return m_questions; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) final {
        if (message.interface() != m_interface || message.member() != m_member ||
            message.arguments() != m_arguments)
            return false;
        ++m_questions;
        return !m_answers || connection.send(message.createReply(answer(m_locked)));
    }

    [[nodiscard]] QString introspect(const QString&) const final { return {}; }

protected:
    FakeLocker(const std::string& address, const QString& name, const QString& path,
               const QDBusMessage& question, bool locked)
        : m_service(address, name), m_path(path), m_interface(question.interface()),
          m_member(question.member()), m_arguments(question.arguments()), m_locked(locked) {
        m_service.bus().registerVirtualObject(path, this);
    }

    [[nodiscard]] virtual QVariant answer(bool locked) const { return locked; }

    void send(QDBusMessage signal, const QVariantList& arguments) {
        signal.setArguments(arguments);
        m_service.send(signal);
    }

private:
    BusService m_service;
    QString m_path;
    QString m_interface;
    QString m_member;
    QVariantList m_arguments;
    bool m_locked;
    bool m_answers = true;
    int m_questions = 0;
};

/// A fake logind with sessions. Its signals come, as those of the real one, not from the path at
/// which a client finds its own session.
class FakeLogindSession final : public FakeLocker {
public:
    explicit FakeLogindSession(const std::string& address, bool locked = false,
                               const QString& name = QStringLiteral("org.freedesktop.login1"))
        : FakeLocker(address, name, QStringLiteral("/org/freedesktop/login1/session/auto"),
                     question(), locked) {}

    void announce(bool locked) override {
        send(
            QDBusMessage::createSignal("/org/freedesktop/login1/session/_31",
                                       "org.freedesktop.DBus.Properties", "PropertiesChanged"),
            {"org.freedesktop.login1.Session", QVariantMap{{"LockedHint", locked}}, QStringList()});
    }

private:
    static QDBusMessage question() {
        auto message =
            QDBusMessage::createMethodCall("-", "/", "org.freedesktop.DBus.Properties", "Get");
        message << "org.freedesktop.login1.Session"
                << "LockedHint";
        return message;
    }

    [[nodiscard]] QVariant answer(bool locked) const override {
        return QVariant::fromValue(QDBusVariant(locked));
    }
};

/// A fake screen saver, whose interface has its service's usual name.
class FakeScreenSaver final : public FakeLocker {
public:
    /// `desktop` as in "org.DESKTOP.ScreenSaver"; `name` if the service is called otherwise.
    explicit FakeScreenSaver(const std::string& address, bool locked = false,
                             const QString& desktop = QStringLiteral("gnome"),
                             const QString& name = {})
        : FakeLocker(address, name.isEmpty() ? interfaceOf(desktop) : name, pathOf(desktop),
                     QDBusMessage::createMethodCall("-", "/", interfaceOf(desktop), "GetActive"),
                     locked),
          m_desktop(desktop) {}

    void announce(bool locked) override {
        send(QDBusMessage::createSignal(pathOf(m_desktop), interfaceOf(m_desktop), "ActiveChanged"),
             {locked});
    }

private:
    static QString interfaceOf(const QString& desktop) {
        return QStringLiteral("org.%1.ScreenSaver").arg(desktop);
    }

    static QString pathOf(const QString& desktop) {
        return QStringLiteral("/org/%1/ScreenSaver").arg(desktop);
    }

    QString m_desktop;
};

/// A session lock, once `watch` is called, on two private buses.
class SessionLockTest : public testing::Test {
protected:
    // A message that is sent by mistake arrives within this time.
    static constexpr std::chrono::milliseconds quiet = 300ms;

    void watch() { watch({.system = m_system.address(), .session = m_session.address()}); }

    void watch(const SessionLock::Addresses& addresses) {
        m_lock.emplace(
            [this] {
                m_changes.push_back(m_lock->isLocked());
                EXPECT_EQ(QThread::currentThread(), m_mainThread);
            },
            addresses);
    }

    /// Waits until the lock has been reported to change `count` times; returns to what, each time.
    const std::vector<bool>& changes(std::size_t count) {
        waitUntil([&] { return m_changes.size() >= count; });
        return m_changes;
    }

    /// Waits for `quiet`; returns all changes.
    const std::vector<bool>& changesInAll() {
        waitFor(quiet);
        return m_changes;
    }

    /// Waits until a service has been asked, and its answer has arrived.
    static void settle(const FakeLocker& service, int questions = 1) {
        ASSERT_TRUE(waitUntil([&] { return service.questions() >= questions; }));
        waitFor(50ms);
    }

    QtApplication m_application;
    PrivateBus m_system;
    PrivateBus m_session;
    std::optional<SessionLock> m_lock;

private:
    std::vector<bool> m_changes;
    QThread* m_mainThread = QThread::currentThread();
};

} // namespace quorvane
