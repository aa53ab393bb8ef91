#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/NonCopyable.h"

namespace quorvane {

class BusConnection;

/// Whether the user's session is locked, as logind and the desktop's screen saver say; a screen
/// saver that has blanked the screen without locking it counts as well. Never blocks on a bus; not
/// locked while the services' first answers are on the way, nor without a bus or a service. After a
/// bus has been away the services are asked again. Main thread only.
class SessionLock : NonCopyable {
public:
    /// In the form of DBUS_SYSTEM_BUS_ADDRESS; empty: the buses of the system and of the user.
    struct Addresses {
        std::string system;
        std::string session;
    };

    /// The Qt event loop calls `changed` after each change; it must not destroy this object.
    explicit SessionLock(std::function<void()> changed, const Addresses& addresses = {});
    ~SessionLock();

    [[nodiscard]] bool isLocked() const { return m_locked; }

private:
    class Service;
    using Services = std::vector<std::unique_ptr<Service>>;

    void askLogind();
    void askScreenSavers();
    void leave(Services& services);
    void update();

    std::function<void()> m_changed;
    bool m_locked = false;
    // Of each bus, while it is joined.
    Services m_systemServices;
    Services m_sessionServices;
    std::unique_ptr<BusConnection> m_system;
    std::unique_ptr<BusConnection> m_session;
};

} // namespace quorvane
