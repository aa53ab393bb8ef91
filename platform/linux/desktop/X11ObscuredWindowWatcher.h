#pragma once

#include <functional>
#include <memory>
#include <xcb/xcb.h>

#include "base/NonCopyable.h"

namespace quorvane {

class X11Connection;

/// Whether other windows cover one of our windows to the last pixel. Where a compositing manager
/// draws, the server no longer tells, and nothing ever counts as covered. Main thread only.
class X11ObscuredWindowWatcher : NonCopyable {
public:
    /// `report` is told each change.
    X11ObscuredWindowWatcher(xcb_window_t window, std::function<void(bool covered)> report);
    ~X11ObscuredWindowWatcher();

private:
    void take(const xcb_generic_event_t& event);

    xcb_window_t m_window;
    std::function<void(bool covered)> m_report;
    std::unique_ptr<X11Connection> m_connection;
};

} // namespace quorvane
