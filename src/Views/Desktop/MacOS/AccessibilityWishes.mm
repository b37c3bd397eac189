#include "Views/Desktop/MacOS/AccessibilityWishes.h"

#import <AppKit/AppKit.h>

#include <utility>

/// What the notification center knows of a function.
@interface OrvaneWishObserver : NSObject {
  @public
    std::function<void()>* changed;
}
- (void)wishesDidChange:(NSNotification*)notification;
@end

@implementation OrvaneWishObserver
- (void)wishesDidChange:(NSNotification*)notification {
    static_cast<void>(notification);
    (*changed)();
}
@end

namespace orvane {

namespace {

struct Following {
    explicit Following(std::function<void()> function)
        : changed(std::move(function)), observer([[OrvaneWishObserver alloc] init]) {
        observer->changed = &changed;
        [[[NSWorkspace sharedWorkspace] notificationCenter]
            addObserver:observer
               selector:@selector(wishesDidChange:)
                   name:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
                 object:nil];
    }
    ~Following() {
        [[[NSWorkspace sharedWorkspace] notificationCenter] removeObserver:observer];
        [observer release];
    }
    Following(const Following&) = delete;
    Following& operator=(const Following&) = delete;

    std::function<void()> changed;
    OrvaneWishObserver* observer;
};

}  // namespace

DesktopWishes accessibilityWishes() {
    @autoreleasepool {
        NSWorkspace* const workspace = [NSWorkspace sharedWorkspace];
        DesktopWishes wishes;
        wishes.reducesMotion = static_cast<bool>([workspace accessibilityDisplayShouldReduceMotion]);
        wishes.hasHighContrast = static_cast<bool>([workspace accessibilityDisplayShouldIncreaseContrast]);
        return wishes;
    }
}

std::shared_ptr<void> followAccessibilityWishes(std::function<void()> changed) {
    @autoreleasepool {
        return std::make_shared<Following>(std::move(changed));
    }
}

}  // namespace orvane
