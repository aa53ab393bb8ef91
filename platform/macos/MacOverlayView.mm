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

/// What changes in an overlay, over what is still, in the coordinates of the whole.
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

/// The whole of an overlay: what is still, and above it the views of what is not.
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
    // Each view keeps its own picture, so that a change does not draw what is still.
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

// The first click is taken as well, as every other: nothing beneath reacts.
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
    // The system sets the size before there is anything to show.
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
    // What is in it is laid out at its own size and drawn larger.
    scaled.bounds = NSMakeRect(0, 0, Spinner::size, Spinner::size);
    NSProgressIndicator* indicator =
        [[NSProgressIndicator alloc] initWithFrame:NSMakeRect(0, 0, Spinner::size, Spinner::size)];
    indicator.style = NSProgressIndicatorStyleSpinning;
    indicator.indeterminate = YES;
    // A spinner has no colour to be set: in the light appearance it is the grey that is wanted.
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
