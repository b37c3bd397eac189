#include "Views/Desktop/SystemSymbol.h"

#import <AppKit/AppKit.h>

#include <algorithm>

namespace orvane {

namespace {

/// Symbols are made to stand beside type, and are higher than that: of this share of their own side.
constexpr CGFloat shareOfType = 0.8;

/// In the middle of a bitmap, as it is where it has room, else smaller.
NSRect placeIn(CGFloat width, CGFloat height, NSSize size) {
    const CGFloat scale = std::min({CGFloat{1}, width / size.width, height / size.height});
    const NSSize drawn{size.width * scale, size.height * scale};
    return {{(width - drawn.width) / 2, (height - drawn.height) / 2}, drawn};
}

NSBitmapImageRep* bitmapOf(int width, int height) {
    return [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                    pixelsWide:width
                                                    pixelsHigh:height
                                                 bitsPerSample:8
                                               samplesPerPixel:4
                                                      hasAlpha:YES
                                                      isPlanar:NO
                                                colorSpaceName:NSDeviceRGBColorSpace
                                                   bytesPerRow:0
                                                  bitsPerPixel:0] autorelease];
}

}  // namespace

std::optional<std::string> systemSymbol(std::string_view name, int width, int height) {
    if (width <= 0 || height <= 0) return std::nullopt;
    @autoreleasepool {
        NSString* const asked = [NSString stringWithUTF8String:std::string(name).c_str()];
        if (asked == nil) return std::nullopt;
        NSImageSymbolConfiguration* const configuration =
            [NSImageSymbolConfiguration configurationWithPointSize:shareOfType * std::min(width, height)
                                                            weight:NSFontWeightRegular
                                                             scale:NSImageSymbolScaleMedium];
        NSImage* const symbol = [[NSImage imageWithSystemSymbolName:asked accessibilityDescription:nil]
            imageWithSymbolConfiguration:configuration];
        if (symbol == nil || [symbol size].width <= 0 || [symbol size].height <= 0) return std::nullopt;
        NSBitmapImageRep* const bitmap = bitmapOf(width, height);
        NSGraphicsContext* const drawing =
            bitmap == nil ? nil : [NSGraphicsContext graphicsContextWithBitmapImageRep:bitmap];
        if (drawing == nil) return std::nullopt;
        unsigned char* const bytes = [bitmap bitmapData];
        std::fill_n(bytes, [bitmap bytesPerRow] * height, '\0');
        [NSGraphicsContext saveGraphicsState];
        [NSGraphicsContext setCurrentContext:drawing];
        [symbol drawInRect:placeIn(width, height, [symbol size])];
        [NSGraphicsContext restoreGraphicsState];

        // Red, green, blue, and how opaque it is.
        constexpr NSInteger samples = 4;
        std::string opacities;
        for (NSInteger y = 0; y < height; ++y) {
            for (NSInteger x = 0; x < width; ++x) {
                opacities += static_cast<char>(bytes[y * [bitmap bytesPerRow] + x * samples + samples - 1]);
            }
        }
        return opacities;
    }
}

}  // namespace orvane
