#include "Platform/ProtectedLocations.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include <filesystem>
#include <map>

#include "Platform/Places.h"
#include "Platform/Posix/PosixFileManager.h"
#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

// By "." and "..", which no link stands for.
TEST(FolderPath, IsThatOfTheFolderWhateverThePathEndsWith) {
    EXPECT_EQ(folderPath("/a/b"), "/a/.");
    EXPECT_EQ(folderPath("/a/b/"), "/a/.");
    EXPECT_EQ(folderPath("/a/b///"), "/a/.");
    EXPECT_EQ(folderPath("/a"), "/.");
    EXPECT_EQ(folderPath("/a/.."), "/a/../..");
    EXPECT_EQ(folderPath("/a/./"), "/a/./..");
}

class ProtectedLocationsTest : public testing::Test {
  protected:
    ProtectedLocationsTest() {
        for (const auto* const folder : listed) volume_.makeDirectory(folder);
    }

    /// As the disk is now.
    bool isProtected(const std::string& path) const {
        return ProtectedLocations(volume_.files()).contains(look(url(path)));
    }
    Result<EntryFacts> look(const FileURL& entry) const {
        return volume_.files().makeEntryRemover()->look(entry);
    }

    static constexpr std::array listed{
        "/Applications",
        "/Users/sample/Applications",
        "/System/Applications",
        "/Users/sample/.Trash",
        "/Users/sample/Library/Caches",
        "/Users/sample/Library/Preferences",
        "/Users/sample/Library/Saved Application State",
        "/Users/sample/Library/HTTPStorages",
        "/Users/sample/Library/WebKit",
        "/Users/sample/Library/Containers",
        "/Users/sample/Library/Application Support",
        "/Users/sample/Library/Logs",
        "/Users/sample/Library/LaunchAgents",
        "/Users/sample/Library/Group Containers",
        "/Library/LaunchAgents",
        "/Library/LaunchDaemons",
    };

    TestVolume volume_;
};

TEST_F(ProtectedLocationsTest, HoldEveryListedFolder) {
    for (const auto* const folder : listed) EXPECT_TRUE(isProtected(folder)) << folder;
}

TEST_F(ProtectedLocationsTest, HoldWhatLiesAboveThem) {
    for (const auto* const folder :
         {"/", "/Users", "/Users/sample", "/Users/sample/Library", "/Library", "/System"}) {
        EXPECT_TRUE(isProtected(folder)) << folder;
    }
}

TEST_F(ProtectedLocationsTest, DoNotHoldWhatAnApplicationPutsIntoThem) {
    for (const std::string folder : listed) {
        volume_.makeFile(folder + "/com.example.foo/file");
        EXPECT_FALSE(isProtected(folder + "/com.example.foo")) << folder;
        EXPECT_FALSE(isProtected(folder + "/com.example.foo/file")) << folder;
    }
}

TEST_F(ProtectedLocationsTest, DoNotHoldOtherFolders) {
    for (const auto* const folder : {"/Users/other/Documents", "/Users/sample/Documents", "/Library/Caches",
                                     "/Users/sample/Library/Foo", "/Volumes/Data"}) {
        volume_.makeDirectory(folder);
        EXPECT_FALSE(isProtected(folder)) << folder;
    }
}

TEST_F(ProtectedLocationsTest, HoldTheHomesOfOthersAndWhatElseLiesBesideTheHome) {
    volume_.makeDirectory("/Users/other/Documents");
    volume_.makeDirectory("/Users/Shared");
    volume_.makeFile("/Users/.localized");
    volume_.makeLink("/Users/link", "other");
    for (const auto* const entry :
         {"/Users/other", "/Users/other/", "/Users/other/.", "/Users/./other", "/Users/other/Documents/..",
          "/Users/Shared", "/Users/.localized", "/Users/link", "/Users/link/."}) {
        EXPECT_TRUE(isProtected(entry)) << entry;
    }
    EXPECT_FALSE(isProtected("/Users/link/Documents"));
    EXPECT_FALSE(isProtected("/Users/gone"));
}

