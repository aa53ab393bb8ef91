#pragma once

#include <QRect>

#include "base/NonCopyable.h"
#include "platform/Canvas.h"
#include "platform/linux/common/X11Connection.h"
#include "platform/linux/overlays/X11SharedImage.h"

namespace quorvane {

/// An override-redirect window, which the window manager leaves alone: on every workspace, never
/// focused, never sent a ping. Mapped for as long as it exists.
class X11OverlayWindow : NonCopyable {
public:
    struct Look {
        /// In coordinates of the root window.
        QRect pixels;
        /// 32: what is beneath shows through; 24: opaque.
        int depth = 24;
        /// Shown until the first drawing.
        Color background;
        bool takesClicks = true;
        xcb_cursor_t cursor = XCB_CURSOR_NONE;
    };

    X11OverlayWindow(X11Connection& connection, const Look& look);
    ~X11OverlayWindow();

    [[nodiscard]] xcb_window_t id() const { return m_window; }

    void raise() const;
    void placeBelow(xcb_window_t sibling) const;
    /// Copies `part` of `image` to the same place in the window.
    void show(const X11SharedImage& image, const QRect& part) const;

private:
    void create(const Look& look);
    void describe() const;
    void letClicksThrough() const;

    X11Connection& m_connection;
    int m_depth;
    xcb_window_t m_window;
    xcb_colormap_t m_colormap;
    xcb_gcontext_t m_context;
};

} // namespace quorvane
