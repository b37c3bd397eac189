#include "Platform/Bundle.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

#include "Platform/Posix/BundleLoader.h"
#include "Platform/Posix/PosixFileManager.h"
#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

std::string information(const std::string& entries) {
    return "<plist><dict>" + entries + "</dict></plist>";
}

std::string named(const std::string& name) {
    return information("<key>CFBundleName</key><string>" + name + "</string>");
}

class BundleTest : public testing::Test {
  protected:
    std::optional<Bundle> bundle(const std::string& path = "/Foo.app") const {
        return makeBundleLoader(mac.files())->bundle(FileURL::fromPath(path, true));
    }
    /// Its name, or why there is none.
    std::string name(const std::string& path = "/Foo.app") const {
        const auto found = bundle(path);
        return found ? found->name.value_or("no name") : "no bundle";
    }
    std::string icon() const {
        const auto found = makeBundleLoader(mac.files())->iconFile(FileURL::fromPath("/Foo.app", true));
        return found ? found->path() : "no icon";
    }

    TestVolume mac;
};

using BundleOpening = BundleTest;
using BundleIcon = BundleTest;

TEST_F(BundleOpening, TakesAnyFolderAndNothingElse) {
    mac.makeDirectory("/Foo.app");
    mac.makeFile("/File.app");
    mac.makeFIFO("/FIFO.app");
    mac.makeLink("/Dangling.app", "nothing");
    mac.makeLink("/FileLink.app", "File.app");
    EXPECT_EQ(name("/Foo.app"), "no name");
    EXPECT_EQ(bundle("/Foo.app")->identifier, std::nullopt);
    for (const auto* path : {"/File.app", "/FIFO.app", "/Dangling.app", "/FileLink.app", "/missing.app"}) {
        EXPECT_EQ(name(path), "no bundle") << path;
    }
    EXPECT_FALSE(makeBundleLoader(mac.files())->bundle(FileURL()));
    EXPECT_FALSE(makeBundleLoader(mac.files())->bundle(*FileURL::fromString("https://example.org/Foo.app")));
}

TEST_F(BundleOpening, FollowsALinkToAFolder) {
    mac.makeFile("/Real/Foo.app/Contents/Info.plist", named("Foo"));
    mac.makeLink("/Foo.app", "/Real/Foo.app");
    EXPECT_EQ(name(), "Foo");
}

TEST_F(BundleOpening, FollowsNoLinkOutOfTheVolume) {
    mac.makeOutsideFile("Contents/Info.plist", named("Secret"));
    mac.makeLink("/Foo.app", mac.outside());
    mac.makeLink("/Bar.app/Contents", mac.outside("Contents"));
    EXPECT_EQ(name("/Foo.app"), "no bundle");
    EXPECT_EQ(name("/Bar.app"), "no name");
}

TEST_F(BundleOpening, TheFirstFolderFoundCounts) {
    mac.makeFile("/Foo.app/Info.plist", named("Flat"));
    EXPECT_EQ(name(), "Flat");
    mac.makeFile("/Foo.app/Support Files/Info.plist", named("Support"));
    EXPECT_EQ(name(), "Support");
    mac.makeFile("/Foo.app/Resources/Info.plist", named("Resources"));
    EXPECT_EQ(name(), "Resources");
    mac.makeFile("/Foo.app/Contents/Info.plist", named("Contents"));
    EXPECT_EQ(name(), "Contents");
    fs::remove(mac.machinePath("/Foo.app/Contents/Info.plist"));
    EXPECT_EQ(name(), "no name") << "a folder without its list hides the others";
}

TEST_F(BundleOpening, AFileOfAFoldersNameIsNotThatFolder) {
    mac.makeFile("/Foo.app/Contents");
    mac.makeLink("/Foo.app/Resources", "Contents");
    mac.makeFile("/Foo.app/Info.plist", named("Flat"));
    EXPECT_EQ(name(), "Flat");
}

TEST_F(BundleOpening, ALinkedContentsFolderCounts) {
    mac.makeFile("/Elsewhere/Info.plist", named("Linked"));
    mac.makeLink("/Foo.app/Contents", "/Elsewhere");
    EXPECT_EQ(name(), "Linked");
}

TEST_F(BundleOpening, ReadsRegularFilesOfReasonableSizeOnly) {
    mac.makeFIFO("/FIFO.app/Contents/Info.plist");
    mac.makeDirectory("/Folder.app/Contents/Info.plist");
    mac.makeFile("/Large.app/Contents/Info.plist", named("Large") + std::string(20U << 20U, ' '));
    mac.makeLink("/Loop.app/Contents/Info.plist", "Info.plist");
    mac.makeFile("/Real/Info.plist", named("Linked"));
    mac.makeLink("/Linked.app/Contents/Info.plist", "/Real/Info.plist");
    for (const auto* path : {"/FIFO.app", "/Folder.app", "/Large.app", "/Loop.app"}) {
        EXPECT_EQ(name(path), "no name") << path;
    }
    EXPECT_EQ(name("/Linked.app"), "Linked");
}

