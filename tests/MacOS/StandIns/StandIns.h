#pragma once

#import <AppKit/AppKit.h>

#include <map>
#include <string>
#include <vector>

// What a test says of the Mac that it runs on, and what it asks of it afterwards.

namespace orvane::test {

/// What the system does when it is asked next, instead of what it is asked for.
enum class Mishap { none, exception, failure, failureWithoutError };

/// A Mac of the test's own, one at a time. It has nothing but what the test gives it.
struct StandInMac {
    StandInMac();
    ~StandInMac();
    StandInMac(const StandInMac&) = delete;
    StandInMac& operator=(const StandInMac&) = delete;
    static StandInMac& current();

    /// Paths of this machine.
    std::string home;
    std::string applicationSupport;
    /// Called by the system before it moves something to the Trash.
    void (*beforeTrashing)() = nullptr;
    Mishap mishap = Mishap::none;
    /// With which it fails: of Foundation, or of the kernel where there is one below.
    int foundationError = 513;
    int kernelError = 0;

    /// The symbols that this Mac knows, each with how wide and high it is beside type of one point.
    std::map<std::string, NSSize> symbols;
    /// What the user has set, best first.
    NSArray* languages = nil;
    NSMutableArray* applications = nil;
    std::vector<pid_t> terminated;
    std::vector<std::string> revealed;
    bool reducesMotion = false;
    bool hasHighContrast = false;
};

}  // namespace orvane::test

@interface NSRunningApplication (Making)
+ (NSRunningApplication*)applicationWithIdentifier:(pid_t)identifier
                                              name:(NSString*)name
                                  bundleIdentifier:(NSString*)bundleIdentifier
                                            bundle:(NSURL*)bundle
                                        executable:(NSURL*)executable;
/// It has ended, and everything of it is gone.
- (void)vanish;
@end

@interface NSView (Making)
- (instancetype)initWithWindow:(NSWindow*)window;
@end
