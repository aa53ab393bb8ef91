#include "platform/linux/power/SleepSignals.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <utility>

#include "platform/linux/power/DisplayPower.h"

namespace quorvane {

namespace {

const QString busService = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString upower = QStringLiteral("org.freedesktop.UPower");
const QString upowerPath = QStringLiteral("/org/freedesktop/UPower");
const QString logind = QStringLiteral("org.freedesktop.login1");
const QString logindPath = QStringLiteral("/org/freedesktop/login1");
const QString logindManager = QStringLiteral("org.freedesktop.login1.Manager");
const QString lidIsPresent = QStringLiteral("LidIsPresent");
const QString lidIsClosed = QStringLiteral("LidIsClosed");

// Milliseconds; a healthy bus takes one or two.
constexpr unsigned long longestWait = 500;

QString newConnectionName() {
    static int count = 0;
    return QStringLiteral("quorvane-workspace-%1").arg(++count);
}

void openConnection(const QString& address, const QString& name) {
    if (address.isEmpty())
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
    else
        QDBusConnection::connectToBus(address, name);
}

} // namespace

SleepSignals::SleepSignals(QString address, QString sessionAddress, Reports reports)
    : m_address(std::move(address)), m_sessionAddress(std::move(sessionAddress)),
      m_reports(std::move(reports)) {}

SleepSignals::~SleepSignals() {
    endSession();
    // A thread that is still connecting at exit would use Qt after its teardown. On a bus that
    // never answers it stays blocked, and ends with the process.
    for (const Connecting& connecting : m_connecting) {
        if (!connecting.thread || !connecting.thread->wait(longestWait))
            continue;
        delete connecting.thread.data();
        QDBusConnection::disconnectFromBus(connecting.name);
    }
}

void SleepSignals::start() {
    if (m_connectionName.isEmpty())
        connectInBackground();
}

void SleepSignals::listenToScreens() {
    if (!std::exchange(m_listensToScreens, true) && m_session)
        subscribeToScreens();
}

void SleepSignals::stop() {
    auto session = endSession();
    // Called from within a report: a signal of one of the session's children is on the stack.
    if (session && m_isReporting)
        session.release()->deleteLater();
}

std::unique_ptr<QObject> SleepSignals::endSession() {
    const QString name = std::exchange(m_connectionName, {});
    m_upowerOwner.clear();
    m_logindOwner.clear();
    m_listensToScreens = false;
    m_lidIsPresent = true;
    m_state = {};
    // While the connection is still being opened there is no session; the `finished` handler closes
    // it.
    auto session = std::exchange(m_session, nullptr);
    if (session) {
        for (QObject* child : session->children())
            child->disconnect(this);
        QDBusConnection::disconnectFromBus(name);
    }
    return session;
}

/// On another thread: a bus that accepts the connection but does not answer blocks the call long.
void SleepSignals::connectInBackground() {
    m_connectionName = newConnectionName();
    QThread* thread = QThread::create(
        [address = m_address, name = m_connectionName] { openConnection(address, name); });
    // The QThread object lives on the main thread, so its signal arrives there.
    connect(thread, &QThread::finished, thread,
            [thread, self = QPointer(this), name = m_connectionName] {
                thread->deleteLater();
                if (self)
                    std::erase_if(self->m_connecting, [thread](const Connecting& connecting) {
                        return connecting.thread == thread;
                    });
                if (self && self->m_connectionName == name)
                    self->subscribe();
                else
                    QDBusConnection::disconnectFromBus(name);
            });
    m_connecting.push_back({.thread = thread, .name = m_connectionName});
    thread->start();
}

void SleepSignals::subscribe() {
    QDBusConnection bus(m_connectionName);
    m_session = std::make_unique<QObject>();
    // No sender is given: QtDBus would block on asking the bus for its owner.
    bus.connect({}, logindPath, logindManager, QStringLiteral("PrepareForSleep"), this,
                SLOT(prepareForSleep(QDBusMessage)));
    watch(logind);
    if (m_listensToScreens)
        subscribeToScreens();
}

void SleepSignals::subscribeToScreens() {
    // No sender, as above.
    QDBusConnection(m_connectionName)
        .connect({}, upowerPath, propertiesInterface, QStringLiteral("PropertiesChanged"), {upower},
                 {}, this, SLOT(propertiesChanged(QDBusMessage)));
    watch(upower);
    const auto* displays = new DisplayPower(m_sessionAddress, m_session.get());
    connect(displays, &DisplayPower::known, this,
            [this](bool off) { report(m_state.setDisplaysOff(off)); });
}

void SleepSignals::watch(const QString& service) {
    const QDBusConnection bus(m_connectionName);
    if (!bus.isConnected())
        return;
    auto* watcher = new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForOwnerChange,
                                            m_session.get());
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& name, const QString&, const QString& owner) {
                setOwner(name, owner);
            });
    askForOwner(service);
}

