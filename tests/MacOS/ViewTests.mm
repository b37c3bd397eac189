#include "Views/Desktop/MacOS/AccessibilityWishes.h"
#include "Views/Desktop/MacOS/ContentOverTitleBar.h"
#include "Views/Desktop/SystemSymbol.h"
#include "tests/MacOS/MacFixture.h"

namespace orvane::test {
namespace {

class MacViewTest : public MacFixture, public testing::Test {
  protected:
    /// A symbol of the system's, a row of text for each of pixels: "#" is opaque.
    static std::string symbol(const std::string& name, int width, int height) {
        const auto opacities = systemSymbol(name, width, height);
        if (!opacities) return "none";
        EXPECT_EQ(opacities->size(), static_cast<std::size_t>(width * height));
        std::string picture;
        for (std::size_t i = 0; i < opacities->size(); ++i) {
            if (i % static_cast<std::size_t>(width) == 0) picture += '\n';
            picture += (*opacities)[i] == '\0' ? '.' : '#';
        }
        return picture;
    }
};

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

TEST_F(MacViewTest, ASymbolIsTheSystemsOwnInTheMiddle) {
    mac_.symbols = {{"checkmark", NSMakeSize(0.5, 0.25)}};
    EXPECT_EQ(symbol("checkmark", 10, 10), R"(
..........
..........
..........
..........
...####...
...####...
..........
..........
..........
..........)");
    EXPECT_EQ(systemSymbol("checkmark", 10, 10)->at(44), '\x80') << "as opaque as it is drawn";
}

TEST_F(MacViewTest, ASymbolThatIsLargerThanItsPlaceIsFittedIntoIt) {
    mac_.symbols = {{"server.rack", NSMakeSize(3, 1.5)}, {"trash", NSMakeSize(1, 2)}};
    EXPECT_EQ(symbol("server.rack", 8, 8), R"(
........
........
########
########
########
########
........
........)");
    EXPECT_EQ(symbol("trash", 6, 4), R"(
..##..
..##..
..##..
..##..)");
}

TEST_F(MacViewTest, ASymbolThatTheSystemHasNotIsNone) {
    EXPECT_EQ(symbol("tick", 10, 10), "none");
    EXPECT_EQ(symbol("\xFF", 10, 10), "none");
    mac_.symbols = {{"trash", NSMakeSize(1, 1)}, {"empty", NSMakeSize(0, 0)}};
    EXPECT_EQ(symbol("empty", 10, 10), "none");
    EXPECT_EQ(symbol("trash", 0, 10), "none");
    for (const auto mishap : {Mishap::failure, Mishap::failureWithoutError}) {
        mac_.mishap = mishap;
        EXPECT_EQ(symbol("trash", 10, 10), "none");
    }
}

}  // namespace
}  // namespace orvane::test
