#pragma once

// Framework: AppKit.

#include "Foundation/Foundation.h"

QV_NONNULL_BEGIN

@class NSWindow;

@interface NSEvent : NSObject
@end

@interface NSResponder : NSObject
- (void)mouseDown:(NSEvent*)event;
@end

@interface NSView : NSResponder
- (instancetype)initWithFrame:(NSRect)frameRect;
- (void)setFrameSize:(NSSize)newSize;
- (void)addSubview:(NSView*)view;
- (void)drawRect:(NSRect)dirtyRect;
- (BOOL)acceptsFirstMouse:(nullable NSEvent*)event;
@property NSRect bounds;
@property(readonly, getter=isFlipped) BOOL flipped;
@property BOOL needsDisplay;
- (void)setNeedsDisplayInRect:(NSRect)invalidRect;
@property BOOL wantsLayer QV_AVAILABLE(10.5);
@property(copy) NSArray<__kindof NSView*>* subviews;
@property(nullable, readonly, unsafe_unretained) NSWindow* window;
@end

typedef NSString* NSAppearanceName;
QV_EXTERN const NSAppearanceName NSAppearanceNameAqua QV_AVAILABLE(10.9);

QV_AVAILABLE(10.9)
@interface NSAppearance : NSObject
+ (nullable NSAppearance*)appearanceNamed:(NSAppearanceName)name;
@end

@interface NSView (NSAppearanceCustomization)
@property(nullable, strong) NSAppearance* appearance QV_AVAILABLE(10.9);
@end

QV_ENUM(NSUInteger, NSProgressIndicatorStyle){
    NSProgressIndicatorStyleBar = 0,
    NSProgressIndicatorStyleSpinning = 1,
};

@interface NSProgressIndicator : NSView
@property(getter=isIndeterminate) BOOL indeterminate;
@property NSProgressIndicatorStyle style;
- (void)startAnimation:(nullable id)sender;
@end

QV_NONNULL_END
