#include "platform/macos/MacCanvas.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <numbers>

#include "platform/macos/MacStrings.h"

namespace quorvane {

namespace {

constexpr double turn = 2 * std::numbers::pi;
constexpr double top = -turn / 4;

NSFontWeight fontWeight(TextStyle::Weight weight) {
    switch (weight) {
    case TextStyle::Weight::Light:
        return NSFontWeightLight;
    case TextStyle::Weight::Medium:
        return NSFontWeightMedium;
    case TextStyle::Weight::Bold:
        return NSFontWeightBold;
    case TextStyle::Weight::Regular:
        break;
    }
    return NSFontWeightRegular;
}

NSAttributedString* styled(std::string_view text, const TextStyle& style) {
    const Color& color = style.color;
    return [[NSAttributedString alloc]
        initWithString:toNSString(text)
            attributes:@{
                NSFontAttributeName : [NSFont systemFontOfSize:style.size
                                                        weight:fontWeight(style.weight)],
                NSForegroundColorAttributeName : [NSColor colorWithSRGBRed:color.red
                                                                     green:color.green
                                                                      blue:color.blue
                                                                     alpha:color.alpha],
            }];
}

// Points, more than any screen has: a text takes the lines that it needs.
constexpr double unboundedHeight = 100'000;

} // namespace

Size MacCanvas::measure(std::string_view text, const TextStyle& style, double width) {
    const NSRect bounds =
        [styled(text, style) boundingRectWithSize:NSMakeSize(width, unboundedHeight)
                                          options:NSStringDrawingUsesLineFragmentOrigin
                                          context:nil];
    return {.width = bounds.size.width, .height = bounds.size.height};
}

void MacCanvas::drawText(std::string_view text, const TextStyle& style, double x, double y,
                         double width) {
    const NSRect rect = NSMakeRect(x, y, width, unboundedHeight);
    [styled(text, style) drawWithRect:rect
                              options:NSStringDrawingUsesLineFragmentOrigin
                              context:nil];
}

void MacCanvas::strokeArc(double centerX, double centerY, double radius, double lineWidth,
                          double fraction, const Color& color) {
    if (fraction <= 0)
        return;
    CGContextRef context = NSGraphicsContext.currentContext.CGContext;
    CGContextBeginPath(context);
    // Angles grow clockwise, since y grows downward.
    CGContextAddArc(context, centerX, centerY, radius, top, top + turn * std::min(fraction, 1.0),
                    /*clockwise=*/0);
    // A whole circle has no ends, and so no seam at the top.
    if (fraction >= 1)
        CGContextClosePath(context);
    CGContextSetLineWidth(context, lineWidth);
    CGContextSetLineCap(context, kCGLineCapButt);
    CGContextSetLineJoin(context, kCGLineJoinMiter);
    CGContextSetMiterLimit(context, 10);
    CGContextSetRGBStrokeColor(context, color.red, color.green, color.blue, color.alpha);
    CGContextStrokePath(context);
}

} // namespace quorvane
