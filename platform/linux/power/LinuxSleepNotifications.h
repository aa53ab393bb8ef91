#pragma once

#include <memory>
#include <string>

#include "platform/InProcessNotificationCenter.h"

namespace quorvane {

class SleepSignals;

/// The workspace centre: posts that the machine did wake, by what logind says, and that the screens
/// did sleep and did wake, by what UPower says of the lid besides. A machine that wakes is told
/// before its screens. The system bus is connected to only while somebody observes, and UPower
/// asked only while somebody observes more than the machine; that and everything else happens
/// without waiting, and notifications come from the Qt event loop. No bus, or no such service: no
/// notifications.
class LinuxSleepNotifications final : public InProcessNotificationCenter {
public:
    /// `busAddress` in the form of DBUS_SYSTEM_BUS_ADDRESS; empty: the system bus, where that
    /// variable says that it is.
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
