#pragma once

#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

#include "platform/Screens.h"
#include "platform/linux/overlays/OverlayPainter.h"
#include "platform/linux/overlays/PanelWatchdog.h"
#include "platform/linux/overlays/X11Monitors.h"
#include "platform/linux/overlays/X11OverlayWindow.h"

namespace quorvane {

class X11OverlayStack;

/// A panel, whose window exists only while it is shown.
class X11Panel final : public OverlayPanel, public std::enable_shared_from_this<X11Panel> {
public:
    /// `stack` may be empty or expire: the panel then does not show.
    X11Panel(std::weak_ptr<X11OverlayStack> stack, const Rect& frame);

    void setLevel(int level) override;
    void setOpaque(bool opaque) override;
    void setBackgroundColor(const Color& color) override;
    /// No effect: override-redirect windows are on every workspace and over full-screen windows
    /// anyway.
    void setCollectionBehavior(unsigned behavior) override;
    void setIgnoresMouseEvents(bool ignores) override;
    void setContentView(std::shared_ptr<const OverlayView> view) override;
    void setTimeLimit(double seconds) override;
    void setFrame(const Rect& frame, bool display) override;
    void orderFrontRegardless() override;
    void orderOut() override;

    [[nodiscard]] int level() const { return m_level; }

    /// Null while it is not shown.
    [[nodiscard]] const X11OverlayWindow* window() const { return m_window.get(); }

    /// Sends again what is drawn in `part`, in pixels of the window.
    void expose(const QRect& part);
    /// Follows its monitor, moves to the main one if its own is gone, and is removed if there is
    /// none.
    void follow(const std::vector<X11Monitor>& monitors, const std::optional<X11Monitor>& main);
    /// Removes the window; the panel does not come back before it is ordered front again.
    void removeWindow();

private:
    void replaceWindow();
    void makeWindow(X11OverlayStack& stack);
    void show(const std::vector<OverlayPicture>& pictures) const;

    std::weak_ptr<X11OverlayStack> m_stack;
    std::shared_ptr<const OverlayView> m_view;
    Rect m_frame;
    // The monitor that the frame covers, else only the frame's pixels and a scale. Set when shown.
    X11Monitor m_monitor;
    int m_level = 0;
    bool m_opaque = true;
    Color m_background;
    bool m_ignoresMouse = false;
    double m_timeLimit = 0;
    // None without a view.
    std::optional<OverlayPainter> m_painter;
    std::unique_ptr<X11OverlayWindow> m_window;
    // From before the window is mapped until after it is destroyed.
    std::optional<PanelWatchdog> m_watchdog;
    Subscription m_changes;
    QTimer m_spin;
};

} // namespace quorvane
