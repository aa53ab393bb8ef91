#include "platform/linux/desktop/X11ObscuredWindowWatcher.h"

#include <array>
#include <utility>

#include "platform/linux/common/X11Connection.h"

namespace quorvane {

// On a connection of our own: event masks are per connection, and Qt has set its own.
X11ObscuredWindowWatcher::X11ObscuredWindowWatcher(xcb_window_t window,
                                                   std::function<void(bool)> report)
    : m_window(window), m_report(std::move(report)), m_connection(X11Connection::open()) {
    if (!m_connection)
        return;
    m_connection->setEventHandler([this](const xcb_generic_event_t& event) { take(event); });
    const std::array<uint32_t, 1> events{XCB_EVENT_MASK_VISIBILITY_CHANGE};
    xcb_change_window_attributes(m_connection->get(), m_window, XCB_CW_EVENT_MASK, events.data());
    m_connection->flush();
}

X11ObscuredWindowWatcher::~X11ObscuredWindowWatcher() = default;

void X11ObscuredWindowWatcher::take(const xcb_generic_event_t& event) {
    if (eventType(event) != XCB_VISIBILITY_NOTIFY)
        return;
    const auto& change = reinterpret_cast<const xcb_visibility_notify_event_t&>(event);
    m_report(change.state == XCB_VISIBILITY_FULLY_OBSCURED);
}

} // namespace quorvane
