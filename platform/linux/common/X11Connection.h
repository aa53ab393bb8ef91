#pragma once

#include <QSocketNotifier>
#include <QTimer>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <xcb/xcb.h>

#include "base/NonCopyable.h"
#include "platform/linux/common/ReleasedBy.h"

namespace quorvane {

template <class Reply>
using XcbReply = std::unique_ptr<Reply, ReleasedBy<std::free>>;

/// The event's type, without the bit that marks an event sent by another client.
[[nodiscard]] inline int eventType(const xcb_generic_event_t& event) {
    return event.response_type & ~0x80;
}

/// A connection to the X server, separate from Qt's and with events of its own. The server removes
/// its windows when the process ends, however it ends. Main thread only; the Qt event loop
/// dispatches the events. Waits for replies, also while the server hangs: Qt waits for it too,
/// nothing can be shown or pressed meanwhile, and what was due is done as soon as it goes on.
class X11Connection : NonCopyable {
public:
    using EventHandler = std::function<void(const xcb_generic_event_t&)>;

    /// Connects to the server that DISPLAY names; null on failure.
    [[nodiscard]] static std::unique_ptr<X11Connection> open();
    ~X11Connection();

    void setEventHandler(EventHandler handler) { m_handler = std::move(handler); }

    /// Whether the event loop dispatches events as they arrive; on at first.
    void setReading(bool reading);
    /// Dispatches the events that have arrived.
    void readEvents();
    /// Whether the connection is lost. Dispatches the events that have arrived.
    [[nodiscard]] bool isBroken();

    [[nodiscard]] xcb_connection_t* get() const { return m_connection; }

    [[nodiscard]] int socket() const { return xcb_get_file_descriptor(m_connection); }

    [[nodiscard]] const xcb_screen_t& screen() const { return *m_screen; }

    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }

    /// Flushes, and has the event loop dispatch the events that xcb queued while it waited for a
    /// reply. Needed after every such wait: queued events do not make the socket readable.
    void settle();
    /// Sends the requests made so far.
    void flush();

    [[nodiscard]] xcb_atom_t atom(std::string_view name) const;
    /// Whether a compositing manager blends windows.
    [[nodiscard]] bool composites() const;
    /// The visual with 8 bits per colour at `depth` (24, or 32 with alpha); 0 if there is none.
    [[nodiscard]] xcb_visualid_t visual(int depth) const;

private:
    X11Connection(xcb_connection_t* connection, int screenNumber);

    xcb_connection_t* m_connection;
    int m_screenNumber;
    const xcb_screen_t* m_screen;
    EventHandler m_handler;
    mutable std::map<std::string, xcb_atom_t, std::less<>> m_atoms;
    QSocketNotifier m_readable;
    QTimer m_settle;
};

} // namespace quorvane
