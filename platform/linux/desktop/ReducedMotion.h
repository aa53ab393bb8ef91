#pragma once

#include "base/NonCopyable.h"
#include "base/Observable.h"
#include "platform/linux/common/BusConnection.h"

namespace quorvane {

/// Whether the user has asked the desktop for less motion: as the settings portal says, now and
/// with each change, or, without a portal, GTK's settings file. Main thread; never blocks on the
/// bus.
class ReducedMotion : NonCopyable {
public:
    explicit ReducedMotion(Observable<bool>& reducesMotion);

private:
    void listen();
    void askPortal();
    /// Takes the value that comes next in the message.
    void takeAnimationsEnabled(sd_bus_message& message);

    Observable<bool>& m_reducesMotion;
    BusConnection m_bus;
};

} // namespace quorvane
