#pragma once

// Framework: CoreGraphics.

#include "CoreFoundation/CoreFoundation.h"
#include "CoreGraphics/CGEventTap.h"

// The names are the system's.
// NOLINTBEGIN(bugprone-reserved-identifier)

QV_NONNULL_BEGIN

using CGFloat = double;

struct CGPoint {
    CGFloat x;
    CGFloat y;
};

struct CGSize {
    CGFloat width;
    CGFloat height;
};

struct CGRect {
    CGPoint origin;
    CGSize size;
};

using CGContextRef = struct CGContext*;

enum CGLineJoin : std::int32_t { kCGLineJoinMiter = 0, kCGLineJoinRound = 1, kCGLineJoinBevel = 2 };

enum CGLineCap : std::int32_t { kCGLineCapButt = 0, kCGLineCapRound = 1, kCGLineCapSquare = 2 };

QV_EXTERN void CGContextBeginPath(CGContextRef QV_NULLABLE context);
QV_EXTERN void CGContextAddArc(CGContextRef QV_NULLABLE context, CGFloat x, CGFloat y,
                               CGFloat radius, CGFloat startAngle, CGFloat endAngle, int clockwise);
QV_EXTERN void CGContextClosePath(CGContextRef QV_NULLABLE context);
QV_EXTERN void CGContextStrokePath(CGContextRef QV_NULLABLE context);
QV_EXTERN void CGContextFillRect(CGContextRef QV_NULLABLE context, CGRect rect);
QV_EXTERN void CGContextSetLineWidth(CGContextRef QV_NULLABLE context, CGFloat width);
QV_EXTERN void CGContextSetLineCap(CGContextRef QV_NULLABLE context, CGLineCap cap);
QV_EXTERN void CGContextSetLineJoin(CGContextRef QV_NULLABLE context, CGLineJoin join);
QV_EXTERN void CGContextSetMiterLimit(CGContextRef QV_NULLABLE context, CGFloat limit);
// Fill and stroke with an sRGB colour, its alpha not multiplied in.
QV_EXTERN void CGContextSetRGBFillColor(CGContextRef QV_NULLABLE context, CGFloat red,
                                        CGFloat green, CGFloat blue, CGFloat alpha);
QV_EXTERN void CGContextSetRGBStrokeColor(CGContextRef QV_NULLABLE context, CGFloat red,
                                          CGFloat green, CGFloat blue, CGFloat alpha);

QV_NONNULL_END

// NOLINTEND(bugprone-reserved-identifier)
