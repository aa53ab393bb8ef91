#include "platform/linux/SleepSignals.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <utility>

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

// Milliseconds; a bus that is well takes one or two.
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

SleepSignals::SleepSignals(QString address, std::function<void(bool asleep)> report)
    : m_address(std::move(address)), m_report(std::move(report)) {}

SleepSignals::~SleepSignals() {
    endSession();
    // One that is still connecting while the process ends would find the library already gone. A
    // bus that never answers keeps its thread asleep, which then ends with the process.
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

void SleepSignals::stop() {
    auto session = endSession();
    // Then it is one of the session's own signals that led here.
    if (session && m_isReporting)
        session.release()->deleteLater();
}

std::unique_ptr<QObject> SleepSignals::endSession() {
    const QString name = std::exchange(m_connectionName, {});
    m_upowerOwner.clear();
    m_logindOwner.clear();
    m_lidIsPresent = true;
    m_state = {};
    // While the connection is still being made there is no session, and its maker closes it.
    auto session = std::exchange(m_session, nullptr);
    if (session) {
        for (QObject* child : session->children())
            child->disconnect(this);
        QDBusConnection::disconnectFromBus(name);
    }
    return session;
}

/// A bus that takes the connection but does not answer would hold up its caller for long.
void SleepSignals::connectInBackground() {
    m_connectionName = newConnectionName();
    QThread* thread = QThread::create(
        [address = m_address, name = m_connectionName] { openConnection(address, name); });
    // The thread object lives here, on the main thread, so this is where its end is told.
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
    if (!bus.isConnected())
        return;
    auto* watcher = new QDBusServiceWatcher(m_session.get());
    watcher->setConnection(bus);
    watcher->setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& service, const QString&, const QString& owner) {
                setOwner(service, owner);
            });
    watcher->setWatchedServices({upower, logind});
    // No sender is named: the library would ask the bus for its owner, and wait for the answer.
    bus.connect({}, upowerPath, propertiesInterface, QStringLiteral("PropertiesChanged"), {upower},
                {}, this, SLOT(propertiesChanged(QDBusMessage)));
    bus.connect({}, logindPath, logindManager, QStringLiteral("PrepareForSleep"), this,
                SLOT(prepareForSleep(QDBusMessage)));
    askForOwner(upower);
    askForOwner(logind);
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
            // It may be one that the bus starts when it is called.
            readLid();
    });
}

void SleepSignals::setOwner(const QString& service, const QString& owner) {
    QString& known = service == upower ? m_upowerOwner : m_logindOwner;
    if (std::exchange(known, owner) == owner)
        return;
    if (service == upower && !owner.isEmpty())
        readLid();
    // Without the service that announced the sleep nobody would tell that it is over.
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
    if (message.service() == m_logindOwner && message.signature() == QLatin1String("b"))
        report(m_state.setPreparingForSleep(message.arguments().at(0).toBool()));
}

/// A lid that is not there is neither open nor closed, whatever is said of it.
void SleepSignals::takeLid(const QVariantMap& properties) {
    m_lidIsPresent = properties.value(lidIsPresent, m_lidIsPresent).toBool();
    const auto closed = properties.find(lidIsClosed);
    if (m_lidIsPresent && closed != properties.end())
        report(m_state.setLidClosed(closed->toBool()));
}

void SleepSignals::report(ScreenSleepState::Change change) {
    if (!change)
        return;
    m_isReporting = true;
    m_report(*change);
    m_isReporting = false;
}

} // namespace quorvane
