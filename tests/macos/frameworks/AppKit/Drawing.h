#pragma once

// Framework: AppKit; the drawing of attributed strings is in UIFoundation, which AppKit brings.

#include "Foundation/Foundation.h"

QV_NONNULL_BEGIN

@interface NSColor : NSObject
@property(class, readonly, strong) NSColor* clearColor;
+ (NSColor*)colorWithRed:(CGFloat)red
                   green:(CGFloat)green
                    blue:(CGFloat)blue
                   alpha:(CGFloat)alpha QV_AVAILABLE(10.9);
+ (NSColor*)colorWithSRGBRed:(CGFloat)red
                       green:(CGFloat)green
                        blue:(CGFloat)blue
                       alpha:(CGFloat)alpha QV_AVAILABLE(10.7);
- (void)setFill;
@end

typedef CGFloat NSFontWeight;
QV_EXTERN const NSFontWeight NSFontWeightLight QV_AVAILABLE(10.11);
QV_EXTERN const NSFontWeight NSFontWeightRegular QV_AVAILABLE(10.11);
QV_EXTERN const NSFontWeight NSFontWeightMedium QV_AVAILABLE(10.11);
QV_EXTERN const NSFontWeight NSFontWeightBold QV_AVAILABLE(10.11);

typedef NSString* NSFontDescriptorSystemDesign;
QV_EXTERN const
    NSFontDescriptorSystemDesign NSFontDescriptorSystemDesignRounded QV_AVAILABLE(10.15);

@interface NSFontDescriptor : NSObject
- (nullable NSFontDescriptor*)fontDescriptorWithDesign:(NSFontDescriptorSystemDesign)design
    QV_AVAILABLE(10.15);
@end

@interface NSFont : NSObject
+ (NSFont*)systemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight QV_AVAILABLE(10.11);
+ (nullable NSFont*)fontWithDescriptor:(NSFontDescriptor*)fontDescriptor size:(CGFloat)fontSize;
@property(readonly, strong) NSFontDescriptor* fontDescriptor;
@property(nullable, readonly, copy) NSString* familyName;
@end

QV_EXTERN const NSAttributedStringKey NSFontAttributeName;
QV_EXTERN const NSAttributedStringKey NSForegroundColorAttributeName;

QV_OPTIONS(NSInteger, NSStringDrawingOptions){
    NSStringDrawingUsesLineFragmentOrigin = 1 << 0,
} QV_AVAILABLE(10.11);

@class NSStringDrawingContext;

@interface NSAttributedString (NSExtendedStringDrawing)
- (void)drawWithRect:(NSRect)rect
             options:(NSStringDrawingOptions)options
             context:(nullable NSStringDrawingContext*)context QV_AVAILABLE(10.11);
- (NSRect)boundingRectWithSize:(NSSize)size
                       options:(NSStringDrawingOptions)options
                       context:(nullable NSStringDrawingContext*)context QV_AVAILABLE(10.11);
@end

@class NSBitmapImageRep;

@interface NSGraphicsContext : NSObject
+ (nullable NSGraphicsContext*)graphicsContextWithBitmapImageRep:(NSBitmapImageRep*)bitmapRep;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@property(class, strong, nullable) NSGraphicsContext* currentContext;
@property(readonly) CGContextRef CGContext QV_AVAILABLE(10.10);
@end

QV_ENUM(NSUInteger, NSCompositingOperation){
    NSCompositingOperationSourceOver QV_AVAILABLE(10.12) = 2,
    NSCompositingOperationSourceIn QV_AVAILABLE(10.12) = 3,
};

QV_EXTERN void NSRectFillUsingOperation(NSRect rect, NSCompositingOperation op);

typedef NSString* NSColorSpaceName;
QV_EXTERN const NSColorSpaceName NSDeviceRGBColorSpace;

@interface NSBitmapImageRep : NSObject
- (nullable instancetype)initWithBitmapDataPlanes:(unsigned char* _Nullable* _Nullable)planes
                                       pixelsWide:(NSInteger)width
                                       pixelsHigh:(NSInteger)height
                                    bitsPerSample:(NSInteger)bps
                                  samplesPerPixel:(NSInteger)spp
                                         hasAlpha:(BOOL)alpha
                                         isPlanar:(BOOL)isPlanar
                                   colorSpaceName:(NSColorSpaceName)colorSpaceName
                                      bytesPerRow:(NSInteger)rBytes
                                     bitsPerPixel:(NSInteger)pBits;
@property(nullable, readonly) unsigned char* bitmapData;
@property(readonly) NSInteger bytesPerRow;
// Of NSImageRep.
@property NSInteger pixelsHigh;
@end

@interface NSImage : NSObject
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)name
                          accessibilityDescription:(nullable NSString*)description
    QV_AVAILABLE(11.0);
- (void)drawInRect:(NSRect)rect QV_AVAILABLE(10.9);
@property NSSize size;
@end

QV_NONNULL_END
