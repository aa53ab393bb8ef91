#pragma once

#include <memory>
#include <string>

#include "platform/InProcessNotificationCenter.h"

namespace quorvane {

class SleepSignals;

/// The workspace centre. didWake comes from logind; screensDidSleep and screensDidWake come from
/// logind and from the lid's state in UPower; after a sleep didWake is posted first. The system bus
/// is connected only while there are observers, and UPower is called only once one of them observes
/// the screens. Never blocks on the bus; the Qt event loop posts the notifications. Without the bus
/// or a service there are none.
class LinuxSleepNotifications final : public InProcessNotificationCenter {
public:
    /// `busAddress` in the form of DBUS_SYSTEM_BUS_ADDRESS; empty: the system bus.
    explicit LinuxSleepNotifications(std::string busAddress = {});
    ~LinuxSleepNotifications() override;

    Token addObserver(std::string_view name, std::function<void()> block) override;
    void removeObserver(Token token) override;

private:
    void listen();

    std::string m_busAddress;
    // Made with the first observer.
    std::unique_ptr<SleepSignals> m_signals;
};

} // namespace quorvane
