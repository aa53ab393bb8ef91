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

/// Whether the screens sleep, by the state of the lid, of the displays and of the machine. Each
/// update returns the new state if it has changed.
class ScreenSleepState {
public:
    /// True: the screens now sleep; false: they are awake; none: no change.
    using Change = std::optional<bool>;

    /// The first state of the lid is not a change.
    Change setLidClosed(bool closed) { return set(m_lidClosed, closed); }

    /// The first state of the displays is not a change.
    Change setDisplaysOff(bool off) { return set(m_displaysOff, off); }

    Change setPreparingForSleep(bool preparing) {
        m_preparing = preparing;
        return update();
    }

private:
    Change set(std::optional<bool>& part, bool asleep) {
        const bool isFirst = !part.has_value();
        part = asleep;
        const Change change = update();
        return isFirst ? std::nullopt : change;
    }

    Change update() {
        const bool asleep =
            m_preparing || m_lidClosed.value_or(false) || m_displaysOff.value_or(false);
        if (asleep == m_asleep)
            return std::nullopt;
        m_asleep = asleep;
        return asleep;
    }

    std::optional<bool> m_lidClosed;
    std::optional<bool> m_displaysOff;
    bool m_preparing = false;
    bool m_asleep = false;
};

/// Listens on the system bus to logind for the machine's sleep and, after `listenToScreens`, to
/// UPower for the lid and on the session bus to `DisplayPower`. Main thread; never blocks on a bus.
/// Without a bus or a service nothing is reported.
class SleepSignals final : public QObject {
    Q_OBJECT

public:
    /// Callbacks; each may call `stop`.
    struct Reports {
        /// The machine woke up. Called before `screens`.
        std::function<void()> didWake;
        /// True: the screens go to sleep; false: they wake.
        std::function<void(bool asleep)> screens;
    };

    /// The addresses name the buses; empty: the system bus, the session bus.
    SleepSignals(QString address, QString sessionAddress, Reports reports);
    ~SleepSignals() override;

    /// Connects, with a fresh state, unless already started.
    void start();
    /// From now on until `stop` the lid and the displays count too. UPower is not called before,
    /// because a call makes the bus start it.
    void listenToScreens();
    /// Closes the connection; nothing is reported any more.
    void stop();

private Q_SLOTS:
    void propertiesChanged(const QDBusMessage& message);
    void prepareForSleep(const QDBusMessage& message);

    // NOLINTNEXTLINE(readability-redundant-access-specifiers): these are no slots.
private:
    void connectInBackground();
    void subscribe();
    void subscribeToScreens();
    std::unique_ptr<QObject> endSession();
    void watch(const QString& service);
    void askForOwner(const QString& service);
    void setOwner(const QString& service, const QString& owner);
    void readLid();
    void takeLid(const QVariantMap& properties);
    void report(ScreenSleepState::Change change);
    void notify(const std::function<void()>& callback);

    const QString m_address;
    const QString m_sessionAddress;
    const Reports m_reports;

    /// A thread that is opening the connection of that name.
    struct Connecting {
        QPointer<QThread> thread;
        QString name;
    };

    std::vector<Connecting> m_connecting;

    // State between `start` and `stop`.
    QString m_connectionName;
    // Parent of watchers and pending calls; null while there is no connection.
    std::unique_ptr<QObject> m_session;
    ScreenSleepState m_state;
    // Unique bus names, empty while the service is not running: signals of other senders are
    // ignored.
    QString m_upowerOwner;
    QString m_logindOwner;
    bool m_listensToScreens = false;
    bool m_lidIsPresent = true;

    bool m_isReporting = false;
};

} // namespace quorvane
