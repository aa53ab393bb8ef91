#pragma once

#include <QSocketNotifier>
#include <QTimer>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

#include "base/NonCopyable.h"

namespace quorvane {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); } // NOLINT: the library's allocation.
};

/// What the display server answered.
template <class Reply>
using XcbReply = std::unique_ptr<Reply, FreeReply>;

/// The event's type, without the bit that marks an event sent by another client.
[[nodiscard]] inline int eventType(const xcb_generic_event_t& event) {
    return event.response_type & ~0x80;
}

/// A connection to the X server of our own: its events are ours alone, and its windows go with the
/// process, however that ends. Main thread only; events come from the Qt event loop.
class X11Connection : NonCopyable {
public:
    using EventHandler = std::function<void(const xcb_generic_event_t&)>;

    /// The server that DISPLAY names; null if it does not answer.
    [[nodiscard]] static std::unique_ptr<X11Connection> open();
    ~X11Connection();

    void setEventHandler(EventHandler handler) { m_handler = std::move(handler); }

    /// Whether the event loop hands over events as they come in, which it does from the start.
    void setReading(bool reading);
    /// Hands over the events that are there now.
    void readEvents();
    /// Whether nothing can be asked of the server any more. Hands over the events that are there.
    [[nodiscard]] bool isBroken();

    [[nodiscard]] xcb_connection_t* get() const { return m_connection; }

    [[nodiscard]] int socket() const { return xcb_get_file_descriptor(m_connection); }

    [[nodiscard]] const xcb_screen_t& screen() const { return *m_screen; }

    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }

    /// Sends what has been asked for, and sees to the events that came in while the server was
    /// being waited for. Needed after every answer that was waited for, or those events are found
    /// only with the next one.
    void settle();
    /// Sends what has been asked for.
    void flush();

    [[nodiscard]] xcb_atom_t atom(std::string_view name) const;
    /// Whether a compositing manager blends windows.
    [[nodiscard]] bool composites() const;
    /// The visual for 8 bits a colour at `depth` (24, or 32 with alpha); none: 0.
    [[nodiscard]] xcb_visualid_t visual(int depth) const;

private:
    X11Connection(xcb_connection_t* connection, int screenNumber);

    xcb_connection_t* m_connection;
    int m_screenNumber;
    const xcb_screen_t* m_screen;
    EventHandler m_handler;
    QSocketNotifier m_readable;
    QTimer m_settle;
};

} // namespace quorvane
