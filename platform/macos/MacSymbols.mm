#include "platform/macos/MacSymbols.h"

#import <AppKit/AppKit.h>

#include <algorithm>

#include "platform/macos/MacStrings.h"

namespace quorvane {

namespace {

NSBitmapImageRep* emptyPicture(int pixels) {
    constexpr NSInteger channels = 4;
    return [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                   pixelsWide:pixels
                                                   pixelsHigh:pixels
                                                bitsPerSample:8
                                              samplesPerPixel:channels
                                                     hasAlpha:YES
                                                     isPlanar:NO
                                               colorSpaceName:NSDeviceRGBColorSpace
                                                  bytesPerRow:channels * pixels
                                                 bitsPerPixel:8 * channels];
}

// In the middle of the room, at the symbol's own aspect ratio.
NSRect fitted(NSSize size, double room) {
    const double scale = room / std::max(size.width, size.height);
    const double width = size.width * scale;
    const double height = size.height * scale;
    return NSMakeRect((room - width) / 2, (room - height) / 2, width, height);
}

void draw(NSImage* symbol, const Color& color, double room) {
    [symbol drawInRect:fitted(symbol.size, room)];
    // Fills the shape just drawn with the colour.
    [[NSColor colorWithSRGBRed:color.red green:color.green blue:color.blue
                         alpha:color.alpha] setFill];
    NSRectFillUsingOperation(NSMakeRect(0, 0, room, room), NSCompositingOperationSourceIn);
}

} // namespace

std::optional<SymbolPicture> drawSystemSymbol(std::string_view name, int pixels,
                                              const Color& color) {
    NSImage* symbol = [NSImage imageWithSystemSymbolName:toNSString(name)
                                accessibilityDescription:nil];
    NSBitmapImageRep* picture = emptyPicture(pixels);
    if (!symbol || !picture)
        return std::nullopt;
    [NSGraphicsContext saveGraphicsState];
    NSGraphicsContext.currentContext =
        [NSGraphicsContext graphicsContextWithBitmapImageRep:picture];
    draw(symbol, color, pixels);
    [NSGraphicsContext restoreGraphicsState];
    const std::uint8_t* bytes = picture.bitmapData;
    if (!bytes)
        return std::nullopt;
    const auto count = static_cast<std::size_t>(picture.bytesPerRow * picture.pixelsHigh);
    return SymbolPicture{.width = pixels,
                         .height = pixels,
                         .pixels = std::vector<std::uint8_t>(bytes, bytes + count)};
}

std::string roundedSystemFontFamily() {
    NSFont* plain = [NSFont systemFontOfSize:0 weight:NSFontWeightRegular];
    NSFontDescriptor* rounded =
        [plain.fontDescriptor fontDescriptorWithDesign:NSFontDescriptorSystemDesignRounded];
    if (!rounded)
        return {};
    NSFont* font = [NSFont fontWithDescriptor:rounded size:0];
    NSString* family = font.familyName;
    return family ? toString(family) : std::string();
}

} // namespace quorvane
