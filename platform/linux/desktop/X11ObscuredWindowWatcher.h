#pragma once

#include <functional>
#include <memory>
#include <xcb/xcb.h>

#include "base/NonCopyable.h"

namespace quorvane {

class X11Connection;

/// Whether other windows cover all of one of ours, by X11's visibility events. Under a compositing
/// manager the server reports every window as unobscured. Main thread only.
class X11ObscuredWindowWatcher : NonCopyable {
public:
    /// `report` is called with each change.
    X11ObscuredWindowWatcher(xcb_window_t window, std::function<void(bool covered)> report);
    ~X11ObscuredWindowWatcher();

private:
    void take(const xcb_generic_event_t& event);

    xcb_window_t m_window;
    std::function<void(bool covered)> m_report;
    std::unique_ptr<X11Connection> m_connection;
};

} // namespace quorvane
