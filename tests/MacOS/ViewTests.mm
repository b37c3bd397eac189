#include "Views/Desktop/MacOS/AccessibilityWishes.h"
#include "Views/Desktop/MacOS/ContentOverTitleBar.h"
#include "tests/MacOS/MacFixture.h"

namespace orvane::test {
namespace {

class MacViewTest : public MacFixture, public testing::Test {};

TEST_F(MacViewTest, ContentReachesTheTopOfAWindowThatKeepsWhatItHas) {
    NSWindow* const window = [[[NSWindow alloc] init] autorelease];
    [window setStyleMask:NSWindowStyleMaskTitled];
    NSView* const view = [[[NSView alloc] initWithWindow:window] autorelease];
    extendContentOverTitleBar(reinterpret_cast<std::uintptr_t>(view));
    EXPECT_EQ([window styleMask], NSWindowStyleMaskTitled | NSWindowStyleMaskFullSizeContentView);
    EXPECT_TRUE([window titlebarAppearsTransparent]);
    EXPECT_EQ([window titleVisibility], NSWindowTitleHidden);
}

TEST_F(MacViewTest, AViewInNoWindowIsLeftAlone) {
    extendContentOverTitleBar(0);
    NSView* const view = [[[NSView alloc] initWithWindow:nil] autorelease];
    extendContentOverTitleBar(reinterpret_cast<std::uintptr_t>(view));
}

TEST_F(MacViewTest, TellsTheWishesOfAccessibility) {
    EXPECT_EQ(accessibilityWishes().reducesMotion, false);
    EXPECT_EQ(accessibilityWishes().hasHighContrast, false);
    mac_.reducesMotion = true;
    EXPECT_EQ(accessibilityWishes().reducesMotion, true);
    mac_.hasHighContrast = true;
    EXPECT_EQ(accessibilityWishes().hasHighContrast, true);
    EXPECT_EQ(accessibilityWishes().colorScheme, std::nullopt);
    EXPECT_EQ(accessibilityWishes().textScale, std::nullopt);
}

TEST_F(MacViewTest, HearsOfAChangeAsLongAsItListens) {
    int changes = 0;
    const auto change = [] {
        [[[NSWorkspace sharedWorkspace] notificationCenter]
            postNotificationName:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
                          object:nil];
    };
    auto following = followAccessibilityWishes([&] { ++changes; });
    change();
    EXPECT_EQ(changes, 1);
    following.reset();
    change();
    EXPECT_EQ(changes, 1);
}

}  // namespace
}  // namespace orvane::test