void SleepSignals::askForOwner(const QString& service) {
    auto message = QDBusMessage::createMethodCall(busService, busPath, busService,
                                                  QStringLiteral("GetNameOwner"));
    message << service;
    const auto call = QDBusConnection(m_connectionName).asyncCall(message);
    auto* pending = new QDBusPendingCallWatcher(call, m_session.get());
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, service, pending] {
        const QDBusPendingReply<QString> owner = *pending;
        pending->deleteLater();
        if (owner.isValid())
            setOwner(service, owner.value());
        else if (service == upower)
            // The bus may start it when it is called.
            readLid();
    });
}

void SleepSignals::setOwner(const QString& service, const QString& owner) {
    QString& known = service == upower ? m_upowerOwner : m_logindOwner;
    if (std::exchange(known, owner) == owner)
        return;
    if (service == upower && !owner.isEmpty())
        readLid();
    // A logind that has stopped or restarted does not report the end of the sleep that it
    // announced.
    if (service == logind)
        report(m_state.setPreparingForSleep(false));
}

void SleepSignals::readLid() {
    auto message = QDBusMessage::createMethodCall(upower, upowerPath, propertiesInterface,
                                                  QStringLiteral("GetAll"));
    message << upower;
    const auto call = QDBusConnection(m_connectionName).asyncCall(message);
    auto* pending = new QDBusPendingCallWatcher(call, m_session.get());
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending] {
        const QDBusPendingReply<QVariantMap> properties = *pending;
        pending->deleteLater();
        if (properties.isValid())
            takeLid(properties.value());
    });
}

void SleepSignals::propertiesChanged(const QDBusMessage& message) {
    if (message.service() != m_upowerOwner || message.signature() != QLatin1String("sa{sv}as"))
        return;
    const QList<QVariant> arguments = message.arguments();
    takeLid(qdbus_cast<QVariantMap>(arguments.at(1)));
    if (arguments.at(2).toStringList().contains(lidIsClosed))
        readLid();
}

void SleepSignals::prepareForSleep(const QDBusMessage& message) {
    if (message.service() != m_logindOwner || message.signature() != QLatin1String("b"))
        return;
    const bool preparing = message.arguments().at(0).toBool();
    if (!preparing)
        notify([this] { m_reports.didWake(); });
    // If didWake has called `stop`, the state is a fresh one, and this is no change.
    report(m_state.setPreparingForSleep(preparing));
}

/// LidIsClosed means nothing where there is no lid.
void SleepSignals::takeLid(const QVariantMap& properties) {
    m_lidIsPresent = properties.value(lidIsPresent, m_lidIsPresent).toBool();
    const auto closed = properties.find(lidIsClosed);
    if (m_lidIsPresent && closed != properties.end())
        report(m_state.setLidClosed(closed->toBool()));
}

void SleepSignals::report(ScreenSleepState::Change change) {
    if (change)
        notify([this, asleep = *change] { m_reports.screens(asleep); });
}

void SleepSignals::notify(const std::function<void()>& callback) {
    m_isReporting = true;
    callback();
    m_isReporting = false;
}

} // namespace quorvane
