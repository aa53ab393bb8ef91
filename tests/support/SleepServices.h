#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QVariantMap>
#include <memory>
#include <string>

#include "base/NonCopyable.h"

namespace quorvane {

/// A connection of one stand-in service, which has the service's name while this lives.
class BusService : NonCopyable {
public:
    BusService(const std::string& address, const QString& name);
    ~BusService();

    [[nodiscard]] QDBusConnection bus() const { return QDBusConnection(m_connectionName); }

    /// Sends, and comes back when the bus has passed it on: what any connection sends later is
    /// then later for every receiver.
    void send(const QDBusMessage& message) const;

private:
    QString m_connectionName;
    QString m_name;
};

/// Stands in for the service that watches the lid.
class FakeUPower final : public QDBusVirtualObject {
public:
    explicit FakeUPower(const std::string& address, bool lidIsClosed = false,
                        bool lidIsPresent = true,
                        const QString& name = QStringLiteral("org.freedesktop.UPower"));
    ~FakeUPower() override;

    /// Changes the property and says so.
    void setLidIsClosed(bool closed);
    /// Changes the property and only says that it is no longer what it was.
    void invalidateLidIsClosed(bool closed);

    /// How often the properties were asked for.
    [[nodiscard]] int reads() const { return m_reads; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
    [[nodiscard]] QString introspect(const QString& path) const override;

private:
    void sendChange(const QVariantMap& changed, const QStringList& invalidated);

    BusService m_service;
    QVariantMap m_properties;
    int m_reads = 0;
};

/// Stands in for the service that sends the machine to sleep.
class FakeLogind {
public:
    explicit FakeLogind(const std::string& address,
                        const QString& name = QStringLiteral("org.freedesktop.login1"));

    void prepareForSleep(bool start) const;

private:
    BusService m_service;
};

} // namespace quorvane
