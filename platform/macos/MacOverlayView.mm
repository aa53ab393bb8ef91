#include "platform/macos/MacOverlayView.h"

#include <memory>
#include <optional>
#include <utility>

#include "platform/DrawingList.h"
#include "platform/macos/MacCanvas.h"

using quorvane::Color;
using quorvane::DrawingList;
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

/// A whole overlay; after a change it draws only what looks different.
@interface QuorvaneOverlayView : NSView
- (instancetype)initWithView:(std::shared_ptr<const OverlayView>)view size:(NSSize)size;
@end

@implementation QuorvaneOverlayView {
    std::shared_ptr<const OverlayView> _view;
    MacCanvas _canvas;
    std::unique_ptr<DrawingList> _drawing;
    Subscription _changes;
}

- (instancetype)initWithView:(std::shared_ptr<const OverlayView>)view size:(NSSize)size {
    self = [super initWithFrame:NSMakeRect(0, 0, size.width, size.height)];
    if (!self)
        return nil;
    _view = std::move(view);
    __weak QuorvaneOverlayView* weakSelf = self;
    _changes = _view->observeChanges([weakSelf] { [weakSelf followChanges]; });
    [self layOut];
    return self;
}

- (BOOL)isFlipped {
    return YES;
}

- (void)setFrameSize:(NSSize)newSize {
    [super setFrameSize:newSize];
    // AppKit sets the size before there is a view.
    if (_view)
        [self layOut];
}

// Takes the first click too, so that nothing beneath reacts to it.
- (BOOL)acceptsFirstMouse:(NSEvent*)event {
    return YES;
}

- (void)mouseDown:(NSEvent*)event {
}

- (void)drawRect:(NSRect)dirtyRect {
    const Color back = _view->backLayer();
    [[NSColor colorWithSRGBRed:back.red green:back.green blue:back.blue alpha:back.alpha] setFill];
    NSRectFillUsingOperation(dirtyRect, NSCompositingOperationSourceOver);
    _drawing->draw(_canvas, {.x = dirtyRect.origin.x,
                             .y = dirtyRect.origin.y,
                             .width = dirtyRect.size.width,
                             .height = dirtyRect.size.height});
}

- (std::unique_ptr<DrawingList>)list {
    const CGFloat scale = self.window ? self.window.backingScaleFactor : 1;
    auto drawing = std::make_unique<DrawingList>(_canvas, scale);
    _view->draw(*drawing, sizeOf(self));
    return drawing;
}

- (void)layOut {
    _drawing = [self list];
    self.subviews = @[];
    if (const std::optional<Spinner>& spinner = _drawing->spinner())
        [self addSpinner:*spinner];
    self.needsDisplay = YES;
}

- (void)followChanges {
    const auto before = std::exchange(_drawing, [self list]);
    for (const Rect& area : _drawing->changes(*before))
        [self setNeedsDisplayInRect:NSMakeRect(area.x, area.y, area.width, area.height)];
}

- (void)addSpinner:(const Spinner&)spinner {
    const Rect room = spinner.bounds();
    NSView* scaled =
        [[NSView alloc] initWithFrame:NSMakeRect(room.x, room.y, room.width, room.height)];
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
