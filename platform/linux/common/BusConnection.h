#pragma once

#include <functional>
#include <memory>
#include <string>
#include <systemd/sd-bus.h>
#include <vector>

#include <QSocketNotifier>
#include <QTimer>

#include "base/NonCopyable.h"
#include "platform/linux/common/ReleasedBy.h"

namespace quorvane {

/// A connection to a message bus. One that is lost, or that cannot be made because there is no bus
/// or none that answers, is tried again after 1 s and then every 5 s. Nothing waits for the bus:
/// the Qt event loop sends, receives and calls the functions. Main thread only.
class BusConnection : NonCopyable {
public:
    enum class Kind { System, Session };

    /// A call of a method whose arguments are strings.
    struct Call {
        std::string service;
        std::string path;
        std::string interface;
        std::string method;
        std::vector<std::string> arguments;
        /// Whether the bus is to start the service if it does not run.
        bool startsService = false;
    };

    using Handler = std::function<void(sd_bus_message& message)>;

    /// `address` in the form of DBUS_SYSTEM_BUS_ADDRESS; empty: the bus of that kind. `joined` is
    /// called for each new connection, `left` when one that was joined is lost. These and the
    /// handlers may destroy the object.
    BusConnection(Kind kind, std::string address, std::function<void()> joined,
                  std::function<void()> left);
    ~BusConnection();

    // All of these hold for one connection, and do nothing while there is none.

    /// Calls `handler` for each signal that matches `rule`, in the form of the bus's AddMatch. With
    /// a sender, those of other services are left out.
    void listen(const std::string& rule, Handler handler);
    /// Calls `changed` each time a service comes or goes.
    void watch(const std::string& service, std::function<void(bool runs)> changed);
    /// Calls `answered` with the answer, which may be an error; after 25 s without one with an
    /// error.
    void ask(const Call& call, Handler answered);

private:
    struct Subscription;

    void open();
    void process();
    void leave();
    void update();
    void keep(sd_bus_slot* slot, std::unique_ptr<Subscription> subscription);

    const Kind m_kind;
    const std::string m_address;
    const std::function<void()> m_joined;
    const std::function<void()> m_left;
    std::unique_ptr<sd_bus, ReleasedBy<sd_bus_close_unref>> m_bus;
    bool m_isJoined = false;
    std::unique_ptr<QSocketNotifier> m_readable;
    std::unique_ptr<QSocketNotifier> m_writable;
    // Until the library is due, or the next attempt.
    QTimer m_timer;
};

} // namespace quorvane
