#pragma once

#include <QTimer>
#include <memory>
#include <optional>

#include "platform/Screens.h"
#include "platform/linux/overlays/PaintedOverlay.h"
#include "platform/linux/overlays/X11OverlayWindow.h"
#include "platform/linux/overlays/X11SharedImage.h"

namespace quorvane {

/// The window of a visible panel and its picture, redrawn as the view changes.
class X11OverlayContent {
public:
    struct Setting {
        /// In coordinates of the root window.
        QRect pixels;
        /// Pixels per point.
        double scale = 1;
        bool opaque = true;
        Color background;
        bool takesClicks = true;
        xcb_cursor_t cursor = XCB_CURSOR_NONE;
        /// What shows through a translucent panel without a compositor; null: captured from the
        /// screen now.
        QImage beneath;
    };

    /// `view` may be null: then there is only the background.
    X11OverlayContent(X11Connection& connection, std::shared_ptr<const OverlayView> view,
                      Setting setting);

    [[nodiscard]] const X11OverlayWindow& window() const { return *m_window; }

    /// The captured screen beneath; null where it is not needed.
    [[nodiscard]] const QImage& beneath() const { return m_setting.beneath; }

    /// Sends a part again that the server has lost.
    void show(const QRect& part);

private:
    void captureBeneath();
    void drawAll();
    void followChanges();
    void drawChanges();

    X11Connection& m_connection;
    std::shared_ptr<const OverlayView> m_view;
    Setting m_setting;
    // Whether a compositor blends the window with what is beneath.
    bool m_blended;
    X11SharedImage m_image;
    // None without a view.
    std::optional<PaintedOverlay> m_painted;
    // Made after the first drawing.
    std::optional<X11OverlayWindow> m_window;
    QTimer m_spin;
    Subscription m_changes;
};

} // namespace quorvane
