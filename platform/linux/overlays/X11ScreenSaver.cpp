#include "platform/linux/overlays/X11ScreenSaver.h"

#include <cstring>

#include "platform/linux/common/X11Replies.h"

namespace quorvane {

X11ScreenSaver::X11ScreenSaver(const X11Connection& connection)
    : m_connection(connection), m_status(connection.atom("_SCREENSAVER_STATUS")) {}

bool X11ScreenSaver::isActive() const {
    // The first number is the atom BLANK or LOCK, 0 while the saver is not active; then follow the
    // time since when, and what it draws.
    const auto cookie = xcb_get_property(m_connection.get(), /*_delete=*/0, m_connection.root(),
                                         m_status, XCB_GET_PROPERTY_TYPE_ANY, 0, 1);
    const XcbReply<xcb_get_property_reply_t> status{
        xcb_get_property_reply(m_connection.get(), cookie, nullptr)};
    xcb_atom_t first = XCB_ATOM_NONE;
    if (status && status->format == 32 && valueOf(*status).size() >= sizeof first)
        std::memcpy(&first, valueOf(*status).data(), sizeof first);
    return first != XCB_ATOM_NONE;
}

bool X11ScreenSaver::isChangedBy(const xcb_generic_event_t& event) const {
    return eventType(event) == XCB_PROPERTY_NOTIFY &&
           reinterpret_cast<const xcb_property_notify_event_t&>(event).atom == m_status;
}

} // namespace quorvane
