#pragma once

#include <array>
#include <map>
#include <memory>
#include <poll.h>
#include <set>
#include <string>
#include <systemd/sd-bus.h>
#include <systemd/sd-login.h>

#include <sys/types.h>

#include "base/NonCopyable.h"
#include "platform/linux/common/ReleasedBy.h"

namespace quorvane {

/// Where a user sits, and may be heard. Tests say so themselves.
class Seats : NonCopyable {
public:
    virtual ~Seats() = default;

    /// update() is due once one of them is ready.
    [[nodiscard]] virtual std::array<pollfd, 2> polled() const = 0;

    /// The seats at which the user is in front, by a session that is not locked. Never waits.
    [[nodiscard]] virtual std::set<std::string> update() = 0;
};

/// As logind has it: its files tell who is in front, its LockedHint on the bus who has locked. A
/// session counts as not locked while logind cannot be asked.
class LogindSeats final : public Seats {
public:
    /// `systemBus` in the form of DBUS_SYSTEM_BUS_ADDRESS.
    explicit LogindSeats(uid_t user,
                         std::string systemBus = "unix:path=/run/dbus/system_bus_socket");

    [[nodiscard]] std::array<pollfd, 2> polled() const override;
    [[nodiscard]] std::set<std::string> update() override;

private:
    struct Session {
        bool isLocked = false;
        /// The question that is on its way. With it goes its answer's callback.
        std::unique_ptr<sd_bus_slot, ReleasedBy<sd_bus_slot_unref>> question;
    };

    void joinBus();
    void readBus();
    void leaveBus();
    void findSessions();
    void ask(const std::string& id, Session& session);
    [[nodiscard]] bool isLocked(const std::string& seat) const;

    static int handleAnswer(sd_bus_message* answer, void* session, sd_bus_error* error);
    static int handleSignal(sd_bus_message* signal, void* seats, sd_bus_error* error);

    uid_t m_user;
    std::string m_address;
    std::unique_ptr<sd_login_monitor, ReleasedBy<sd_login_monitor_unref>> m_monitor;
    std::unique_ptr<sd_bus, ReleasedBy<sd_bus_close_unref>> m_bus;
    /// By id; all of the user, as each may be the next one in front.
    std::map<std::string, Session> m_sessions;
};

} // namespace quorvane
