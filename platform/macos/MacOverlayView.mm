#include "platform/macos/MacOverlayView.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "platform/macos/MacCanvas.h"

using quorvane::MacCanvas;
using quorvane::OverlayView;
using quorvane::Rect;
using quorvane::Size;
using quorvane::Spinner;
using quorvane::Subscription;

namespace {

Size sizeOf(NSView* view) {
    return {.width = view.bounds.size.width, .height = view.bounds.size.height};
}

} // namespace

/// A changing part of an overlay, above the static part, in the overlay's coordinates.
@interface QuorvaneChangingView : NSView
- (instancetype)initWithView:(std::shared_ptr<const OverlayView>)view
                      bounds:(Rect)bounds
                        size:(Size)size;
@end

@implementation QuorvaneChangingView {
    std::shared_ptr<const OverlayView> _view;
    Size _size;
    Subscription _changes;
}

- (instancetype)initWithView:(std::shared_ptr<const OverlayView>)view
                      bounds:(Rect)bounds
                        size:(Size)size {
    const NSRect frame = NSMakeRect(bounds.x, bounds.y, bounds.width, bounds.height);
    self = [super initWithFrame:frame];
    if (!self)
        return nil;
    self.bounds = frame;
    _view = std::move(view);
    _size = size;
    __weak QuorvaneChangingView* weakSelf = self;
    _changes = _view->observeChanges([weakSelf] { weakSelf.needsDisplay = YES; });
    return self;
}

- (BOOL)isFlipped {
    return YES;
}

- (void)drawRect:(NSRect)dirtyRect {
    MacCanvas canvas;
    _view->drawChanging(canvas, _size);
}

@end

/// A whole overlay: the static part, and above it the views of the changing parts.
@interface QuorvaneOverlayView : NSView
- (instancetype)initWithView:(std::shared_ptr<const OverlayView>)view size:(NSSize)size;
@end

@implementation QuorvaneOverlayView {
    std::shared_ptr<const OverlayView> _view;
}

- (instancetype)initWithView:(std::shared_ptr<const OverlayView>)view size:(NSSize)size {
    self = [super initWithFrame:NSMakeRect(0, 0, size.width, size.height)];
    if (!self)
        return nil;
    _view = std::move(view);
    // A layer for each view, so that a change does not redraw the static part.
    self.wantsLayer = YES;
    [self placeSubviews];
    return self;
}

- (BOOL)isFlipped {
    return YES;
}

- (void)setFrameSize:(NSSize)newSize {
    [super setFrameSize:newSize];
    [self placeSubviews];
    self.needsDisplay = YES;
}

// Takes the first click too, so that nothing beneath reacts to it.
- (BOOL)acceptsFirstMouse:(NSEvent*)event {
    return YES;
}

- (void)mouseDown:(NSEvent*)event {
}

- (void)drawRect:(NSRect)dirtyRect {
    MacCanvas canvas;
    _view->drawStill(canvas, sizeOf(self));
}

- (void)placeSubviews {
    // AppKit sets the size before there is a view.
    if (!_view)
        return;
    self.subviews = @[];
    MacCanvas canvas;
    const Size size = sizeOf(self);
    const Rect changing = _view->changingBounds(canvas, size);
    if (changing.width > 0 && changing.height > 0)
        [self addSubview:[[QuorvaneChangingView alloc] initWithView:_view
                                                             bounds:changing
                                                               size:size]];
    if (const std::optional<Spinner> spinner = _view->spinner(canvas, size))
        [self addSpinner:*spinner];
}

- (void)addSpinner:(const Spinner&)spinner {
    const CGFloat drawn = Spinner::size * spinner.scale;
    NSView* scaled =
        [[NSView alloc] initWithFrame:NSMakeRect(spinner.centerX - drawn / 2,
                                                 spinner.centerY - drawn / 2, drawn, drawn)];
    // Laid out at its own size and drawn larger.
    scaled.bounds = NSMakeRect(0, 0, Spinner::size, Spinner::size);
    NSProgressIndicator* indicator =
        [[NSProgressIndicator alloc] initWithFrame:NSMakeRect(0, 0, Spinner::size, Spinner::size)];
    indicator.style = NSProgressIndicatorStyleSpinning;
    indicator.indeterminate = YES;
    // A spinner's colour cannot be set; in the light appearance it is the right grey.
    indicator.appearance = [NSAppearance appearanceNamed:NSAppearanceNameAqua];
    [scaled addSubview:indicator];
    [self addSubview:scaled];
    [indicator startAnimation:nil];
}

@end

namespace quorvane {

NSView* makeMacOverlayView(std::shared_ptr<const OverlayView> view, NSSize size) {
    return [[QuorvaneOverlayView alloc] initWithView:std::move(view) size:size];
}

} // namespace quorvane
