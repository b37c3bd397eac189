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

PRIVATE_MOUNTS_TEST(MacBundleTest, ShowsTheNameInTheLanguagesOfTheMac) {
    install("Applications/Foo.app", "com.example.foo");
    const auto nameIn = [&](NSArray* languages) {
        mac_.languages = languages;
        return makeMacBundleLoader(*files_)->bundle(url("Applications/Foo.app"))->name;
    };
    for (const std::string language : {"de", "fr"}) {
        directory_.makeFile(
            "Applications/Foo.app/Contents/Resources/" + language + ".lproj/InfoPlist.strings",
            "CFBundleName = \"in " + language + "\";");
    }
    EXPECT_EQ(nameIn(@[ @"de-CH", @"fr" ]), "in de");
    EXPECT_EQ(nameIn((@[ @"tlh", @7, @"", @"fr-CA" ])), "in fr") << "what is no language is none";
    EXPECT_EQ(nameIn(@[]), "Foo");
    EXPECT_EQ(nameIn(nil), "Foo");
    mac_.mishap = Mishap::exception;
    EXPECT_EQ(nameIn(@[ @"de" ]), "Foo");
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
