#pragma once

#include "platform/linux/common/X11Connection.h"

namespace quorvane {

/// A screen saver of an X server that tells its state by the property _SCREENSAVER_STATUS of the
/// root window, as XScreenSaver does, instead of on a message bus. Main thread only.
class X11ScreenSaver {
public:
    /// `connection` outlives this object.
    explicit X11ScreenSaver(const X11Connection& connection);

    /// Whether it covers the screen now, locked or only blank. Waits for the server (see
    /// X11Connection::settle).
    [[nodiscard]] bool isActive() const;
    /// Whether `isActive` may have changed by this event. Such events come to a connection that
    /// selects XCB_EVENT_MASK_PROPERTY_CHANGE on the root window.
    [[nodiscard]] bool isChangedBy(const xcb_generic_event_t& event) const;

private:
    const X11Connection& m_connection;
    xcb_atom_t m_status;
};

} // namespace quorvane