TEST_F(BundleOpening, WhatMayNotBeReadSaysNothing) {
    mac.makeFile("/Unreadable.app/Contents/Info.plist", named("Secret"));
    mac.makeFile("/Closed.app/Contents/Info.plist", named("Secret"));
    mac.makeFile("/Closed.app/Info.plist", named("Flat"));
    mac.giveEverythingToUnprivilegedUser();
    ::chmod(mac.machinePath("/Unreadable.app/Contents/Info.plist").c_str(), 0000);
    ::chmod(mac.machinePath("/Closed.app/Contents").c_str(), 0000);
    asUnprivilegedUser([&] {
        EXPECT_EQ(name("/Unreadable.app"), "no name");
        EXPECT_EQ(name("/Closed.app"), "no name") << "it has a Contents folder, closed or not";
    });
}

TEST_F(BundleIcon, HasTheNameThatTheInformationGivesWithOrWithoutItsExtension) {
    mac.makeFile("/Foo.app/Contents/Info.plist",
                 information("<key>CFBundleIconFile</key><string>App Icon</string>"));
    EXPECT_EQ(icon(), "no icon");
    mac.makeFile("/Foo.app/Contents/Resources/App Icon.icns");
    EXPECT_EQ(icon(), "/Foo.app/Contents/Resources/App Icon.icns");
    mac.makeFile("/Foo.app/Contents/Info.plist",
                 information("<key>CFBundleIconFile</key><string>App Icon.icns</string>"));
    EXPECT_EQ(icon(), "/Foo.app/Contents/Resources/App Icon.icns");
    fs::rename(mac.machinePath("/Foo.app/Contents/Resources/App Icon.icns"),
               mac.machinePath("/Foo.app/Contents/Resources/App Icon.icns.icns"));
    EXPECT_EQ(icon(), "no icon");
}

TEST_F(BundleIcon, IsTheNamedIconWhereThereIsNoFile) {
    mac.makeFile("/Foo.app/Contents/Info.plist",
                 information("<key>CFBundleIconFile</key><string>missing</string>"
                             "<key>CFBundleIconName</key><string>AppIcon</string>"));
    mac.makeFile("/Foo.app/Contents/Resources/AppIcon.icns");
    EXPECT_EQ(icon(), "/Foo.app/Contents/Resources/AppIcon.icns");
}

TEST_F(BundleIcon, LiesWhereTheBundleKeepsItsResources) {
    const auto list = information("<key>CFBundleIconFile</key><string>i</string>");
    mac.makeFile("/Foo.app/Info.plist", list);
    mac.makeFile("/Foo.app/i.icns");
    EXPECT_EQ(icon(), "/Foo.app/i.icns");
    mac.makeFile("/Foo.app/Support Files/Info.plist", list);
    mac.makeFile("/Foo.app/Support Files/Resources/i.icns");
    EXPECT_EQ(icon(), "/Foo.app/Support Files/Resources/i.icns");
    mac.makeFile("/Foo.app/Resources/Info.plist", list);
    mac.makeFile("/Foo.app/Resources/i.icns");
    EXPECT_EQ(icon(), "/Foo.app/Resources/i.icns");
}

TEST_F(BundleIcon, IsNotLookedForOutsideOfTheResources) {
    mac.makeFile("/Foo.app/Contents/Info.plist",
                 information("<key>CFBundleIconFile</key><string>../../../secret.icns</string>"
                             "<key>CFBundleIconName</key><string>../x</string>"));
    mac.makeFile("/Foo.app/Contents/Resources/a");
    mac.makeFile("/secret.icns");
    mac.makeFile("/Foo.app/Contents/x.icns");
    EXPECT_EQ(icon(), "no icon");
}

TEST_F(BundleIcon, HasAName) {
    mac.makeFile("/Foo.app/Contents/Info.plist", information("<key>CFBundleIconFile</key><string></string>"));
    mac.makeFile("/Foo.app/Contents/Resources/.icns");
    EXPECT_EQ(icon(), "no icon");
}

/// Bundles as they ship, if this machine has some.
fs::path realBundles() {
    const char* folder = std::getenv("ORVANE_REAL_BUNDLES");
    if (folder != nullptr && *folder != '\0') return folder;
    return fs::path(sourceDirectory()) / "../shared/real-bundles";
}

TEST(RealBundles, HaveAReadableInformationAndTheIconThatTheyName) {
    if (!fs::is_directory(realBundles())) {
        GTEST_SKIP() << "no real bundles on this machine; ORVANE_REAL_BUNDLES may name a folder of them";
    }
    const auto volume = Volume::open(realBundles().string());
    ASSERT_TRUE(volume);
    const auto files = makeFileManager(*volume, "/", "/");
    const auto loader = makeBundleLoader(*files);
    std::size_t opened = 0;
    for (const auto& entry : fs::directory_iterator(realBundles())) {
        const auto url = FileURL::fromPath("/" + entry.path().filename().string(), true);
        const auto found = loader->bundle(url);
        ASSERT_TRUE(found) << entry;
        const auto icon = loader->iconFile(url);
        EXPECT_TRUE(icon || found->identifier) << entry;
        const bool hasResources = fs::is_directory(entry.path() / "Contents/Resources");
        EXPECT_EQ(icon.has_value(), hasResources) << entry;
        ++opened;
    }
    EXPECT_GT(opened, 0U);
}

}  // namespace
}  // namespace orvane::test
