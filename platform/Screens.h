#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/NonCopyable.h"
#include "base/Observable.h"
#include "platform/Canvas.h"

namespace quorvane {

/// The content of an overlay panel. Main thread only.
class OverlayView : NonCopyable {
public:
    virtual ~OverlayView() = default;

    /// The colour behind everything that is drawn, all over the panel and above its own background.
    [[nodiscard]] virtual Color backLayer() const = 0;
    /// Draws what the view shows now. Called when the panel appears and after each change, for the
    /// same size; the platform sends only what differs to the screen.
    virtual void draw(Canvas& canvas, Size size) const = 0;

    /// Calls `changed` when `draw` would draw something else; never by default.
    [[nodiscard]] virtual Subscription
    observeChanges(const std::function<void()>& /*changed*/) const {
        return {};
    }
};

// The values that overlays use, as macOS defines them.

namespace PanelStyle {
/// No title bar, no border, does not activate the application.
inline constexpr unsigned nonactivatingPanel = 128;
} // namespace PanelStyle

namespace PanelBacking {
inline constexpr unsigned buffered = 2;
} // namespace PanelBacking

namespace PanelCollectionBehavior {
inline constexpr unsigned canJoinAllSpaces = 1;
inline constexpr unsigned fullScreenAuxiliary = 256;
} // namespace PanelCollectionBehavior

namespace PanelLevel {
/// Above the menu bar, docks, normal and floating windows.
inline constexpr int screenSaver = 1000;
} // namespace PanelLevel

/// A borderless window over a screen. It takes the clicks over its area, never gets or moves the
/// keyboard focus, and does not activate the application. Shown from `orderFrontRegardless` to
/// `orderOut`; a panel whose handle is dropped stays up. Main thread only.
class OverlayPanel : NonCopyable {
public:
    virtual ~OverlayPanel() = default;

    virtual void setLevel(int level) = 0;
    virtual void setOpaque(bool opaque) = 0;
    virtual void setBackgroundColor(const Color& color) = 0;
    virtual void setCollectionBehavior(unsigned behavior) = 0;
    virtual void setIgnoresMouseEvents(bool ignores) = 0;
    virtual void setContentView(std::shared_ptr<const OverlayView> view) = 0;
    /// The longest time in seconds from `orderFrontRegardless` to `orderOut`; 0, the initial value:
    /// unknown. If the main thread hangs, platforms that can do so remove the panel 2 s after that.
    virtual void setTimeLimit(double seconds) = 0;
    virtual void setFrame(const Rect& frame, bool display) = 0;
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;
};

/// One screen, in the coordinates that panels use.
class Screen : NonCopyable {
public:
    virtual ~Screen() = default;

    /// The whole screen at present, menu bar and docks included.
    [[nodiscard]] virtual Rect frame() const = 0;
};

/// Finds screens and creates panels. Main thread only.
class ScreenService : NonCopyable {
public:
    virtual ~ScreenService() = default;

    /// The screen with the focused window, else the primary screen; null without any screen.
    [[nodiscard]] virtual std::shared_ptr<Screen> mainScreen() = 0;
    /// Why no panel can be shown on this desktop, in a few words for the user; empty if panels can.
    [[nodiscard]] virtual std::string obstacle() = 0;
    /// A hidden panel; never null.
    [[nodiscard]] virtual std::shared_ptr<OverlayPanel>
    createPanel(const Rect& contentRect, unsigned styleMask, unsigned backing, bool defer) = 0;
};

} // namespace quorvane
