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

/// A fake service's connection to the bus. It owns the service's name while this lives.
class BusService : NonCopyable {
public:
    BusService(const std::string& address, const QString& name);
    ~BusService();

    [[nodiscard]] QDBusConnection bus() const { return QDBusConnection(m_connectionName); }

    /// Returns when the bus has passed the message on: every receiver gets it before what any
    /// connection sends later.
    void send(const QDBusMessage& message) const;

private:
    QString m_connectionName;
    QString m_name;
};

/// A fake UPower with the properties of a lid.
class FakeUPower final : public QDBusVirtualObject {
public:
    explicit FakeUPower(const std::string& address, bool lidIsClosed = false,
                        bool lidIsPresent = true,
                        const QString& name = QStringLiteral("org.freedesktop.UPower"));
    ~FakeUPower() override;

    /// Changes the property and sends its new value.
    void setLidIsClosed(bool closed);
    /// Changes the property and sends only that its old value is invalid.
    void invalidateLidIsClosed(bool closed);

    /// How often the properties were read.
    [[nodiscard]] int reads() const { return m_reads; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
    [[nodiscard]] QString introspect(const QString& path) const override;

private:
    void sendChange(const QVariantMap& changed, const QStringList& invalidated);

    BusService m_service;
    QVariantMap m_properties;
    int m_reads = 0;
};

/// A fake logind, which only announces sleep.
class FakeLogind {
public:
    explicit FakeLogind(const std::string& address,
                        const QString& name = QStringLiteral("org.freedesktop.login1"));

    void prepareForSleep(bool start) const;

private:
    BusService m_service;
};

/// A fake of the part of Mutter that is about the displays' power.
class FakeMutter final : public QDBusVirtualObject {
public:
    explicit FakeMutter(const std::string& address, int powerSaveMode = 0);
    ~FakeMutter() override;

    /// Changes the property and sends its new value: 0 is on, 1 to 3 are off, -1 is unknown.
    void setPowerSaveMode(int mode);
    /// Sends new values of other properties.
    void sendOtherChange() const;

    /// How often the property was read.
    [[nodiscard]] int reads() const { return m_reads; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
    [[nodiscard]] QString introspect(const QString& path) const override;

private:
    void sendChange(const QVariantMap& changed) const;

    BusService m_service;
    int m_powerSaveMode;
    int m_reads = 0;
};

} // namespace quorvane
