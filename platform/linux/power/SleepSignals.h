#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QThread>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <vector>

#include "platform/linux/power/ScreenSleepState.h"

namespace quorvane {

/// Listens on the system bus to the two services that know of sleep: logind for that of the machine
/// and, once somebody asks for the screens, UPower for the lid. Main thread; never waits for the
/// bus. Without a bus, or without the services on it, nothing is ever reported.
class SleepSignals final : public QObject {
    Q_OBJECT

public:
    /// Who is told; each may call `stop`.
    struct Reports {
        /// The machine woke up. Comes before the news of its screens.
        std::function<void()> didWake;
        /// True: the screens go to sleep; false: they wake.
        std::function<void(bool asleep)> screens;
    };

    /// `address` names the bus; empty: the system bus.
    SleepSignals(QString address, Reports reports);
    ~SleepSignals() override;

    /// Begins with a fresh state.
    void start();
    /// From now on until `stop` the lid counts too; as it is found first is no change. Until then
    /// UPower, which the bus starts for whoever calls it, is left alone.
    void listenToLid();
    /// Nothing is reported from here on, and the connection is closed.
    void stop();

private Q_SLOTS:
    void propertiesChanged(const QDBusMessage& message);
    void prepareForSleep(const QDBusMessage& message);

    // NOLINTNEXTLINE(readability-redundant-access-specifiers): these are no slots.
private:
    void connectInBackground();
    void subscribe();
    void subscribeToLid();
    std::unique_ptr<QObject> endSession();
    void watch(const QString& service);
    void askForOwner(const QString& service);
    void setOwner(const QString& service, const QString& owner);
    void readLid();
    void takeLid(const QVariantMap& properties);
    void report(ScreenSleepState::Change change);
    void tell(const std::function<void()>& news);

    const QString m_address;
    const Reports m_reports;

    /// A thread on its way to a connection of that name.
    struct Connecting {
        QPointer<QThread> thread;
        QString name;
    };

    std::vector<Connecting> m_connecting;

    // All of one start-to-stop span.
    QString m_connectionName;
    // Parent of whatever waits for the bus; none while there is no connection.
    std::unique_ptr<QObject> m_session;
    ScreenSleepState m_state;
    // Unique bus names, empty while the service is not there: anybody may send signals that look
    // like the services'.
    QString m_upowerOwner;
    QString m_logindOwner;
    bool m_listensToLid = false;
    bool m_lidIsPresent = true;

    bool m_isReporting = false;
};

} // namespace quorvane
