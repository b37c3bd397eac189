#pragma once

#import <Foundation/Foundation.h>

/// A picture of which nothing but its size is known.
struct CGImage {
    int side;
};
typedef struct CGImage* CGImageRef;

@class NSBitmapImageRep;

/// Where drawing goes to.
@interface NSGraphicsContext : NSObject {
    NSBitmapImageRep* _bitmap;
}
+ (NSGraphicsContext*)graphicsContextWithBitmapImageRep:(NSBitmapImageRep*)bitmap;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
+ (void)setCurrentContext:(NSGraphicsContext*)context;
@end

@interface NSRunningApplication : NSObject {
    NSString* _localizedName;
    NSString* _bundleIdentifier;
    NSURL* _bundleURL;
    NSURL* _executableURL;
    pid_t _processIdentifier;
}
@property(readonly, copy) NSString* localizedName;
@property(readonly, copy) NSString* bundleIdentifier;
@property(readonly, copy) NSURL* bundleURL;
@property(readonly, copy) NSURL* executableURL;
@property(readonly) pid_t processIdentifier;
+ (NSRunningApplication*)runningApplicationWithProcessIdentifier:(pid_t)identifier;
- (BOOL)terminate;
@end

typedef CGFloat NSFontWeight;
extern const NSFontWeight NSFontWeightRegular;
typedef NS_ENUM(NSInteger, NSImageSymbolScale) { NSImageSymbolScaleMedium = 2 };

@interface NSImageSymbolConfiguration : NSObject {
    CGFloat _pointSize;
}
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize
                                    weight:(NSFontWeight)weight
                                     scale:(NSImageSymbolScale)scale;
@end

@interface NSImage : NSObject {
    struct CGImage _drawn;
    NSSize _size;
}
+ (NSImage*)imageWithSystemSymbolName:(NSString*)name accessibilityDescription:(NSString*)description;
- (NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration;
@property NSSize size;
- (void)drawInRect:(NSRect)place;
- (CGImageRef)CGImageForProposedRect:(NSRect*)place
                             context:(NSGraphicsContext*)context
                               hints:(NSDictionary*)hints;
@end

typedef NS_ENUM(NSUInteger, NSBitmapImageFileType) { NSBitmapImageFileTypePNG = 4 };

extern NSString* const NSDeviceRGBColorSpace;

@interface NSBitmapImageRep : NSObject {
    int _side;
    NSInteger _width;
    NSInteger _height;
    NSMutableData* _bytes;
}
- (instancetype)initWithBitmapDataPlanes:(unsigned char**)planes
                              pixelsWide:(NSInteger)width
                              pixelsHigh:(NSInteger)height
                           bitsPerSample:(NSInteger)bitsPerSample
                         samplesPerPixel:(NSInteger)samplesPerPixel
                                hasAlpha:(BOOL)hasAlpha
                                isPlanar:(BOOL)isPlanar
                          colorSpaceName:(NSString*)colorSpace
                             bytesPerRow:(NSInteger)bytesPerRow
                            bitsPerPixel:(NSInteger)bitsPerPixel;
@property(readonly) unsigned char* bitmapData;
@property(readonly) NSInteger bytesPerRow;
- (instancetype)initWithCGImage:(CGImageRef)image;
- (NSData*)representationUsingType:(NSBitmapImageFileType)type properties:(NSDictionary*)properties;
@end

@interface NSWorkspace : NSObject
@property(class, readonly) NSWorkspace* sharedWorkspace;
@property(readonly, copy) NSArray* runningApplications;
@property(readonly) NSNotificationCenter* notificationCenter;
@property(readonly) BOOL accessibilityDisplayShouldReduceMotion;
@property(readonly) BOOL accessibilityDisplayShouldIncreaseContrast;
- (void)activateFileViewerSelectingURLs:(NSArray*)urls;
- (NSImage*)iconForFile:(NSString*)path;
@end

extern NSString* const NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification;

typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) {
    NSWindowStyleMaskTitled = 1 << 0,
    NSWindowStyleMaskFullSizeContentView = 1 << 15
};
typedef NS_ENUM(NSInteger, NSWindowTitleVisibility) { NSWindowTitleVisible = 0, NSWindowTitleHidden = 1 };

@interface NSWindow : NSObject {
    NSWindowStyleMask _styleMask;
    BOOL _titlebarAppearsTransparent;
    NSWindowTitleVisibility _titleVisibility;
}
@property NSWindowStyleMask styleMask;
@property BOOL titlebarAppearsTransparent;
@property NSWindowTitleVisibility titleVisibility;
@end

@interface NSView : NSObject {
    NSWindow* _window;
}
@property(readonly, assign) NSWindow* window;
@end