TEST_F(ProtectedLocationsTest, HoldWhatLiesBesideAHomeThatIsALink) {
    std::filesystem::rename(volume_.machinePath("/Users"), volume_.machinePath("/Library/Moved"));
    volume_.makeDirectory("/Users/other");
    volume_.makeDirectory("/Library/Moved/third");
    volume_.makeLink("/Users/sample", "../Library/Moved/sample");
    EXPECT_TRUE(isProtected("/Users/sample"));
    EXPECT_TRUE(isProtected("/Users/other"));
    EXPECT_TRUE(isProtected("/Library/Moved/third"));
    EXPECT_FALSE(isProtected("/Library/Other"));
}

TEST_F(ProtectedLocationsTest, HoldEverythingAtTheTopOfTheDisk) {
    volume_.makeDirectory("/Volumes/Data/folder");
    volume_.makeDirectory("/private/var");
    volume_.makeLink("/var", "private/var");
    volume_.makeFile("/.file");
    for (const auto* const entry : {"/Volumes", "/private", "/var", "/.file", "/Volumes/Data/.."}) {
        EXPECT_TRUE(isProtected(entry)) << entry;
    }
    EXPECT_FALSE(isProtected("/Volumes/Data"));
    EXPECT_FALSE(isProtected("/private/var"));
}

TEST_F(ProtectedLocationsTest, DoNotHoldWhatIsNotThere) {
    EXPECT_FALSE(isProtected("/Applications/Gone.app"));
    EXPECT_FALSE(ProtectedLocations(volume_.files()).contains(look(FileURL())));
    EXPECT_FALSE(
        ProtectedLocations(volume_.files()).contains(look(FileURL::fromString("Applications").value())));
    std::filesystem::remove(volume_.machinePath("/Library/LaunchAgents"));
    EXPECT_FALSE(isProtected("/Library/LaunchAgents"));
}

TEST_F(ProtectedLocationsTest, HoldTheRestWhereOneIsMissing) {
    std::filesystem::remove(volume_.machinePath("/Library/LaunchAgents"));
    std::filesystem::remove(volume_.machinePath("/Library/LaunchDaemons"));
    EXPECT_TRUE(isProtected("/Library"));
    EXPECT_TRUE(isProtected("/Applications"));
}

TEST_F(ProtectedLocationsTest, AreKnownUnderEverySpelling) {
    volume_.makeDirectory("/Users/sample/Library/Caches/com.example.foo");
    volume_.makeLink("/Users/link", "sample");
    for (const auto* const spelling : {
             "/Users/sample/Library/Caches/",
             "/Users/sample/Library/Caches//",
             "//Users//sample/Library/./Caches",
             "/Users/sample/Library/Caches/.",
             "/Users/sample/Library/Caches/..",
             "/Users/sample/Library/Caches/../Preferences",
             "/Users/sample/Library/Caches/../..",
             "/Users/sample/Library/Caches/com.example.foo/..",
             "/Users/sample/Library/Caches/../../../../../..",
             "/Users/link/Library/Caches",
             "/..",
         }) {
        EXPECT_TRUE(isProtected(spelling)) << spelling;
    }
}

TEST_F(ProtectedLocationsTest, OfAnEmptyIdentifierAreTheFoldersThemselves) {
    const auto home = volume_.files().homeDirectoryForCurrentUser();
    for (const std::string identifier : {"", ".", "..", "../..", "../Containers", "/", "//"}) {
        const ProtectedLocations locations(volume_.files());
        EXPECT_TRUE(locations.contains(look(home.appendingPathComponent("Library/Caches/" + identifier))))
            << identifier;
    }
}

TEST_F(ProtectedLocationsTest, ThatAreLinksHoldTheLinkAndWhereItLeads) {
    std::filesystem::remove(volume_.machinePath("/Users/sample/Library/Caches"));
    volume_.makeDirectory("/Volumes/Big/Moved/Caches");
    volume_.makeLink("/Users/sample/Library/Caches", "/Volumes/Big/Moved/Caches");
    volume_.makeDirectory("/Volumes/Big/Moved/Other");

    EXPECT_TRUE(isProtected("/Users/sample/Library/Caches"));
    EXPECT_TRUE(isProtected("/Volumes/Big/Moved/Caches"));
    EXPECT_TRUE(isProtected("/Volumes/Big/Moved"));
    EXPECT_TRUE(isProtected("/Volumes/Big"));
    EXPECT_FALSE(isProtected("/Volumes/Big/Moved/Other"));
}

