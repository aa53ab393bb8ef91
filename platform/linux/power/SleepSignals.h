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
#include <optional>
#include <vector>

namespace quorvane {

/// Whether the screens sleep, made up of what the lid and the sleep of the whole machine say. Each
/// update gives the new state if it is another one, and nothing otherwise.
class ScreenSleepState {
public:
    /// True: the screens now sleep; false: they are awake; none: no change.
    using Change = std::optional<bool>;

    /// The first word about the lid is where things start from, not a change.
    Change setLidClosed(bool closed) {
        const bool isFirst = !m_lidClosed.has_value();
        m_lidClosed = closed;
        const Change change = update();
        return isFirst ? std::nullopt : change;
    }

    Change setPreparingForSleep(bool preparing) {
        m_preparing = preparing;
        return update();
    }

private:
    Change update() {
        const bool asleep = m_preparing || m_lidClosed.value_or(false);
        if (asleep == m_asleep)
            return std::nullopt;
        m_asleep = asleep;
        return asleep;
    }

    std::optional<bool> m_lidClosed;
    bool m_preparing = false;
    bool m_asleep = false;
};

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
