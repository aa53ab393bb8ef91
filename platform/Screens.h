#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "base/NonCopyable.h"
#include "base/Observable.h"
#include "platform/Canvas.h"

namespace quorvane {

/// What an overlay panel shows. The panel draws it when it appears and whenever it says that it has
/// changed; the parts that change are drawn apart, so that a change need not redraw the whole
/// screen. Main thread only.
class OverlayView : NonCopyable {
public:
    virtual ~OverlayView() = default;

    /// Everything that looks the same for as long as the panel is up, over the panel's background.
    virtual void drawStill(Canvas& canvas, Size size) const = 0;
    /// What changes, over what is still.
    virtual void drawChanging(Canvas& canvas, Size size) const = 0;
    /// Where `drawChanging` draws, whatever it will draw while the panel is up; empty if nowhere.
    [[nodiscard]] virtual Rect changingBounds(Canvas& canvas, Size size) const = 0;
    /// Tells that `drawChanging` would draw something else now.
    [[nodiscard]] virtual Subscription observeChanges(std::function<void()> changed) const = 0;
    /// Whether something in it spins by itself, at the platform's own pace.
    [[nodiscard]] virtual std::optional<Spinner> spinner(Canvas& canvas, Size size) const = 0;
};

/// The values of the window system that overlays are made with.
namespace PanelStyle {
/// Neither title bar nor border; never activates its application.
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

/// A borderless window over a screen. It is never key, does not activate the application, takes the
/// clicks over its screen and leaves the keyboard where it was. Shown from `orderFrontRegardless`
/// to `orderOut`; letting go of a shown panel leaves it up. Main thread only.
class OverlayPanel : NonCopyable {
public:
    virtual ~OverlayPanel() = default;

    virtual void setLevel(int level) = 0;
    virtual void setOpaque(bool opaque) = 0;
    virtual void setBackgroundColor(const Color& color) = 0;
    virtual void setCollectionBehavior(unsigned behavior) = 0;
    virtual void setIgnoresMouseEvents(bool ignores) = 0;
    virtual void setContentView(std::shared_ptr<const OverlayView> view) = 0;
    /// Within how many seconds of being shown it will be ordered out; 0, as at first: not known.
    /// Where the system allows it, the platform removes a panel that is still up 2 s after that,
    /// because the main thread hangs then.
    virtual void setTimeLimit(double seconds) = 0;
    virtual void setFrame(const Rect& frame, bool display) = 0;
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;
};

/// One screen, in the coordinates that panels use.
class Screen : NonCopyable {
public:
    virtual ~Screen() = default;

    /// The whole screen, menu bar and docks included, as it is now.
    [[nodiscard]] virtual Rect frame() const = 0;
};

/// The screens there are, and the panels over them. Main thread only.
class ScreenService : NonCopyable {
public:
    virtual ~ScreenService() = default;

    /// The screen that holds the window with the keyboard focus, else the primary one; null if
    /// there is none at all.
    [[nodiscard]] virtual std::shared_ptr<Screen> mainScreen() = 0;
    /// A panel that is not shown yet; never null.
    [[nodiscard]] virtual std::shared_ptr<OverlayPanel>
    createPanel(const Rect& contentRect, unsigned styleMask, unsigned backing, bool defer) = 0;
};

} // namespace quorvane
