#pragma once

// Framework: AppKit.

#include "AppKit/Drawing.h"
#include "AppKit/Views.h"
#include "Foundation/Foundation.h"

QV_NONNULL_BEGIN

@interface NSScreen : NSObject
// The screen of the window with the keyboard focus.
@property(class, readonly, strong, nullable) NSScreen* mainScreen;
@property(readonly) NSRect frame;
@end

typedef NSInteger NSWindowLevel;

QV_OPTIONS(NSUInteger, NSWindowStyleMask){
    NSWindowStyleMaskBorderless = 0,
    NSWindowStyleMaskNonactivatingPanel = 1 << 7,
};

QV_ENUM(NSUInteger, NSBackingStoreType){
    NSBackingStoreBuffered = 2,
};

QV_OPTIONS(NSUInteger, NSWindowCollectionBehavior){
    NSWindowCollectionBehaviorDefault = 0,
    NSWindowCollectionBehaviorCanJoinAllSpaces = 1 << 0,
    NSWindowCollectionBehaviorFullScreenAuxiliary QV_AVAILABLE(10.7) = 1 << 8,
};

QV_OPTIONS(NSUInteger, NSWindowOcclusionState){
    NSWindowOcclusionStateVisible = 1UL << 1,
} QV_AVAILABLE(10.9);

@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag;
- (void)setFrame:(NSRect)frameRect display:(BOOL)flag;
- (void)orderFrontRegardless;
- (void)orderOut:(nullable id)sender;
@property(readonly) NSRect frame;
@property NSWindowLevel level;
@property(getter=isOpaque) BOOL opaque;
@property(nullable, copy) NSColor* backgroundColor;
@property NSWindowCollectionBehavior collectionBehavior;
@property BOOL ignoresMouseEvents;
@property BOOL hidesOnDeactivate;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property(nullable, strong) __kindof NSView* contentView;
@property(readonly) NSWindowOcclusionState occlusionState QV_AVAILABLE(10.9);
@property(readonly) CGFloat backingScaleFactor QV_AVAILABLE(10.7);
@end

QV_EXTERN const NSNotificationName NSWindowDidChangeOcclusionStateNotification QV_AVAILABLE(10.9);

@interface NSPanel : NSWindow
@end

QV_NONNULL_END
