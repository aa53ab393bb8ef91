#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <systemd/sd-bus.h>
#include <utility>

#include "base/NonCopyable.h"
#include "platform/linux/common/ReleasedBy.h"

namespace quorvane {

using BusMessage = std::unique_ptr<sd_bus_message, ReleasedBy<sd_bus_message_unref>>;

/// A connection to the session bus for what has to be known before there is a QGuiApplication.
/// Never blocks: joining the bus and all answers together are waited for until a deadline. Main
/// thread only.
class SessionBus : NonCopyable {
public:
    /// Joins the bus that DBUS_SESSION_BUS_ADDRESS names, else the one in XDG_RUNTIME_DIR.
    /// `patience` is the time for this and for every answer, together.
    explicit SessionBus(std::chrono::milliseconds patience = std::chrono::milliseconds(500));

    /// Whether there is a connection. It is lost with the bus, and when the bus does not answer.
    [[nodiscard]] bool isOpen() const { return m_bus != nullptr; }

    /// Whether there is a bus that did not answer in time. Libraries that wait for it would hang.
    [[nodiscard]] bool isHung() const { return m_isHung; }

    /// Null while not open.
    [[nodiscard]] sd_bus* get() const { return m_bus.get(); }

    /// A call of a method, for `send` and `ask`; null on failure or while not open. `types` and
    /// `arguments` as sd_bus_message_append takes them. It starts no service.
    template <typename... Arguments>
    [[nodiscard]] BusMessage call(const char* service, const char* path, const char* interface,
                                  const char* member, const char* types,
                                  Arguments... arguments) const {
        BusMessage message = newCall(service, path, interface, member);
        if (message && sd_bus_message_append(message.get(), types, arguments...) < 0)
            message.reset();
        return message;
    }

    /// Sends the call and waits for the answer, which may be an error; null at the deadline, and
    /// when the connection is lost.
    [[nodiscard]] BusMessage ask(const BusMessage& call);

    /// The same for a method of the bus itself. One that does not answer until the deadline counts
    /// as hung, and is left.
    template <typename... Arguments>
    [[nodiscard]] BusMessage askDaemon(const char* member, const char* types,
                                       Arguments... arguments) {
        BusMessage answer = ask(call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                     "org.freedesktop.DBus", member, types, arguments...));
        if (!answer && isOpen())
            leave(true);
        return answer;
    }

    /// Handles what has arrived. False once the connection is lost; its descriptor stays open.
    [[nodiscard]] bool process() const;

private:
    [[nodiscard]] BusMessage newCall(const char* service, const char* path, const char* interface,
                                     const char* member) const;
    int advance();
    void leave(bool isHung);

    std::chrono::steady_clock::time_point m_deadline;
    std::unique_ptr<sd_bus, ReleasedBy<sd_bus_close_unref>> m_bus;
    bool m_isHung = false;
};

/// The number in an answer; 0 if it holds none, as when it is an error or null.
[[nodiscard]] unsigned numberIn(const BusMessage& answer);

} // namespace quorvane
