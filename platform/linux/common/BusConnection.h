#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QPointer>
#include <QThread>
#include <functional>
#include <string>

#include "base/NonCopyable.h"

namespace quorvane {

/// Opens a connection to a message bus on another thread: a bus that accepts connections but does
/// not answer would block the main thread. Main thread only.
class BusConnection : NonCopyable {
public:
    /// `address` in the form of DBUS_SYSTEM_BUS_ADDRESS; empty: the bus of that type. The Qt event
    /// loop calls `opened` with the connection, which is not connected where there is no bus. It is
    /// closed with the last copy.
    BusConnection(QDBusConnection::BusType type, const std::string& address,
                  std::function<void(const QDBusConnection&)> opened);
    /// From now on `opened` is not called. Waits for a bus that is just answering, 0.5 s at most.
    ~BusConnection();

private:
    QPointer<QThread> m_thread;
    // Receives the connection.
    QObject m_context;
};

} // namespace quorvane
