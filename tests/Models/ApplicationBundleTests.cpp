#include "Models/ApplicationBundle.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

bool isBundle(const std::string& path) {
    return isApplicationBundle(FileURL::fromPath(path, true));
}

TEST(ApplicationBundle, IsKnownByItsExtensionInAnyCase) {
    for (const auto* const path : {"/Applications/Foo.app", "/Applications/Foo.APP", "/Foo.App",
                                   "/Applications/Foo.tar.app", "/Applications/....app", "/x/\xFF.app"}) {
        EXPECT_TRUE(isBundle(path)) << path;
    }
}

TEST(ApplicationBundle, IsNoFileOfAnotherName) {
    for (const auto* const path :
         {"/", "/Users/sample", "/Applications/.app", "/Applications/..app", "/Applications/Foo.apps",
          "/Applications/Fooapp", "/Applications/Foo.app/Contents", "/Applications/Foo.app/..",
          "/Applications/Foo.app/.", "/Applications/Foo.app.", "/Applications/Foo.ap", ""}) {
        EXPECT_FALSE(isBundle(path)) << path;
    }
}

TEST(ApplicationBundle, IsNoURLThatNamesNoFile) {
    for (const auto* const text : {"Foo.app", "https://example.org/Applications/Foo.app",
                                   "file://example.org/Applications/Foo.app", "file:///Foo%00.app"}) {
        EXPECT_FALSE(isApplicationBundle(FileURL::fromString(text).value())) << text;
    }
}

TEST(BelowSystem, IsWhatLiesInThatFolderHoweverItIsSpelled) {
    const auto isBelow = [](const std::string& path) { return isBelowSystem(FileURL::fromPath(path, true)); };
    EXPECT_TRUE(isBelow("/System/Applications/Mail.app"));
    EXPECT_TRUE(isBelow("//System/./Mail.app"));
    EXPECT_TRUE(isBelow("/Applications/../System/Mail.app"));
    EXPECT_FALSE(isBelow("/System/../Applications/Foo.app"));
    EXPECT_FALSE(isBelow("/Systems/Foo.app"));
    EXPECT_FALSE(isBelow("/Applications/System/Foo.app"));
}

}  // namespace
}  // namespace orvane
