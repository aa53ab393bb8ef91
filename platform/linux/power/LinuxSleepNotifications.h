#pragma once

#include <memory>
#include <string>

#include "platform/InProcessNotificationCenter.h"

namespace quorvane {

class SleepSignals;

/// The workspace centre. didWake comes from logind; screensDidSleep and screensDidWake come from
/// logind, from the lid's state in UPower and from the displays' state in Mutter; after a sleep
/// didWake is posted first. The buses are listened to only while there are observers, UPower and
/// Mutter only once one of them observes the screens. Never blocks on a bus; the Qt event loop
/// posts the notifications. Without a bus or a service there are none.
class LinuxSleepNotifications final : public InProcessNotificationCenter {
public:
    /// Addresses in the form of DBUS_SYSTEM_BUS_ADDRESS; empty: the system bus, the session bus.
    explicit LinuxSleepNotifications(std::string busAddress = {}, std::string sessionAddress = {});
    ~LinuxSleepNotifications() override;

    Token addObserver(std::string_view name, std::function<void()> block) override;
    void removeObserver(Token token) override;

private:
    void listen();

    std::string m_busAddress;
    std::string m_sessionAddress;
    // Made with the first observer.
    std::unique_ptr<SleepSignals> m_signals;
};

} // namespace quorvane
