#include "platform/macos/MacScreens.h"

#import <AppKit/AppKit.h>

#include <utility>

#include "platform/macos/MacOverlayView.h"

namespace quorvane {

namespace {

static_assert(PanelStyle::nonactivatingPanel == NSWindowStyleMaskNonactivatingPanel);
static_assert(PanelBacking::buffered == NSBackingStoreBuffered);
static_assert(PanelCollectionBehavior::canJoinAllSpaces ==
              NSWindowCollectionBehaviorCanJoinAllSpaces);
static_assert(PanelCollectionBehavior::fullScreenAuxiliary ==
              NSWindowCollectionBehaviorFullScreenAuxiliary);

// Screens and panels use the same coordinates, so none are converted.
NSRect toNSRect(const Rect& rect) {
    return NSMakeRect(rect.x, rect.y, rect.width, rect.height);
}

Rect toRect(NSRect rect) {
    return {.x = rect.origin.x,
            .y = rect.origin.y,
            .width = rect.size.width,
            .height = rect.size.height};
}

NSColor* toNSColor(const Color& color) {
    if (color.alpha == 0)
        return NSColor.clearColor;
    return [NSColor colorWithRed:color.red green:color.green blue:color.blue alpha:color.alpha];
}

// Keeps shown panels alive: nothing else may hold them.
NSMutableSet<NSPanel*>* shownPanels() {
    static NSMutableSet<NSPanel*>* panels = [NSMutableSet set];
    return panels;
}

class MacScreen final : public Screen {
public:
    explicit MacScreen(NSScreen* screen) : m_screen(screen) {}

    [[nodiscard]] Rect frame() const override { return toRect(m_screen.frame); }

private:
    NSScreen* m_screen;
};

class MacOverlayPanel final : public OverlayPanel {
public:
    explicit MacOverlayPanel(NSPanel* panel) : m_panel(panel) {
        // The program is seldom active while an overlay is up.
        m_panel.hidesOnDeactivate = NO;
        m_panel.releasedWhenClosed = NO;
    }

    void setLevel(int level) override { m_panel.level = level; }

    void setOpaque(bool opaque) override { m_panel.opaque = opaque; }

    void setBackgroundColor(const Color& color) override {
        m_panel.backgroundColor = toNSColor(color);
    }

    void setCollectionBehavior(unsigned behavior) override {
        m_panel.collectionBehavior = behavior;
    }

    void setIgnoresMouseEvents(bool ignores) override { m_panel.ignoresMouseEvents = ignores; }

    void setContentView(std::shared_ptr<const OverlayView> view) override {
        m_panel.contentView = makeMacOverlayView(std::move(view), m_panel.frame.size);
    }

    /// No effect: panels can only be removed on the main thread.
    void setTimeLimit(double /*seconds*/) override {}

    void setFrame(const Rect& frame, bool display) override {
        [m_panel setFrame:toNSRect(frame) display:display];
    }

    void orderFrontRegardless() override {
        [m_panel orderFrontRegardless];
        [shownPanels() addObject:m_panel];
    }

    void orderOut() override {
        [m_panel orderOut:nil];
        [shownPanels() removeObject:m_panel];
    }

private:
    NSPanel* m_panel;
};

} // namespace

std::shared_ptr<Screen> MacScreens::mainScreen() {
    NSScreen* screen = NSScreen.mainScreen;
    return screen ? std::make_shared<MacScreen>(screen) : nullptr;
}

std::shared_ptr<OverlayPanel> MacScreens::createPanel(const Rect& contentRect, unsigned styleMask,
                                                      unsigned backing, bool defer) {
    return std::make_shared<MacOverlayPanel>([[NSPanel alloc]
        initWithContentRect:toNSRect(contentRect)
                  styleMask:styleMask
                    backing:static_cast<NSBackingStoreType>(backing)
                      defer:defer]);
}

} // namespace quorvane
