#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariant>

namespace quorvane {

/// Whether the displays are switched off, for example after a time without input.
/// Mutter, GNOME's compositor, tells it on the session bus. Other desktops announce a screen saver
/// or a lock, which leave the displays on. Main thread; never blocks on the bus.
class DisplayPower final : public QObject {
    Q_OBJECT

public:
    /// `address` names the bus; empty: the session bus, over the connection that Qt shares.
    DisplayPower(const QString& address, QObject* parent);

Q_SIGNALS:
    /// The state at the start, unless there is no Mutter, and whenever it may have changed.
    void known(bool off);

private Q_SLOTS:
    void propertiesChanged(const QDBusMessage& message);

    // NOLINTNEXTLINE(readability-redundant-access-specifiers): these are no slots.
private:
    void read();
    void take(const QVariant& mode);

    QDBusConnection m_bus;
};

} // namespace quorvane
