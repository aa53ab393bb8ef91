#pragma once

#include <QImage>
#include <vector>
#include <xcb/render.h>

#include "base/NonCopyable.h"
#include "platform/Canvas.h"
#include "platform/linux/common/X11Connection.h"

namespace quorvane {

/// An override-redirect window, which the window manager leaves alone: on every workspace, never
/// focused, never sent a ping. Mapped for as long as it exists. The X server draws its background;
/// pictures are sent and put over it. Main thread only.
class X11OverlayWindow : NonCopyable {
public:
    struct Look {
        /// In coordinates of the root window.
        QRect pixels;
        /// Colours all over the window, the lowest first.
        std::vector<Color> layers;
        /// Whether the layers hide the desktop. If not, a compositor blends the window with it;
        /// without one the window shows the desktop as it was when the window was made.
        bool opaque = true;
        bool takesClicks = true;
        xcb_cursor_t cursor = XCB_CURSOR_NONE;
    };

    /// Whether the server can show such windows: it has the RENDER extension and true colours.
    [[nodiscard]] static bool isSupported(const X11Connection& connection);

    X11OverlayWindow(X11Connection& connection, const Look& look);
    ~X11OverlayWindow();

    [[nodiscard]] xcb_window_t id() const { return m_window; }

    void raise() const;
    void placeBelow(xcb_window_t sibling) const;
    void moveTo(const QRect& pixels) const;
    /// Shows `picture` (premultiplied, with alpha) over the background, with its top left corner at
    /// `corner`.
    void show(const QImage& picture, QPoint corner) const;

    /// Sends the requests made so far.
    void flush() const { m_connection.flush(); }

private:
    void create(const Look& look);
    void describe() const;
    void letClicksThrough() const;
    void put(const QImage& picture, xcb_drawable_t target, uint8_t depth, xcb_gcontext_t context,
             QPoint corner) const;

    X11Connection& m_connection;
    // Whether a compositor blends the window with what is beneath.
    bool m_blended;
    uint8_t m_depth;
    xcb_visualid_t m_visual;
    xcb_window_t m_window;
    xcb_colormap_t m_colormap;
    // Fills with the background.
    xcb_gcontext_t m_context;
    // Whether opaque pictures can be put into the window as they are.
    bool m_takesImages;
};

} // namespace quorvane
