#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "Platform/FileManager.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/TreeVisit.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> inOrder(const TestVolume& mac, const std::string& path, WalkOptions options = {}) {
    std::vector<std::string> visited;
    visitTree(mac, path, options, [&](const WalkEntry& entry) { visited.emplace_back(entry.relativePath); });
    return visited;
}

std::vector<std::string> walk(const TestVolume& mac, const std::string& path, WalkOptions options = {}) {
    auto visited = inOrder(mac, path, options);
    std::sort(visited.begin(), visited.end());
    return visited;
}

TEST(Walk, VisitsEverythingBelowOnce) {
    const TestVolume mac;
    mac.makeFile("/Foo.app/Contents/MacOS/Foo");
    mac.makeFile("/Foo.app/Contents/Info.plist");
    mac.makeDirectory("/Foo.app/Empty");
    EXPECT_THAT(walk(mac, "/Foo.app"), ElementsAre("Contents", "Contents/Info.plist", "Contents/MacOS",
                                                   "Contents/MacOS/Foo", "Empty"));
}

TEST(Walk, VisitsAFolderBeforeItsContents) {
    const TestVolume mac;
    for (const std::string folder : {"a", "b", "c"}) {
        for (const std::string inner : {"x", "y"}) mac.makeFile("/top/" + folder + "/" + inner + "/file");
    }
    const auto visited = inOrder(mac, "/top");
    EXPECT_EQ(visited.size(), 15U);
    for (auto entry = visited.begin(); entry != visited.end(); ++entry) {
        const auto parent = fs::path(*entry).parent_path().string();
        if (!parent.empty()) {
            EXPECT_NE(std::find(visited.begin(), entry, parent), entry) << *entry;
        }
    }
}

