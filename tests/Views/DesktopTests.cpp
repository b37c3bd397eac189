#include "Views/Desktop/Desktop.h"

#include <gtest/gtest.h>

#include <QtTest/QSignalSpy>

namespace orvane::test {
namespace {

TEST(Desktop, WishesNothingOfItself) {
    const Desktop desktop;
    EXPECT_EQ(desktop.appearance(), Desktop::LikeThePalette);
    EXPECT_FALSE(desktop.reducesMotion());
    EXPECT_FALSE(desktop.hasHighContrast());
    EXPECT_EQ(desktop.textScale(), 1);
}

TEST(Desktop, HearsThePortalBeforeTheToolkitWishByWish) {
    Desktop desktop;
    desktop.toolkitSays({ColorScheme::dark, true, true, {}});
    EXPECT_EQ(desktop.appearance(), Desktop::Dark);
    EXPECT_TRUE(desktop.reducesMotion());
    desktop.portalSays({ColorScheme::light, false, {}, 1.25});
    EXPECT_EQ(desktop.appearance(), Desktop::Light);
    EXPECT_FALSE(desktop.reducesMotion());
    EXPECT_TRUE(desktop.hasHighContrast());
    EXPECT_EQ(desktop.textScale(), 1.25);
    desktop.portalSays({});
    EXPECT_EQ(desktop.appearance(), Desktop::Dark);
    EXPECT_EQ(desktop.textScale(), 1);
}

TEST(Desktop, TellsOfWhatHasChangedAndOfNothingElse) {
    Desktop desktop;
    const QSignalSpy changes(&desktop, &Desktop::changed);
    desktop.toolkitSays({ColorScheme::dark, {}, {}, {}});
    EXPECT_EQ(changes.count(), 1);
    desktop.portalSays({ColorScheme::dark, {}, {}, {}});
    EXPECT_EQ(changes.count(), 1);
}

TEST(Desktop, MakesTextNoLargerThanSheetsHaveRoomFor) {
    Desktop desktop;
    desktop.portalSays({{}, {}, {}, 3});
    EXPECT_EQ(desktop.textScale(), 1.25);
    desktop.portalSays({{}, {}, {}, 0.5});
    EXPECT_EQ(desktop.textScale(), 1);
}

}  // namespace
}  // namespace orvane::test
