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
    /// Pixels per point: Qt's device pixel ratio for this screen.
    double scale = 1;

    /// In points: the pixels divided by the scale.
    [[nodiscard]] Rect frame() const;
};

/// All active monitors.
[[nodiscard]] std::vector<X11Monitor> x11Monitors(const X11Connection& connection);

/// The one that holds most of the window with the keyboard focus, else the primary one; none if
/// there are none.
[[nodiscard]] std::optional<X11Monitor> x11MainMonitor(const X11Connection& connection);

} // namespace quorvane
