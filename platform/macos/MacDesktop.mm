#include "platform/macos/MacDesktop.h"

#import <AppKit/AppKit.h>

#include "platform/macos/MacSymbols.h"

namespace quorvane {

struct MacDesktop::Observers {
    id<NSObject> motion = nil;
    id<NSObject> occlusion = nil;
};

// The blocks may capture `this`: the observers are removed before it is destroyed.
MacDesktop::MacDesktop() : m_observers(std::make_unique<Observers>()) {
    NSWorkspace* workspace = NSWorkspace.sharedWorkspace;
    m_reducesMotion = workspace.accessibilityDisplayShouldReduceMotion != NO;
    m_observers->motion = [workspace.notificationCenter
        addObserverForName:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
                    object:nil
                     queue:NSOperationQueue.mainQueue
                usingBlock:^(NSNotification*) {
                  m_reducesMotion =
                      NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion != NO;
                }];
}

MacDesktop::~MacDesktop() {
    [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:m_observers->motion];
    if (m_observers->occlusion)
        [NSNotificationCenter.defaultCenter removeObserver:m_observers->occlusion];
}

void MacDesktop::watchWindow(std::uintptr_t window) {
    NSView* view = (__bridge NSView*)reinterpret_cast<void*>(window);
    NSWindow* __weak watched = view.window;
    m_observers->occlusion = [NSNotificationCenter.defaultCenter
        addObserverForName:NSWindowDidChangeOcclusionStateNotification
                    object:watched
                     queue:NSOperationQueue.mainQueue
                usingBlock:^(NSNotification*) {
                  m_isCovered = (watched.occlusionState & NSWindowOcclusionStateVisible) == 0;
                }];
}

FontFamilies MacDesktop::fontFamilies() const {
    return {.emoji = "Apple Color Emoji", .rounded = roundedSystemFontFamily()};
}

std::optional<SymbolPicture> MacDesktop::symbol(std::string_view name, int pixels) const {
    constexpr Color white{.red = 1, .green = 1, .blue = 1};
    return drawSystemSymbol(name, pixels, white);
}

} // namespace quorvane
