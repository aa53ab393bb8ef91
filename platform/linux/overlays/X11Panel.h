#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/Screens.h"
#include "platform/linux/overlays/PanelWatchdog.h"
#include "platform/linux/overlays/X11Monitors.h"
#include "platform/linux/overlays/X11OverlayContent.h"

namespace quorvane {

class X11OverlayStack;

/// A panel, whose window exists only while it is shown.
class X11Panel final : public OverlayPanel, public std::enable_shared_from_this<X11Panel> {
public:
    /// `overlays` may be empty or expire: the panel then does not show.
    X11Panel(std::weak_ptr<X11OverlayStack> overlays, const Rect& frame);

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
    [[nodiscard]] const X11OverlayWindow* window() const;
    void expose(const QRect& part) const;
    /// Follows its monitor, moves to the main one if its own is gone, and is removed if there is
    /// none.
    void follow(const std::vector<X11Monitor>& monitors, const std::optional<X11Monitor>& main);

private:
    void place(const Rect& frame, const std::vector<X11Monitor>& monitors);
    void replaceWindow();
    [[nodiscard]] std::unique_ptr<X11OverlayContent> makeOverlay(X11OverlayStack& overlays) const;

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
    std::unique_ptr<X11OverlayContent> m_overlay;
    // From before the window is mapped until after it is destroyed.
    std::optional<PanelWatchdog> m_watchdog;
};

} // namespace quorvane
