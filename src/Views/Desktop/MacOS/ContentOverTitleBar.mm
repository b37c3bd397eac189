#include "Views/Desktop/MacOS/ContentOverTitleBar.h"

#import <AppKit/AppKit.h>

namespace orvane {

void extendContentOverTitleBar(std::uintptr_t view) {
    @autoreleasepool {
        NSWindow* const window = [reinterpret_cast<NSView*>(view) window];
        [window setStyleMask:[window styleMask] | NSWindowStyleMaskFullSizeContentView];
        [window setTitlebarAppearsTransparent:YES];
        [window setTitleVisibility:NSWindowTitleHidden];
    }
}

}  // namespace orvane
