#include <filesystem>

#include "Platform/MacOS/MacBundleLoader.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/MacOS/MacFixture.h"

namespace orvane::test {
namespace {

class MacBundleTest : public MacFixture {
  protected:
    /// A bundle of that identifier, whose name is "Foo".
    void install(const std::string& bundle, const std::string& identifier) const {
        directory_.makeFile(bundle + "/Contents/Info.plist",
                            R"(<plist><dict><key>CFBundleIdentifier</key><string>)" + identifier +
                                R"(</string><key>CFBundleName</key><string>Foo</string></dict></plist>)");
    }

    const std::unique_ptr<BundleLoader> loader_ = makeMacBundleLoader(*files_);
};

PRIVATE_MOUNTS_TEST(MacBundleTest, TellsWhatABundleSaysOfItself) {
    for (const auto& name : awkwardNames) {
        install("Applications/" + name, "com.example.foo");
        const auto bundle = loader_->bundle(url("Applications/" + name));
        ASSERT_TRUE(bundle) << name;
        EXPECT_EQ(bundle->identifier, "com.example.foo");
        EXPECT_EQ(bundle->name, "Foo");
        EXPECT_EQ(bundle->displayName, std::nullopt);
    }
}

PRIVATE_MOUNTS_TEST(MacBundleTest, ShowsTheNameInTheLanguageThatTheMacChooses) {
    install("Applications/Foo.app", "com.example.foo");
    mac_.localizedTexts = @{
        @"CFBundleName" : @"Shown",
        @"CFBundleDisplayName" : @"Shown é",
        @"NSHumanReadableCopyright" : @7,
        @"CFBundleIdentifier" : @"org.example.never"
    };
    const auto bundle = loader_->bundle(url("Applications/Foo.app"));
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->name, "Shown");
    EXPECT_EQ(bundle->displayName, "Shown é");
    EXPECT_EQ(bundle->copyright, std::nullopt) << "a number is no text";
    EXPECT_EQ(bundle->identifier, "com.example.foo") << "what it is has no language";

    mac_.mishap = Mishap::exception;
    EXPECT_EQ(loader_->bundle(url("Applications/Foo.app"))->name, "Foo");
}

PRIVATE_MOUNTS_TEST(MacBundleTest, WhatHasTakenABundlesPlaceIsReadAnew) {
    install("Applications/Foo.app", "com.example.first");
    EXPECT_EQ(loader_->bundle(url("Applications/Foo.app"))->identifier, "com.example.first");
    std::filesystem::remove_all(at("Applications/Foo.app"));
    EXPECT_FALSE(loader_->bundle(url("Applications/Foo.app")));
    install("Applications/Foo.app", "com.example.second");
    EXPECT_EQ(loader_->bundle(url("Applications/Foo.app"))->identifier, "com.example.second");
}

PRIVATE_MOUNTS_TEST(MacBundleTest, AFolderIsABundleAndAFileIsNone) {
    directory_.makeDirectory("Applications/Empty.app");
    directory_.makeFile("Applications/File.app");
    EXPECT_TRUE(loader_->bundle(url("Applications/Empty.app")));
    EXPECT_FALSE(loader_->bundle(url("Applications/File.app")));
    EXPECT_FALSE(loader_->bundle(FileURL::fromPath("relative.app", true)));
}

PRIVATE_MOUNTS_TEST(MacBundleTest, AnIconIsTheOneThatTheSystemDraws) {
    EXPECT_EQ(loader_->iconImage(url("Applications/Foo.app"), 64), "PNG of 64");
    EXPECT_EQ(loader_->iconImage(FileURL::fromPath("relative.app", true), 64), std::nullopt);
    for (const auto mishap : {Mishap::failure, Mishap::failureWithoutError, Mishap::exception}) {
        mac_.mishap = mishap;
        EXPECT_EQ(loader_->iconImage(url("Applications/Foo.app"), 64), std::nullopt);
    }
}

}  // namespace
}  // namespace orvane::test