TEST_F(ProtectedLocationsTest, WhoseLinkLeadsInCirclesEndTheSearch) {
    std::filesystem::remove(volume_.machinePath("/Users/sample/Library/Caches"));
    volume_.makeLink("/Users/sample/Library/Caches", "Caches");
    EXPECT_TRUE(isProtected("/Users/sample/Library/Caches"));
    EXPECT_TRUE(isProtected("/Users/sample/Library/Logs"));
}

TEST_F(ProtectedLocationsTest, DoNotHoldALinkElsewhereThatLeadsToOne) {
    volume_.makeLink("/Users/sample/Library/Logs/com.example.foo", "../Caches");
    EXPECT_FALSE(isProtected("/Users/sample/Library/Logs/com.example.foo"));
    EXPECT_TRUE(isProtected("/Users/sample/Library/Logs/com.example.foo/."));
}

TEST_F(ProtectedLocationsTest, HoldARenamedFolderUntilTheNextLook) {
    const ProtectedLocations locations(volume_.files());
    std::filesystem::rename(volume_.machinePath("/Users/sample/Library/Caches"),
                            volume_.machinePath("/Users/moved"));
    EXPECT_TRUE(locations.contains(look(url("/Users/moved"))));
}

TEST_F(ProtectedLocationsTest, AreKnownByAnyOtherNameOfTheSameFolder) {
    // As on a disk that does not tell capital letters from small ones.
    if (!test::mayMount()) GTEST_SKIP() << "nothing can be mounted here";
    const std::map<std::string, std::string> others{
        {"/applications", "/Applications"},
        {"/users", "/Users"},
        {"/Users/sample/library/CACHES", "/Users/sample/Library/Caches"},
        {"/Volumes/Root", "/"},
    };
    for (const auto& [other, name] : others) volume_.makeDirectory(other);
    volume_.makeFile("/Applications/Foo.app/file");
    test::inChildProcess([&] {
        test::enterOwnMountNamespace();
        for (const auto& [other, name] : others) {
            ASSERT_EQ(::mount(volume_.machinePath(name).c_str(), volume_.machinePath(other).c_str(), nullptr,
                              MS_BIND, nullptr),
                      0);
        }
        const auto files =
            makeFileManager(Volume::open(volume_.machinePath("/")).value(), test::TestVolume::home(), "/");
        const ProtectedLocations locations(*files);
        const auto remover = files->makeEntryRemover();
        for (const auto& [other, name] : others)
            EXPECT_TRUE(locations.contains(remover->look(url(other)))) << other;
        EXPECT_TRUE(locations.contains(remover->look(url("/users/sample/Library"))));
        EXPECT_FALSE(locations.contains(remover->look(url("/applications/Foo.app"))));
    });
}

TEST_F(ProtectedLocationsTest, AreAllThatAProcessWithoutDescriptorsCannotTellFromThem) {
    volume_.makeDirectory("/Applications/Foo.app");
    test::inChildProcess([&] {
        rlimit limits{};
        ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limits), 0);
        const auto allowDescriptors = [&](bool areAllowed) {
            const rlimit now{areAllowed ? limits.rlim_max : 0, limits.rlim_max};
            ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &now), 0);
        };
        const ProtectedLocations complete(volume_.files());
        // Errors are looked at once before: the sanitizer needs a descriptor of its own for the first one.
        EXPECT_FALSE(complete.contains(look(url("/Applications/Gone.app"))));
        allowDescriptors(false);
        const ProtectedLocations incomplete(volume_.files());
        EXPECT_TRUE(complete.contains(look(url("/Applications"))));
        EXPECT_TRUE(complete.contains(look(url("/Applications/Foo.app"))));
        allowDescriptors(true);
        EXPECT_TRUE(incomplete.contains(look(url("/Applications"))));
        EXPECT_TRUE(incomplete.contains(look(url("/Applications/Foo.app"))));
        EXPECT_FALSE(complete.contains(look(url("/Applications/Foo.app"))));
    });
}

}  // namespace
}  // namespace orvane::test
