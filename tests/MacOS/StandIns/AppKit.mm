#include <utility>

#include "tests/MacOS/StandIns/StandIns.h"

using orvane::test::Mishap;
using orvane::test::StandInMac;

namespace orvane::test {

namespace {

StandInMac* currentMac = nullptr;

/// Does what is to go wrong by itself; whether anything else is.
bool goesWrong() {
    if (StandInMac::current().mishap == Mishap::exception) {
        [NSException raise:NSInternalInconsistencyException format:@"as the test wants it"];
    }
    return StandInMac::current().mishap != Mishap::none;
}

}  // namespace

StandInMac::StandInMac() : applications([[NSMutableArray alloc] init]) {
    currentMac = this;
}

StandInMac::~StandInMac() {
    [applications release];
    currentMac = nullptr;
}

StandInMac& StandInMac::current() {
    return *currentMac;
}

}  // namespace orvane::test

using orvane::test::goesWrong;

NSString* const NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification =
    @"NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification";

@implementation NSRunningApplication
@synthesize localizedName = _localizedName;
@synthesize bundleIdentifier = _bundleIdentifier;
@synthesize bundleURL = _bundleURL;
@synthesize executableURL = _executableURL;
@synthesize processIdentifier = _processIdentifier;

+ (NSRunningApplication*)applicationWithIdentifier:(pid_t)identifier
                                              name:(NSString*)name
                                  bundleIdentifier:(NSString*)bundleIdentifier
                                            bundle:(NSURL*)bundle
                                        executable:(NSURL*)executable {
    NSRunningApplication* const made = [[[NSRunningApplication alloc] init] autorelease];
    made->_processIdentifier = identifier;
    made->_localizedName = [name copy];
    made->_bundleIdentifier = [bundleIdentifier copy];
    made->_bundleURL = [bundle copy];
    made->_executableURL = [executable copy];
    return made;
}

+ (NSRunningApplication*)runningApplicationWithProcessIdentifier:(pid_t)identifier {
    goesWrong();
    for (NSRunningApplication* each in StandInMac::current().applications) {
        if (each.processIdentifier == identifier) return each;
    }
    return nil;
}

- (BOOL)terminate {
    StandInMac::current().terminated.push_back(_processIdentifier);
    return YES;
}

- (void)vanish {
    _processIdentifier = -1;
    for (id* const value : {reinterpret_cast<id*>(&_localizedName), reinterpret_cast<id*>(&_bundleIdentifier),
                            reinterpret_cast<id*>(&_bundleURL), reinterpret_cast<id*>(&_executableURL)}) {
        [*value release];
        *value = nil;
    }
}

- (void)dealloc {
    [self vanish];
    [super dealloc];
}
@end

@implementation NSImage
- (CGImageRef)CGImageForProposedRect:(NSRect*)place
                             context:(NSGraphicsContext*)context
                               hints:(NSDictionary*)hints {
    static_cast<void>(context);
    static_cast<void>(hints);
    if (StandInMac::current().mishap == Mishap::failure) return nullptr;
    _drawn.side = static_cast<int>(place->size.width);
    return &_drawn;
}
@end

@implementation NSBitmapImageRep
- (instancetype)initWithCGImage:(CGImageRef)image {
    self = [super init];
    if (self != nil) _side = image->side;
    return self;
}
- (NSData*)representationUsingType:(NSBitmapImageFileType)type properties:(NSDictionary*)properties {
    if (type != NSBitmapImageFileTypePNG || properties == nil) return nil;
    if (StandInMac::current().mishap == Mishap::failureWithoutError) return nil;
    return [[NSString stringWithFormat:@"PNG of %d", _side] dataUsingEncoding:NSUTF8StringEncoding];
}
@end

@implementation NSWorkspace
+ (NSWorkspace*)sharedWorkspace {
    static NSWorkspace* const shared = [[NSWorkspace alloc] init];
    return shared;
}
- (NSNotificationCenter*)notificationCenter {
    static NSNotificationCenter* const center = [[NSNotificationCenter alloc] init];
    return center;
}
- (NSArray*)runningApplications {
    goesWrong();
    return [[StandInMac::current().applications copy] autorelease];
}
- (BOOL)accessibilityDisplayShouldReduceMotion {
    return StandInMac::current().reducesMotion;
}
- (BOOL)accessibilityDisplayShouldIncreaseContrast {
    return StandInMac::current().hasHighContrast;
}
- (void)activateFileViewerSelectingURLs:(NSArray*)urls {
    goesWrong();
    for (NSURL* each in urls) StandInMac::current().revealed.emplace_back(each.fileSystemRepresentation);
}
- (NSImage*)iconForFile:(NSString*)path {
    goesWrong();
    static_cast<void>(path);
    return [[[NSImage alloc] init] autorelease];
}
@end

@implementation NSWindow
@synthesize styleMask = _styleMask;
@synthesize titlebarAppearsTransparent = _titlebarAppearsTransparent;
@synthesize titleVisibility = _titleVisibility;
@end

@implementation NSView
@synthesize window = _window;
- (instancetype)initWithWindow:(NSWindow*)window {
    self = [super init];
    if (self != nil) _window = window;
    return self;
}
@end
