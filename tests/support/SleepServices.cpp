#include "tests/support/SleepServices.h"

#include <QDBusVariant>
#include <stdexcept>
#include <utility>

namespace quorvane {

namespace {

const QString upower = QStringLiteral("org.freedesktop.UPower");
const QString upowerPath = QStringLiteral("/org/freedesktop/UPower");
const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString lidIsClosed = QStringLiteral("LidIsClosed");
const QString mutter = QStringLiteral("org.gnome.Mutter.DisplayConfig");
const QString mutterPath = QStringLiteral("/org/gnome/Mutter/DisplayConfig");
const QString powerSaveMode = QStringLiteral("PowerSaveMode");

QString newConnectionName() {
    static int count = 0;
    return QStringLiteral("fake-service-%1").arg(++count);
}

} // namespace

BusService::BusService(const std::string& address, const QString& name)
    : m_connectionName(newConnectionName()), m_name(name) {
    auto connection =
        QDBusConnection::connectToBus(QString::fromStdString(address), m_connectionName);
    if (!connection.registerService(m_name))
        throw std::runtime_error("the bus refuses the name");
}

BusService::~BusService() {
    bus().unregisterService(m_name);
    QDBusConnection::disconnectFromBus(m_connectionName);
}

void BusService::send(const QDBusMessage& message) const {
    bus().send(message);
    bus().call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                              "org.freedesktop.DBus", "GetId"));
}

FakeUPower::FakeUPower(const std::string& address, bool lidIsClosedNow, bool lidIsPresent,
                       const QString& name)
    : m_service(address, name), m_properties{{lidIsClosed, lidIsClosedNow},
                                             {"LidIsPresent", lidIsPresent}} {
    m_service.bus().registerVirtualObject(upowerPath, this);
}

FakeUPower::~FakeUPower() {
    m_service.bus().unregisterObject(upowerPath);
}

void FakeUPower::setLidIsClosed(bool closed) {
    m_properties[lidIsClosed] = closed;
    sendChange({{lidIsClosed, closed}}, {});
}

void FakeUPower::invalidateLidIsClosed(bool closed) {
    m_properties[lidIsClosed] = closed;
    sendChange({}, {lidIsClosed});
}

void FakeUPower::sendChange(const QVariantMap& changed, const QStringList& invalidated) {
    auto message = QDBusMessage::createSignal(upowerPath, properties, "PropertiesChanged");
    message << upower << changed << invalidated;
    m_service.send(message);
}

bool FakeUPower::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.interface() != properties || message.member() != QLatin1String("GetAll") ||
        message.arguments() != QVariantList{upower})
        return false;
    ++m_reads;
    return connection.send(message.createReply(m_properties));
}

QString FakeUPower::introspect(const QString&) const {
    return {};
}

FakeLogind::FakeLogind(const std::string& address, const QString& name)
    : m_service(address, name) {}

void FakeLogind::prepareForSleep(bool start) const {
    auto message = QDBusMessage::createSignal("/org/freedesktop/login1",
                                              "org.freedesktop.login1.Manager", "PrepareForSleep");
    message << start;
    m_service.send(message);
}

FakeMutter::FakeMutter(const std::string& address, int mode)
    : m_service(address, mutter), m_powerSaveMode(mode) {
    m_service.bus().registerVirtualObject(mutterPath, this);
}

FakeMutter::~FakeMutter() {
    m_service.bus().unregisterObject(mutterPath);
}

void FakeMutter::setPowerSaveMode(int mode) {
    m_powerSaveMode = mode;
    sendChange({{powerSaveMode, mode}});
}

void FakeMutter::sendOtherChange() const {
    sendChange({{QStringLiteral("PanelOrientationManaged"), true}});
}

void FakeMutter::sendChange(const QVariantMap& changed) const {
    auto message = QDBusMessage::createSignal(mutterPath, properties, "PropertiesChanged");
    message << mutter << changed << QStringList();
    m_service.send(message);
}

bool FakeMutter::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.interface() != properties || message.member() != QLatin1String("Get") ||
        message.arguments() != QVariantList{mutter, powerSaveMode})
        return false;
    ++m_reads;
    return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(m_powerSaveMode))));
}

QString FakeMutter::introspect(const QString&) const {
    return {};
}

} // namespace quorvane
