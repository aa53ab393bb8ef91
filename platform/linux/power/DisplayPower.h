#pragma once

#include <functional>
#include <string>

#include "base/NonCopyable.h"
#include "platform/linux/common/BusConnection.h"
#include "platform/linux/common/BusMessage.h"

namespace quorvane {

/// Whether the displays are switched off, for example after a time without input.
/// Mutter, GNOME's compositor, tells it on the session bus. Other desktops announce a screen saver
/// or a lock, which leave the displays on. Main thread; never blocks on the bus.
class DisplayPower : NonCopyable {
public:
    /// `address` names the bus; empty: the session bus. `known` is called with the state at the
    /// start, unless there is no Mutter, and whenever it may have changed. It may destroy the
    /// object.
    DisplayPower(std::string address, std::function<void(bool off)> known);

private:
    void listen();
    void read();
    void take(const BusValue& mode);
    void report(bool off);

    std::function<void(bool off)> m_known;
    BusConnection m_bus;
};

} // namespace quorvane
