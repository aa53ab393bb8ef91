#pragma once

#include <QRect>
#include <optional>
#include <vector>

#include "platform/Canvas.h"
#include "platform/linux/common/X11Connection.h"

namespace quorvane {

/// A monitor, as RandR reports it.
struct X11Monitor {
    xcb_atom_t name = XCB_ATOM_NONE;
    bool primary = false;
    /// In coordinates of the root window.
    QRect pixels;
    /// Pixels per point.
    double scale = 1;

    /// Its corner in pixels, its size in points: with several scales, corners in points could be
    /// those of two monitors.
    [[nodiscard]] Rect frame() const;
};

/// All active monitors.
[[nodiscard]] std::vector<X11Monitor> x11Monitors(const X11Connection& connection);

/// The monitor with this frame; if there is none, one of the frame's size at its place, with the
/// scale of the monitor there.
[[nodiscard]] X11Monitor x11MonitorAt(const X11Connection& connection, const Rect& frame);

/// The one that holds most of the window with the keyboard focus, or where no X11 window has it,
/// the one with the pointer if that is in an X11 window; else the primary one, else the first. None
/// if there are none.
[[nodiscard]] std::optional<X11Monitor> x11MainMonitor(const X11Connection& connection);

} // namespace quorvane