TEST(Walk, TellsTheSpaceOfRegularFilesAndOfNothingElse) {
    const TestVolume mac;
    mac.makeFile("/top/empty", "");
    mac.makeFile("/top/file", std::string(10'000, 'x'));
    mac.makeDirectory("/top/folder");
    mac.makeLink("/top/link", "file");
    mac.makeFIFO("/top/fifo");
    const auto hole = mac.makeFile("/top/hole", "");
    ASSERT_EQ(::truncate(hole.c_str(), 1 << 20), 0);
    std::map<std::string, WalkEntry> found;
    visitTree(mac, "/top", {},
              [&](const WalkEntry& entry) { found.emplace(std::string(entry.relativePath), entry); });
    ASSERT_EQ(found.size(), 6U);
    EXPECT_TRUE(found.at("file").isRegularFile);
    EXPECT_GE(found.at("file").fileAllocatedSize.value(), 10'000);
    EXPECT_EQ(found.at("file").totalFileAllocatedSize, found.at("file").fileAllocatedSize);
    EXPECT_EQ(found.at("empty").fileAllocatedSize, 0);
    EXPECT_LT(found.at("hole").fileAllocatedSize.value(), 1 << 20) << "space on disk, not length";
    for (const std::string other : {"folder", "link", "fifo"}) {
        EXPECT_FALSE(found.at(other).isRegularFile) << other;
        EXPECT_EQ(found.at(other).fileAllocatedSize, std::nullopt) << other;
        EXPECT_EQ(found.at(other).totalFileAllocatedSize, std::nullopt) << other;
    }
}

TEST(Walk, CountsAFileWithTwoNamesTwice) {
    const TestVolume mac;
    const auto file = mac.makeFile("/top/a");
    fs::create_hard_link(file, mac.machinePath("/top/b"));
    EXPECT_THAT(walk(mac, "/top"), ElementsAre("a", "b"));
}

TEST(Walk, VisitsLinksWithoutFollowingThem) {
    const TestVolume mac;
    mac.makeOutsideFile("folder/secret");
    mac.makeFile("/elsewhere/file");
    mac.makeLink("/top/inside", "/elsewhere");
    mac.makeLink("/top/outside", mac.outside("folder"));
    mac.makeLink("/top/circle", ".");
    mac.makeLink("/top/dangling", "nothing");
    EXPECT_THAT(walk(mac, "/top"), ElementsAre("circle", "dangling", "inside", "outside"));
}

TEST(Walk, OfWhatIsNoRealFolderVisitsNothing) {
    const TestVolume mac;
    mac.makeFile("/folder/file");
    mac.makeFIFO("/fifo");
    mac.makeLink("/link", "folder");
    for (const std::string path :
         {"/folder/file", "/fifo", "/link", "/link/", "/missing", "/missing/deeper"}) {
        EXPECT_THAT(walk(mac, path), IsEmpty()) << path;
    }
}

TEST(Walk, OfAFolderBehindALinkVisitsIt) {
    const TestVolume mac;
    mac.makeFile("/real/folder/file");
    mac.makeLink("/link", "/real");
    EXPECT_THAT(walk(mac, "/link/folder"), ElementsAre("file"));
}

TEST(Walk, SkipsHiddenEntriesWithAllTheyHold) {
    const TestVolume mac;
    mac.makeFile("/top/.hidden/file");
    mac.makeFile("/top/.file");
    mac.makeFile("/top/shown/.file");
    mac.makeFile("/top/shown/file");
    EXPECT_THAT(walk(mac, "/top", {.skipsHiddenFiles = true}), ElementsAre("shown", "shown/file"));
    EXPECT_THAT(walk(mac, "/top"), testing::SizeIs(6));
}

TEST(Walk, OfAHiddenFolderSkipsOnlyWhatIsHiddenInIt) {
    const TestVolume mac;
    mac.makeFile("/.top/file");
    EXPECT_THAT(walk(mac, "/.top", {.skipsHiddenFiles = true}), ElementsAre("file"));
}

TEST(Walk, VisitsPackagesButNotTheirContents) {
    const TestVolume mac;
    const std::vector<std::string> packages{
        "a.app",       "a.appex",       "a.bundle",  "a.plugin", "a.kext",    "a.dext",
        "a.xpc",       "a.prefPane",    "a.saver",   "a.wdgt",   "a.service", "a.systemextension",
        "a.component", "a.qlgenerator", "a.action",  "a.rtfd",   "a.pkg",     "a.mdimporter",
        "a.workflow",  "a.mpkg",        "UPPER.APP", "a.b.Kext", ".dot.app",  "a..app",
    };
    std::vector<std::string> expected;
    for (const auto& package : packages) {
        mac.makeFile("/top/" + package + "/Contents/file");
        expected.push_back(package);
    }
    for (const std::string folder :
         {"a.framework", "plain", ".app", "..app", "app", "a.apps", "a.app ", "a."}) {
        mac.makeFile("/top/" + folder + "/file");
        expected.push_back(folder);
        expected.push_back(folder + "/file");
    }
    mac.makeFile("/top/file.app");
    expected.emplace_back("file.app");
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(walk(mac, "/top", {.skipsPackageDescendants = true}), expected);
    // Unless asked to: each package then holds two entries more.
    EXPECT_EQ(walk(mac, "/top", {}).size(), expected.size() + 2 * packages.size());
}

TEST(Walk, GoesIntoThePackageThatItIsGiven) {
    const TestVolume mac;
    mac.makeFile("/Foo.app/Contents/file");
    mac.makeFile("/Foo.app/Contents/PlugIns/Bar.appex/file");
    EXPECT_THAT(walk(mac, "/Foo.app", {.skipsHiddenFiles = true, .skipsPackageDescendants = true}),
                ElementsAre("Contents", "Contents/PlugIns", "Contents/PlugIns/Bar.appex", "Contents/file"));
}

TEST(Walk, LeavesOutWhatItMayNotReadAndGoesOn) {
    const TestVolume mac;
    mac.makeFile("/top/closed/file");
    mac.makeFile("/top/listed/file");
    mac.makeFile("/top/open/file");
    mac.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        ASSERT_EQ(::chmod(mac.machinePath("/top/closed").c_str(), 0000), 0);
        ASSERT_EQ(::chmod(mac.machinePath("/top/listed").c_str(), 0400), 0);
        std::map<std::string, std::optional<std::int64_t>> sizes;
        visitTree(mac, "/top", {}, [&](const WalkEntry& entry) {
            sizes.emplace(std::string(entry.relativePath), entry.fileAllocatedSize);
        });
        EXPECT_EQ(sizes.size(), 5U);
        EXPECT_FALSE(sizes.contains("closed/file"));
        EXPECT_TRUE(sizes.contains("listed/file"));
        EXPECT_EQ(sizes["listed/file"], std::nullopt);
        EXPECT_NE(sizes["open/file"], std::nullopt);
    });
}

TEST(Walk, GivesTheBytesOfEveryName) {
    const TestVolume mac;
    std::vector<std::string> expected;
    for (int byte = 1; byte < 256; ++byte) {
        if (byte == '/') continue;
        expected.push_back("-" + std::string(1, static_cast<char>(byte)));
        mac.makeFile("/top/" + expected.back());
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(walk(mac, "/top"), expected);
}

TEST(Walk, ReadsAFolderThatDoesNotFitIntoOneBuffer) {
    const TestVolume mac;
    const std::string filler(200, 'n');
    for (int i = 0; i < 2000; ++i) mac.makeFile("/top/" + filler + std::to_string(i), "");
    auto visited = walk(mac, "/top");
    EXPECT_EQ(visited.size(), 2000U);
    EXPECT_EQ(std::unique(visited.begin(), visited.end()), visited.end());
}

}  // namespace
}  // namespace orvane::test
