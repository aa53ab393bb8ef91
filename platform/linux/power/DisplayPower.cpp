#include "platform/linux/power/DisplayPower.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QVariantMap>

namespace quorvane {

namespace {

const QString mutter = QStringLiteral("org.gnome.Mutter.DisplayConfig");
const QString path = QStringLiteral("/org/gnome/Mutter/DisplayConfig");
const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString powerSaveMode = QStringLiteral("PowerSaveMode");

QDBusConnection connection(const QString& address) {
    if (address.isEmpty())
        return QDBusConnection::sessionBus();
    return QDBusConnection::connectToBus(address, QStringLiteral("quorvane-session-") + address);
}

} // namespace

DisplayPower::DisplayPower(const QString& address, QObject* parent)
    : QObject(parent), m_bus(connection(address)) {
    if (!m_bus.isConnected())
        return;
    // No sender is given: QtDBus would block on asking the bus for its owner.
    m_bus.connect({}, path, properties, QStringLiteral("PropertiesChanged"), {mutter}, {}, this,
                  SLOT(propertiesChanged(QDBusMessage)));
    auto* watcher =
        new QDBusServiceWatcher(mutter, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) {
                // A Mutter that has ended does not report that the displays are on again.
                if (owner.isEmpty())
                    emit known(false);
                else
                    read();
            });
    read();
}

void DisplayPower::read() {
    auto question = QDBusMessage::createMethodCall(mutter, path, properties, QStringLiteral("Get"));
    question << mutter << powerSaveMode;
    question.setAutoStartService(false);
    auto* answer = new QDBusPendingCallWatcher(m_bus.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusVariant> mode = *answer;
        answer->deleteLater();
        if (mode.isValid())
            take(mode.value().variant());
    });
}

void DisplayPower::propertiesChanged(const QDBusMessage& message) {
    if (message.signature() == QLatin1String("sa{sv}as"))
        take(qdbus_cast<QVariantMap>(message.arguments().at(1)).value(powerSaveMode));
}

/// 0: on; 1 to 3: standby, suspended, off; -1: unknown.
void DisplayPower::take(const QVariant& mode) {
    if (mode.typeId() == QMetaType::Int)
        emit known(mode.toInt() > 0);
}

} // namespace quorvane
