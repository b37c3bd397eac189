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

const NSFontWeight NSFontWeightRegular = 0;
NSString* const NSDeviceRGBColorSpace = @"NSDeviceRGBColorSpace";

@interface NSImageSymbolConfiguration (Asking)
- (CGFloat)pointSize;
@end

@implementation NSImageSymbolConfiguration
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize
                                    weight:(NSFontWeight)weight
                                     scale:(NSImageSymbolScale)scale {
    if (weight != NSFontWeightRegular || scale != NSImageSymbolScaleMedium) return nil;
    NSImageSymbolConfiguration* const made = [[[NSImageSymbolConfiguration alloc] init] autorelease];
    made->_pointSize = pointSize;
    return made;
}
- (CGFloat)pointSize {
    return _pointSize;
}
@end

@interface NSBitmapImageRep (Drawing)
- (void)fill:(NSRect)place;
@end

namespace {

NSGraphicsContext* currentContext = nil;
std::vector<NSGraphicsContext*> savedContexts;

}  // namespace

@interface NSGraphicsContext (Drawing)
- (void)fill:(NSRect)place;
@end

@implementation NSGraphicsContext
+ (NSGraphicsContext*)graphicsContextWithBitmapImageRep:(NSBitmapImageRep*)bitmap {
    NSGraphicsContext* const made = [[[NSGraphicsContext alloc] init] autorelease];
    made->_bitmap = bitmap;
    return made;
}
+ (void)saveGraphicsState {
    savedContexts.push_back(currentContext);
}
+ (void)restoreGraphicsState {
    currentContext = savedContexts.back();
    savedContexts.pop_back();
}
+ (void)setCurrentContext:(NSGraphicsContext*)context {
    currentContext = context;
}
- (void)fill:(NSRect)place {
    [_bitmap fill:place];
}
@end

@implementation NSImage
@synthesize size = _size;
+ (NSImage*)imageWithSystemSymbolName:(NSString*)name accessibilityDescription:(NSString*)description {
    static_cast<void>(description);
    const auto& symbols = StandInMac::current().symbols;
    const auto found = symbols.find([name UTF8String]);
    if (found == symbols.end()) return nil;
    NSImage* const made = [[[NSImage alloc] init] autorelease];
    made->_size = found->second;
    return made;
}
- (NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration {
    if (configuration == nil || StandInMac::current().mishap == Mishap::failure) return nil;
    NSImage* const made = [[[NSImage alloc] init] autorelease];
    const auto points = [configuration pointSize];
    made->_size = NSMakeSize(_size.width * points, _size.height * points);
    return made;
}
- (void)drawInRect:(NSRect)place {
    [currentContext fill:place];
}
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
- (instancetype)initWithBitmapDataPlanes:(unsigned char**)planes
                              pixelsWide:(NSInteger)width
                              pixelsHigh:(NSInteger)height
                           bitsPerSample:(NSInteger)bitsPerSample
                         samplesPerPixel:(NSInteger)samplesPerPixel
                                hasAlpha:(BOOL)hasAlpha
                                isPlanar:(BOOL)isPlanar
                          colorSpaceName:(NSString*)colorSpace
                             bytesPerRow:(NSInteger)bytesPerRow
                            bitsPerPixel:(NSInteger)bitsPerPixel {
    self = [super init];
    const bool isUsual = planes == nullptr && width > 0 && height > 0 && bitsPerSample == 8 &&
                         samplesPerPixel == 4 && hasAlpha && !isPlanar &&
                         [colorSpace isEqualToString:NSDeviceRGBColorSpace] && bytesPerRow == 0 &&
                         bitsPerPixel == 0;
    if (self == nil || !isUsual || StandInMac::current().mishap == Mishap::failureWithoutError) {
        [self release];
        return nil;
    }
    _width = width;
    _height = height;
    _bytes = [[NSMutableData alloc] initWithLength:static_cast<NSUInteger>([self bytesPerRow] * height)];
    return self;
}
- (void)dealloc {
    [_bytes release];
    [super dealloc];
}
- (unsigned char*)bitmapData {
    return static_cast<unsigned char*>([_bytes mutableBytes]);
}
// The Mac begins each row where it likes to.
- (NSInteger)bytesPerRow {
    return (_width * 4 + 31) / 32 * 32;
}
/// Half opaque, as far as it lies in the bitmap. Rows are counted from the bottom in places, from the top in
/// bitmaps.
- (void)fill:(NSRect)place {
    for (NSInteger y = 0; y < _height; ++y) {
        for (NSInteger x = 0; x < _width; ++x) {
            const auto center =
                NSMakePoint(static_cast<CGFloat>(x) + 0.5, static_cast<CGFloat>(_height - y) - 0.5);
            if (NSPointInRect(center, place)) [self bitmapData][y * [self bytesPerRow] + x * 4 + 3] = 0x80;
        }
    }
}
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
