#pragma once

#include <QTimer>
#include <memory>
#include <optional>

#include "platform/Screens.h"
#include "platform/linux/overlays/PaintedOverlay.h"
#include "platform/linux/overlays/X11OverlayWindow.h"
#include "platform/linux/overlays/X11SharedImage.h"

namespace quorvane {

/// A panel that is up: its window, what is in it, and the keeping up with what changes.
class X11OverlayContent {
public:
    struct Setting {
        QRect pixels;
        /// Pixels a point.
        double scale = 1;
        bool opaque = true;
        Color background;
        bool takesClicks = true;
        xcb_cursor_t cursor = XCB_CURSOR_NONE;
        /// What shows through where nothing blends windows; null: what the screen shows now.
        QImage beneath;
    };

    /// `view` may be null: then there is nothing but the background.
    X11OverlayContent(X11Connection& connection, std::shared_ptr<const OverlayView> view,
                      Setting setting);

    [[nodiscard]] const X11OverlayWindow& window() const { return *m_window; }

    /// A still of the screen beneath; null where it is not needed.
    [[nodiscard]] const QImage& beneath() const { return m_setting.beneath; }

    /// Shows a part again that the server has lost.
    void show(const QRect& part);

private:
    void captureBeneath();
    void drawAll();
    void keepUp();
    void drawChanges();

    X11Connection& m_connection;
    std::shared_ptr<const OverlayView> m_view;
    Setting m_setting;
    // Whether the window shows what is beneath by itself.
    bool m_blended;
    X11SharedImage m_image;
    // Nothing to draw without a view.
    std::optional<PaintedOverlay> m_painted;
    // Made once there is something to show.
    std::optional<X11OverlayWindow> m_window;
    QTimer m_spin;
    Subscription m_changes;
};

} // namespace quorvane
