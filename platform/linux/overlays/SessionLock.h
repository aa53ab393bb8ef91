#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/NonCopyable.h"

class QDBusConnection;
class QDBusMessage;

namespace quorvane {

class BusConnection;

/// Whether the user's session is locked, as logind and the desktop's screen saver say; a screen
/// saver that has blanked the screen without locking it counts as well. Never blocks on a bus; not
/// locked while the services' first answers are on the way, nor without a bus or a service. Main
/// thread only.
class SessionLock : NonCopyable {
public:
    /// In the form of DBUS_SYSTEM_BUS_ADDRESS; empty: the buses of the system and of the user.
    struct Addresses {
        std::string system;
        std::string session;
    };

    /// The Qt event loop calls `changed` after each change; it must not destroy this object.
    explicit SessionLock(std::function<void()> changed, const Addresses& addresses = {});
    /// Waits, 0.5 s at most, for a bus that is just answering.
    ~SessionLock();

    [[nodiscard]] bool isLocked() const { return m_locked; }

private:
    class Service;
    struct Signal;

    void askLogind(const QDBusConnection& bus);
    void askScreenSavers(const QDBusConnection& bus);
    void ask(const QDBusConnection& bus, const QDBusMessage& question, const Signal& signal);
    void update();

    std::function<void()> m_changed;
    bool m_locked = false;
    std::vector<std::unique_ptr<Service>> m_services;
    std::unique_ptr<BusConnection> m_system;
    std::unique_ptr<BusConnection> m_session;
};

} // namespace quorvane
