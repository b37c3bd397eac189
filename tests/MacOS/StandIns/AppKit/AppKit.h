#pragma once

#import <Foundation/Foundation.h>

/// A picture of which nothing but its size is known.
struct CGImage {
    int side;
};
typedef struct CGImage* CGImageRef;

@class NSGraphicsContext;

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

@interface NSImage : NSObject {
    struct CGImage _drawn;
}
- (CGImageRef)CGImageForProposedRect:(NSRect*)place
                             context:(NSGraphicsContext*)context
                               hints:(NSDictionary*)hints;
@end

typedef NS_ENUM(NSUInteger, NSBitmapImageFileType) { NSBitmapImageFileTypePNG = 4 };

@interface NSBitmapImageRep : NSObject {
    int _side;
}
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
